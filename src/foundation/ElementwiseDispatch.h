#pragma once

#include "foundation/ExecutionPolicyState.h"
#include "foundation/Multiversion.h"
#include "foundation/ParallelFor.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace Tervane::Math {

namespace Detail {

/// What one element of an operation costs, which decides how it is compiled and from which length on other
/// threads are worth waking. Every operation handed to the dispatch names its cost as `static constexpr
/// ElementCost cost`.
enum class ElementCost {
    Streaming, ///< a few instructions, bound by memory; vectorised, in several instruction sets
    Function,  ///< a call of a scalar function; nothing to vectorise
};

/// The shortest range that repays the hand-over to other threads, a few microseconds: measured where the
/// parallel policies draw level with the inline loop on two cores.
constexpr std::size_t parallelLimit(ElementCost cost) noexcept {
    return cost == ElementCost::Streaming ? 32'768 : 1'024;
}

/// The least that one hand-over is given to do.
constexpr std::size_t shortestChunk(ElementCost cost) noexcept {
    return parallelLimit(cost) / 4;
}

namespace Kernels {

/// @name The library's own loops
/// Both forms compute the same values. Their order shows only where the output overlaps an input in part:
/// `inOrder` goes from the first element to the last there (compatibility C14). The compiler compares the
/// addresses when the loop starts and uses vector registers where the ranges are apart. It would not where
/// the output is the input itself, in which case the order does not show; `independent` tells it so.
/// @{
template<class In, class Out, class Op>
void inOrder(In const* in, Out* out, std::size_t n, Op op) {
    for (std::size_t i = 0; i < n; ++i)
        out[i] = op(in[i]);
}

template<class In1, class In2, class Out, class Op>
void inOrder(In1 const* in1, In2 const* in2, Out* out, std::size_t n, Op op) {
    for (std::size_t i = 0; i < n; ++i)
        out[i] = op(in1[i], in2[i]);
}

/// @name The standard algorithm
/// Compiled once for all callers of an operation: each copy might take the operands of a sum in another
/// order, which shows where both are NaNs.
/// @{
template<class In, class Out, class Op>
[[gnu::noinline]] Out* standard(In const* first, In const* last, Out* out, Op op) {
    return std::transform(first, last, out, op);
}

template<class In1, class In2, class Out, class Op>
[[gnu::noinline]] Out* standard(In1 const* first1, In1 const* last1, In2 const* first2, Out* out, Op op) {
    return std::transform(first1, last1, first2, out, op);
}
/// @}

/// Up to so many elements the call of a loop that the loader picked costs more than its wide registers save:
/// a sum of 4 in place takes 5.7 ns by its own loop, 7.4 by a call.
constexpr std::size_t few = 8;

template<class In, class Out, class Op>
void independentFew(In const* in, Out* out, std::size_t n, Op op) {
    TVNMATH_INDEPENDENT_ITERATIONS
    for (std::size_t i = 0; i < n; ++i)
        out[i] = op(in[i]);
}

template<class In1, class In2, class Out, class Op>
void independentFew(In1 const* in1, In2 const* in2, Out* out, std::size_t n, Op op) {
    TVNMATH_INDEPENDENT_ITERATIONS
    for (std::size_t i = 0; i < n; ++i)
        out[i] = op(in1[i], in2[i]);
}

template<class In, class Out, class Op>
TVNMATH_MULTIVERSION static void independent(In const* in, Out* out, std::size_t n, Op op) {
    TVNMATH_INDEPENDENT_ITERATIONS
    for (std::size_t i = 0; i < n; ++i)
        out[i] = op(in[i]);
}

template<class In1, class In2, class Out, class Op>
TVNMATH_MULTIVERSION static void independent(In1 const* in1, In2 const* in2, Out* out, std::size_t n, Op op) {
    TVNMATH_INDEPENDENT_ITERATIONS
    for (std::size_t i = 0; i < n; ++i)
        out[i] = op(in1[i], in2[i]);
}
/// @}

} // namespace Kernels

/// An operation that knows a faster way through a whole range than one element after the other: it can be
/// called with an input, an output and a length as well as with an element, to the same effect. The output is
/// then the input itself or does not overlap it.
template<class Op, class In, class Out>
concept RangeOperation = requires(Op const op, In const* in, Out* out, std::size_t n) {
    op(in, out, n);
};

/// Whether the two ranges share memory without their elements being at the same places.
template<class A, class B>
bool overlapPartly(A const* a, B const* b, std::size_t n) noexcept {
    auto const beginA = reinterpret_cast<std::uintptr_t>(a);
    auto const beginB = reinterpret_cast<std::uintptr_t>(b);
    bool const coincide = beginA == beginB && sizeof(A) == sizeof(B);
    return !coincide && beginA < beginB + n * sizeof(B) && beginB < beginA + n * sizeof(A);
}

} // namespace Detail

/// Runs an operation for every element of a range, where the process-wide policy says.
///
/// The one place that decides between the library's own loop, the serial standard algorithms and the parallel
/// ones. The policy is read once, at entry. An element's value is the same on every path.
///
/// Where the output overlaps an input partly, the order of elements can be seen. It is decided for the whole
/// range, and such a range is computed in order on the calling thread.
///
/// An operation is a small copyable function object without shared mutable state. Where it throws, the
/// exception of the first element that it throws for leaves; elements after it may have been computed.
class ElementwiseDispatch {
public:
    /// out[i] = op(first[i])
    /// @return the end of the output
    template<class In, class Out, class Op>
    static Out* transform(In const* first, In const* last, Out* out, Op op) {
        auto const n = static_cast<std::size_t>(last - first);
        AlgorithmExecutionPolicy const policy = Detail::executionPolicy();
        if (policy == Sequenced)
            return Detail::Kernels::standard(first, last, out, op);
        if (Detail::overlapPartly(first, out, n))
            Detail::Kernels::inOrder(first, out, n, op);
        else if (isParallel(policy, Op::cost, n))
            Detail::parallelFor(policy, n, Detail::shortestChunk(Op::cost),
                                [=](std::size_t /*chunk*/, std::size_t begin, std::size_t end) {
                                    inAnyOrder(first + begin, out + begin, end - begin, op);
                                });
        else
            inAnyOrder(first, out, n, op);
        return out + n;
    }

    /// out[i] = op(first1[i], first2[i])
    /// @return the end of the output
    template<class In1, class In2, class Out, class Op>
    static Out* transform(In1 const* first1, In1 const* last1, In2 const* first2, Out* out, Op op) {
        auto const n = static_cast<std::size_t>(last1 - first1);
        AlgorithmExecutionPolicy const policy = Detail::executionPolicy();
        if (policy == Sequenced)
            return Detail::Kernels::standard(first1, last1, first2, out, op);
        if (Detail::overlapPartly(first1, out, n) || Detail::overlapPartly(first2, out, n))
            Detail::Kernels::inOrder(first1, first2, out, n, op);
        else if (isParallel(policy, Op::cost, n))
            Detail::parallelFor(policy, n, Detail::shortestChunk(Op::cost),
                                [=](std::size_t /*chunk*/, std::size_t begin, std::size_t end) {
                                    inAnyOrder(first1 + begin, first2 + begin, out + begin, end - begin, op);
                                });
        else
            inAnyOrder(first1, first2, out, n, op);
        return out + n;
    }

    /// Sets every element of [first, last) to `value`.
    /// @return last
    static double* fill(double* first, double* last, double value);

    /// The sum of the elements, 0.0 for none.
    ///
    /// In the serial order, which compatibility C12 describes, under every policy that is not parallel. Under
    /// the parallel policies it is another, which the length alone decides as well: blocks, each summed in up
    /// to 32 running sums, joined in a tree.
    static double sum(double const* first, double const* last);

private:
    static bool isParallel(AlgorithmExecutionPolicy policy, Detail::ElementCost cost,
                           std::size_t n) noexcept {
        return n >= Detail::parallelLimit(cost) && (policy == Parallel || policy == ParallelUnsequenced);
    }

    template<class In, class Out, class Op>
    static void inAnyOrder(In const* in, Out* out, std::size_t n, Op op) {
        if constexpr (Detail::RangeOperation<Op, In, Out>)
            op(in, out, n);
        else if constexpr (Op::cost == Detail::ElementCost::Function)
            Detail::Kernels::inOrder(in, out, n, op);
        else if (n <= Detail::Kernels::few)
            Detail::Kernels::independentFew(in, out, n, op);
        else
            Detail::Kernels::independent(in, out, n, op);
    }

    template<class In1, class In2, class Out, class Op>
    static void inAnyOrder(In1 const* in1, In2 const* in2, Out* out, std::size_t n, Op op) {
        if constexpr (Op::cost == Detail::ElementCost::Function)
            Detail::Kernels::inOrder(in1, in2, out, n, op);
        else if (n <= Detail::Kernels::few)
            Detail::Kernels::independentFew(in1, in2, out, n, op);
        else
            Detail::Kernels::independent(in1, in2, out, n, op);
    }
};

} // namespace Tervane::Math
