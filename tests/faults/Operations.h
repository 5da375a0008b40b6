#pragma once

/// @file
/// The public operations as a table, each with its arguments and with what it promises when memory runs out.

#include <Math/Math.h>
#include <System/System.h>

#include <complex>
#include <concepts>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace Tervane::Math::Faults {

/// What an operation does when an allocation fails, unless it can do without.
enum class Promise {
    Throws,       ///< throws std::bad_alloc
    ReturnsError, ///< gives an error and never throws
    SetsError,    ///< sets the caller's legacy error; an exception may leave only once that is set
    LeavesResult, ///< the legacy transforms: throws std::bad_alloc for its result, else gives that as made
};

/// What becomes of the arguments.
enum class Arguments {
    Kept, ///< a call that failed can be repeated with them
    Used, ///< also a call that failed may have used them up
};

/// The length of vectors: short for calls on one thread, long enough for the parallel policies to spread
/// them.
extern std::size_t length;

/// One operation on arguments of its own.
class Call {
public:
    virtual ~Call() = default;

    /// Performs the operation. The error is the caller's, of operations that set one.
    virtual void perform(System::ErrorCode& error) = 0;

    /// The error that the last call gave, if it gave one.
    virtual std::optional<System::ErrorCode2> error() const = 0;

    /// What the last call gave, as numbers; the address of a result counts as none.
    virtual std::vector<double> numbers() = 0;

    /// Ends the life of what the last call gave.
    virtual void discard() = 0;
};

struct Operation {
    std::string name;
    Promise promise;
    Arguments arguments;
    std::function<std::unique_ptr<Call>()> prepare;
    /// Large enough for oneMKL's threads, whose runtime may end the process while it starts.
    bool startsOpenMP = false;
};

/// @name Results as numbers
/// @{
inline std::vector<double> numbersOf(double x) {
    return {x};
}
inline std::vector<double> numbersOf(std::monostate) {
    return {};
}
inline std::vector<double> numbersOf(bool x) {
    return {x ? 1.0 : 0.0};
}
inline std::vector<double> numbersOf(std::size_t x) {
    return {static_cast<double>(x)};
}
template<class Text>
requires requires(Text const& text) {
    text.narrow();
}
std::vector<double> numbersOf(Text const& text) {
    std::string const narrow = text.narrow();
    return {narrow.begin(), narrow.end()};
}
template<class Reals>
requires requires(Reals const& reals) {
    { reals.data() } -> std::same_as<double const*>;
    reals.length();
}
std::vector<double> numbersOf(Reals const& reals) {
    std::size_t const parts =
        std::is_same_v<Reals, ComplexVector2> || std::is_same_v<Reals, ComplexVector> ? 2 : 1;
    return {reals.data(), reals.data() + parts * reals.length()};
}
template<class Table>
requires(
    requires(Table const& t) { t.rows(); }
    && !requires(Table const& t) { t.length(); }) std::vector<double> numbersOf(Table const& table) {
    return {table.data(), table.data() + table.rows() * table.columns()};
}
inline std::vector<double> numbersOf(std::vector<bool> const& flags) {
    return {flags.begin(), flags.end()};
}
inline std::vector<double> numbersOf(System::ErrorCode2 const& code) {
    return {static_cast<double>(code.code())};
}
inline std::vector<double> numbersOf(System::ErrorCode const& code) {
    return {static_cast<double>(code.code())};
}
template<class T>
std::vector<double> numbersOf(System::Expected<T, System::ErrorCode2> const& result) {
    if constexpr (std::is_void_v<T>)
        return {};
    else if constexpr (std::is_pointer_v<T>)
        return numbersOf(**result);
    else
        return numbersOf(*result);
}
/// @}

template<class T>
inline constexpr bool isExpected = false;
template<class T>
inline constexpr bool isExpected<System::Expected<T, System::ErrorCode2>> = true;

/// The call of a function `Result(System::ErrorCode&)` that holds its arguments.
template<class Function>
class CallOf : public Call {
    using Returned = std::invoke_result_t<Function&, System::ErrorCode&>;
    using Held = std::conditional_t<
        std::is_void_v<Returned>, std::monostate,
        std::conditional_t<std::is_lvalue_reference_v<Returned>, std::remove_reference_t<Returned>*,
                           std::remove_reference_t<Returned>>>;

public:
    explicit CallOf(Function&& function) : _function(std::move(function)) {}

    void perform(System::ErrorCode& error) override {
        _result.reset();
        if constexpr (std::is_void_v<Returned>) {
            _function(error);
            _result.emplace();
        } else if constexpr (std::is_lvalue_reference_v<Returned>) {
            _result.emplace(&_function(error));
        } else {
            _result.emplace(_function(error));
        }
    }

    std::optional<System::ErrorCode2> error() const override {
        if constexpr (isExpected<Held>)
            if (_result && !_result->has_value())
                return _result->error();
        return {};
    }

    std::vector<double> numbers() override {
        if (!_result)
            return {};
        if constexpr (std::is_pointer_v<Held>)
            return numbersOf(**_result);
        else
            return numbersOf(*_result);
    }

    void discard() override { _result.reset(); }

private:
    Function _function;
    std::optional<Held> _result;
};

/// The table under construction.
class Table {
public:
    /// @param make gives the function that performs the operation and holds its arguments
    template<class Make>
    Operation& add(std::string name, Promise promise, Make const& make,
                   Arguments arguments = Arguments::Kept) {
        _operations.push_back(
            {std::move(name), promise, arguments,
             [make]() -> std::unique_ptr<Call> { return std::make_unique<CallOf<decltype(make())>>(make()); },
             false});
        return _operations.back();
    }

    std::vector<Operation> take() { return std::move(_operations); }

private:
    std::vector<Operation> _operations;
};

void addCurrentOperations(Table& table);
void addLegacyOperations(Table& table);
void addSupportOperations(Table& table);

/// @name Arguments
/// Small whole numbers, so that sums and products are exact in any order.
/// @{
std::vector<double> values(std::size_t n, int seed);
Vector2 vector2(int seed);
Matrix2 matrix2(std::size_t rows, std::size_t columns, int seed);
ComplexVector2 complex2(int seed);
Vector vector(int seed);
Matrix matrix(std::size_t rows, std::size_t columns, int seed);
ComplexVector complexVector(int seed);
/// @}

} // namespace Tervane::Math::Faults

/// Adds an operation to `table`: an expression, and the arguments that it holds. Its name begins with `kind`.
#define OPERATION(promise, kept, expression, ...)                                                            \
    table.add(                                                                                               \
        std::string(kind) + " " #expression, Promise::promise,                                               \
        [] {                                                                                                 \
            return [__VA_ARGS__]([[maybe_unused]] System::ErrorCode& error) mutable -> decltype(auto) {      \
                return expression;                                                                           \
            };                                                                                               \
        },                                                                                                   \
        Arguments::kept)
