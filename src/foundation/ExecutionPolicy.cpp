#include "foundation/ExecutionPolicyState.h"

namespace Tervane::Math {

std::atomic<std::int32_t> Detail::executionPolicyValue{ParallelUnsequenced};

void setExecutionPolicy(AlgorithmExecutionPolicy policy) noexcept {
    Detail::executionPolicyValue.store(policy, std::memory_order_relaxed);
}

} // namespace Tervane::Math
