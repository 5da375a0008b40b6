#pragma once

#include <Math/ExecutionPolicy.h>

#include <atomic>
#include <cstdint>

namespace Tervane::Math::Detail {

/// The process-wide choice. Relaxed atomic accesses: nothing is published through it, it must only not be a
/// data race when one thread sets it while others compute, and on the machines we run on that costs nothing.
extern std::atomic<std::int32_t> executionPolicyValue;

inline AlgorithmExecutionPolicy executionPolicy() noexcept {
    return static_cast<AlgorithmExecutionPolicy>(executionPolicyValue.load(std::memory_order_relaxed));
}

} // namespace Tervane::Math::Detail
