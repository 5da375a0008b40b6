// Sequences of operations on results against a model: which alternative is alive, what it holds, and that
// none is lost, whatever throws on the way.

#include "fuzz/Fuzz.h"

#include <Math/Errors.h>
#include <Math/Vector2.h>
#include <System/Exceptions.h>
#include <System/Expected.h>

#include <optional>
#include <stdexcept>
#include <utility>

namespace Tervane::Math::Fuzz {

namespace {

using System::ErrorCode2;

/// How many copies and moves from now on succeed before one throws.
int operationsLeft = 0;

void mayThrow() {
    if (operationsLeft-- == 0)
        throw std::runtime_error("no more");
}

/// A number on the heap, so that a lost or doubly destroyed one is seen, whose copies and moves may throw. A
/// failed one leaves both sides alone.
class Tracked {
public:
    explicit Tracked(int number) : _number(new int(number)) {}
    Tracked(Tracked const& other) : Tracked((mayThrow(), *other._number)) {}
    Tracked(Tracked&& other) : Tracked((mayThrow(), *other._number)) { *other._number = movedFrom; }
    Tracked& operator=(Tracked const& other) {
        mayThrow();
        *_number = *other._number;
        return *this;
    }
    Tracked& operator=(Tracked&& other) {
        mayThrow();
        int const number = *other._number;
        if (this != &other)
            *other._number = movedFrom;
        *_number = number;
        return *this;
    }
    ~Tracked() { delete _number; }

    int number() const { return *_number; }

    static constexpr int movedFrom = -1;

private:
    int* _number;
};

/// A result's model: a number, or the code of an error.
struct Model {
    bool hasValue;
    int number;
};

ErrorCode2 errorOf(int code) {
    return ErrorCode2(code, linear_algebra_error_category());
}

/// Where nothing throws and everything is known: Result<T> with `make` and `read` between T and int.
template<class T, class Make, class Read>
void sequenceOf(Input& input, Make const& make, Read const& read, int movedFrom) {
    using Result = System::Expected<T, ErrorCode2>;
    constexpr std::size_t count = 3;
    std::array<Result, count> results = {Result(make(0)), Result(errorOf(1)), Result(make(2))};
    std::array<Model, count> models = {Model{true, 0}, Model{false, 1}, Model{true, 2}};
    auto const check = [&] {
        for (std::size_t k = 0; k < count; ++k) {
            Result& result = results[k];
            require(result.has_value() == models[k].hasValue, "which alternative is alive");
            require(static_cast<bool>(result) == models[k].hasValue, "a result as a condition");
            if (result) {
                require(read(*result) == models[k].number, "a result's value");
                require(&result.value() == &*result && result.operator->() == &*result,
                        "one value, whatever the access");
            } else {
                require(result.error() == errorOf(models[k].number), "a result's error");
                bool hasThrown = false;
                try {
                    static_cast<void>(std::as_const(result).value());
                } catch (System::bad_expected_access<ErrorCode2> const& failure) {
                    hasThrown = failure.error() == result.error();
                }
                require(hasThrown, "value() of an error throws it");
            }
        }
    };
    auto const isMovedFrom = [&](std::size_t k) {
        if (models[k].hasValue)
            models[k].number = movedFrom;
    };
    for (int step = 0; step < 60 && !input.isUsedUp(); ++step) {
        std::size_t const i = input.below(count);
        std::size_t const j = input.below(count);
        int const number = input.byte();
        // A value that was moved from is only assigned to or destroyed.
        if (models[j].hasValue && models[j].number == movedFrom) {
            results[j] = Result(make(number));
            models[j] = {true, number};
        }
        switch (input.below(8)) {
        case 0:
            results[i] = Result(make(number));
            models[i] = {true, number};
            break;
        case 1:
            results[i] = Result(errorOf(number));
            models[i] = {false, number};
            break;
        case 2: {
            Result& source = results[j];
            results[i] = source;
            models[i] = models[j];
            break;
        }
        case 3: {
            Result& source = results[j];
            results[i] = std::move(source);
            if (i != j) {
                models[i] = models[j];
                isMovedFrom(j);
            }
            break;
        }
        case 4:
            results[i].swap(results[j]);
            std::swap(models[i], models[j]);
            break;
        case 5: {
            Result copy(results[j]);
            results[i].swap(copy);
            models[i] = models[j];
            break;
        }
        case 6: {
            Result taken(std::move(results[j]));
            Model const model = models[j];
            isMovedFrom(j);
            results[i].swap(taken);
            models[i] = model;
            break;
        }
        default:
            if (models[j].hasValue) {
                T value = *std::move(results[j]);
                results[j] = Result(value);
                require(read(results[j].value()) == models[j].number,
                        "a value that was moved out and put back");
            } else {
                results[i] = Result(std::move(results[j]).error());
                models[i] = models[j];
            }
        }
        check();
    }
}

/// Copies and moves throw: a failed assignment from the other state leaves the target as it was, and whatever
/// fails, every result has exactly one alternative alive.
void sequenceThatThrows(Input& input) {
    using Result = System::Expected<Tracked, ErrorCode2>;
    constexpr std::size_t count = 3;
    operationsLeft = -1;
    std::array<std::optional<Result>, count> results;
    for (std::size_t k = 0; k < count; ++k)
        results[k].emplace(Tracked(static_cast<int>(k)));
    for (int step = 0; step < 60 && !input.isUsedUp(); ++step) {
        std::size_t const i = input.below(count);
        std::size_t const j = input.below(count);
        Result& target = *results[i];
        Result& source = *results[j];
        bool const hadValue = target.has_value();
        int const before = hadValue ? target->number() : target.error().code();
        bool const statesDiffer = hadValue != source.has_value();
        std::size_t const operation = input.below(5);
        operationsLeft = static_cast<int>(input.below(5));
        bool hasThrown = false;
        try {
            switch (operation) {
            case 0:
                target = source;
                break;
            case 1:
                target = std::move(source);
                break;
            case 2:
                target.swap(source);
                break;
            case 3:
                target = Result(errorOf(input.byte()));
                break;
            default: {
                int const number = input.byte();
                Result fresh((Tracked(number)));
                target = fresh;
            }
            }
        } catch (std::runtime_error const&) {
            hasThrown = true;
        }
        operationsLeft = -1;
        if (hasThrown && operation == 0 && statesDiffer) {
            require(target.has_value() == hadValue, "a failed copy leaves the state");
            require((hadValue ? target->number() : target.error().code()) == before,
                    "a failed copy leaves the content");
        }
        for (auto const& result : results)
            require(result->has_value()
                        ? result->operator->()->number() >= Tracked::movedFrom
                        : result->error().category().name() == linear_algebra_error_category().name(),
                    "one alternative is alive");
    }
    operationsLeft = -1;
}

void sequenceOfVoid(Input& input) {
    using Result = System::Expected<void, ErrorCode2>;
    std::array<Result, 2> results;
    std::array<Model, 2> models = {Model{true, 0}, Model{true, 0}};
    for (int step = 0; step < 40 && !input.isUsedUp(); ++step) {
        std::size_t const i = input.below(2);
        switch (input.below(4)) {
        case 0:
            results[i] = Result();
            models[i] = {true, 0};
            break;
        case 1: {
            int const code = input.byte();
            results[i] = Result(errorOf(code));
            models[i] = {false, code};
            break;
        }
        case 2:
            results[i].swap(results[1 - i]);
            std::swap(models[i], models[1 - i]);
            break;
        default: {
            Result const copy(results[i]);
            results[1 - i] = copy;
            models[1 - i] = models[i];
        }
        }
        for (std::size_t k = 0; k < 2; ++k) {
            require(results[k].has_value() == models[k].hasValue, "an empty result's state");
            bool hasThrown = false;
            try {
                results[k].value();
            } catch (System::bad_expected_access<ErrorCode2> const& failure) {
                hasThrown = failure.error() == errorOf(models[k].number);
            }
            require(hasThrown != models[k].hasValue, "value() throws exactly where there is an error");
        }
    }
}

} // namespace

void fuzzExpected(Input& input) {
    switch (input.below(4)) {
    case 0:
        sequenceOf<Vector2>(
            input, [](int n) { return Vector2(3, n + 1.0); },
            [](Vector2 const& v) { return v.length() == 0 ? -1 : static_cast<int>(v[2]) - 1; }, -1);
        break;
    case 1:
        operationsLeft = -1;
        sequenceOf<Tracked>(
            input, [](int n) { return Tracked(n); }, [](Tracked const& t) { return t.number(); },
            Tracked::movedFrom);
        break;
    case 2:
        sequenceThatThrows(input);
        break;
    default:
        sequenceOfVoid(input);
    }
}

} // namespace Tervane::Math::Fuzz
