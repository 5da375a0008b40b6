#pragma once

/// @file
/// Runs a test's body under every execution policy.

#include <Math/ExecutionPolicy.h>

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace Tervane::Math::TestKit {

/// Sets a policy and, at the end of the scope, the one that a process starts with.
class PolicyScope {
public:
    explicit PolicyScope(AlgorithmExecutionPolicy policy) { setExecutionPolicy(policy); }
    ~PolicyScope() { setExecutionPolicy(ParallelUnsequenced); }

    PolicyScope(PolicyScope const&) = delete;
    PolicyScope& operator=(PolicyScope const&) = delete;
};

/// Every listed policy, and a value that is not listed.
inline constexpr std::array allPolicies = {Inline, Parallel, ParallelUnsequenced, Sequenced,
                                           static_cast<AlgorithmExecutionPolicy>(99)};

/// The policies under which nothing leaves the calling thread.
inline constexpr std::array serialPolicies = {Inline, Sequenced, static_cast<AlgorithmExecutionPolicy>(99)};

/// Runs `body` under each of `policies`; a failure names the policy.
template<class Policies, class Body>
void forEachPolicyOf(Policies const& policies, Body const& body) {
    for (AlgorithmExecutionPolicy const policy : policies) {
        SCOPED_TRACE("execution policy " + std::to_string(static_cast<int>(policy)));
        PolicyScope const scope(policy);
        body();
    }
}

/// Runs `body` under every execution policy.
template<class Body>
void forEachPolicy(Body const& body) {
    forEachPolicyOf(allPolicies, body);
}

} // namespace Tervane::Math::TestKit
