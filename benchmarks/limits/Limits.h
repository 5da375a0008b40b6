#pragma once

/// @file
/// What the machine can do: the side `limit` of each subject. One loop, compiled for this machine's
/// instruction set, over storage that is there already.

#include <benchmark/benchmark.h>

#include <string>

namespace Tervane::Math::Bench {

struct LoopShape {
    bool isInPlace = false; ///< the result takes `a`'s storage
    long doublesPerElement = 1;
};

/// Registers `subject/limit/n`: the loop of an expression over `n` elements. Ends the program when there is
/// no loop for it.
///
/// @param expression as in the plots: "a+b", "a*s" and so on
void registerLoopLimit(std::string const& subject, std::string const& expression, long n,
                       LoopShape shape = {});

/// Registers `subject/limit/n`: `doublesPerCall` numbers are read once. Where a call has floating-point
/// operations to be counted, their number goes into the results, and the plot shows operations per second.
void registerReadLimit(std::string const& subject, long n, long doublesPerCall,
                       double operationsPerCall = 0.0);

/// Registers `subject/limit/n`: so many floating-point operations, as multiplications fused with additions
/// in registers, shared by all processors. Their number goes into the results.
void registerArithmeticLimit(std::string const& subject, long n, double operationsPerCall);

} // namespace Tervane::Math::Bench
