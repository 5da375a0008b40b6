#pragma once

/// @file
/// Runs a test's body in a child process, for what may end or hang a process and for limits that cannot be
/// lifted.

#include <functional>
#include <string>

namespace Tervane::Math::TestKit {

/// How a child ended.
struct ChildOutcome {
    int exitCode = -1;   ///< what the body returned; -1 when a signal ended it
    int signal = 0;      ///< the signal that ended it, SIGALRM when it hung
    std::string printed; ///< what it wrote to its standard output and error

    /// Whether the body returned 0 and nothing was printed.
    bool isClean() const { return exitCode == 0 && printed.empty(); }
};

/// Tells how the child ended, for messages.
std::string describe(ChildOutcome const& outcome);

/// Runs `body` in a child of `fork` and ends the child with what it returned, without the exit handlers.
ChildOutcome runInChild(std::function<int()> const& body, unsigned seconds = 20);

} // namespace Tervane::Math::TestKit
