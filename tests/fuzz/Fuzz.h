#pragma once

/// @file
/// What the fuzz targets share: bytes turned into choices and numbers, and a check that ends the process.
///
/// Each target is one function of an Input. Linked with libFuzzer it is fuzzed; linked into fuzz_tests it
/// runs over its committed corpus and over bytes drawn from a fixed seed.

#include "kit/Bits.h"
#include "kit/Policies.h"
#include "kit/SpecialValues.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <vector>

namespace Tervane::Math::Fuzz {

/// The fuzzer's bytes, taken from the front; zeros when they are used up.
class Input {
public:
    Input(std::uint8_t const* bytes, std::size_t size) : _next(bytes), _end(bytes + size) {}

    bool isUsedUp() const { return _next == _end; }

    std::uint8_t byte() { return isUsedUp() ? std::uint8_t{0} : *_next++; }

    bool flag() { return (byte() & 1U) != 0; }

    /// A number below `limit`.
    std::size_t below(std::size_t limit) {
        std::size_t const wide = limit > 256 ? byte() * std::size_t{256} + byte() : byte();
        return wide % limit;
    }

    template<class Number>
    Number number() {
        std::array<std::uint8_t, sizeof(Number)> bytes;
        for (std::uint8_t& b : bytes)
            b = byte();
        Number result;
        std::memcpy(&result, bytes.data(), sizeof result);
        return result;
    }

    /// One of `choices`.
    template<class T, std::size_t n>
    T const& oneOf(std::array<T, n> const& choices) {
        return choices[below(n)];
    }

    /// Any double: a small integer, a fraction, a special value or any bits at all.
    double value() {
        switch (byte() % 4) {
        case 0:
            return static_cast<double>(static_cast<std::int8_t>(byte()));
        case 1:
            return static_cast<double>(static_cast<std::int8_t>(byte())) / 7.0;
        case 2:
            return special()[below(special().size())];
        default:
            return number<double>();
        }
    }

    /// A number that computations do not overflow with.
    double ordinaryValue() { return static_cast<double>(number<std::int16_t>()) / 256.0; }

    /// `n` doubles: each chosen for itself where they are few, else special values or numbers from a seed.
    std::vector<double> values(std::size_t n) {
        if (n > 12) {
            unsigned const seed = byte();
            return flag() ? TestKit::specialValues(n, seed) : TestKit::ordinaryValues(n, seed);
        }
        std::vector<double> result(n);
        for (double& x : result)
            x = value();
        return result;
    }

    std::vector<double> ordinaryValues(std::size_t n) {
        std::vector<double> result(n);
        for (double& x : result)
            x = ordinaryValue();
        return result;
    }

    /// Mostly short; now and then around the lengths from which on other threads take part.
    std::size_t length() {
        std::size_t const choice = byte();
        if (choice < 224)
            return choice % 40;
        if (choice < 253)
            return 1000 + below(100);
        return 32'760 + below(16);
    }

    std::vector<std::uint8_t> rest() {
        std::vector<std::uint8_t> result(_next, _end);
        _next = _end;
        return result;
    }

private:
    static std::vector<double> const& special() {
        static std::vector<double> const values = TestKit::specialValues();
        return values;
    }

    std::uint8_t const* _next;
    std::uint8_t const* _end;
};

/// Ends the process with a message unless `holds`.
inline void require(bool holds, char const* what) {
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", what);
        std::abort();
    }
}

inline void require(testing::AssertionResult const& result, char const* what) {
    if (!result) {
        std::fprintf(stderr, "does not hold: %s: %s\n", what, result.message());
        std::abort();
    }
}

/// Requires the same bits, where both are NaN any: which of two NaNs an operation passes on is not defined.
inline void requireSameValues(std::span<double const> actual, std::span<double const> expected,
                              char const* what) {
    require(actual.size() == expected.size(), what);
    for (std::size_t i = 0; i < actual.size(); ++i)
        if (std::bit_cast<std::uint64_t>(actual[i]) != std::bit_cast<std::uint64_t>(expected[i])
            && !(std::isnan(actual[i]) && std::isnan(expected[i])))
            require(TestKit::sameBits(actual[i], expected[i]), what);
}

/// What `compute` gives, and the same values under every execution policy. It returns a vector of doubles.
template<class Compute>
std::vector<double> underEveryPolicy(Compute const& compute, char const* what) {
    std::vector<double> first;
    for (AlgorithmExecutionPolicy const policy : TestKit::allPolicies) {
        TestKit::PolicyScope const scope(policy);
        std::vector<double> const result = compute();
        if (policy == TestKit::allPolicies.front())
            first = result;
        else
            requireSameValues(result, first, what);
    }
    return first;
}

template<class Container>
std::vector<double> copyOf(Container const& container) {
    return {container.data(), container.data() + container.length()};
}

/// The interleaved parts of a complex container.
template<class Container>
std::vector<double> copyOfParts(Container const& container) {
    return {container.data(), container.data() + 2 * container.length()};
}

/// @name The targets
/// @{
void fuzzText(Input& input);
void fuzzExpected(Input& input);
void fuzzContainers(Input& input);
void fuzzArithmetic(Input& input);
void fuzzFunctions(Input& input);
void fuzzLinearAlgebra(Input& input);
void fuzzSignal(Input& input);
/// @}

} // namespace Tervane::Math::Fuzz
