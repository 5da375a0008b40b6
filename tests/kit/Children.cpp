#include "kit/Children.h"

#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <stdexcept>

namespace Tervane::Math::TestKit {

std::string describe(ChildOutcome const& outcome) {
    std::string text = outcome.signal != 0 ? "ended by signal " + std::to_string(outcome.signal)
                                           : "exited with " + std::to_string(outcome.exitCode);
    if (!outcome.printed.empty())
        text += ", printing: " + outcome.printed;
    return text;
}

ChildOutcome runInChild(std::function<int()> const& body, unsigned seconds) {
    std::fflush(nullptr);
    std::array<int, 2> ends = {};
    if (pipe(ends.data()) != 0)
        throw std::runtime_error("no pipe");
    pid_t const child = fork();
    if (child < 0)
        throw std::runtime_error("no child process");
    if (child == 0) {
        close(ends[0]);
        dup2(ends[1], STDOUT_FILENO);
        dup2(ends[1], STDERR_FILENO);
        alarm(seconds);
        int const code = body();
        std::fflush(nullptr);
        _exit(code);
    }
    close(ends[1]);
    ChildOutcome outcome;
    std::array<char, 4096> buffer = {};
    for (ssize_t n = 0; (n = read(ends[0], buffer.data(), buffer.size())) > 0;)
        outcome.printed.append(buffer.data(), static_cast<std::size_t>(n));
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFSIGNALED(status))
        outcome.signal = WTERMSIG(status);
    else
        outcome.exitCode = WEXITSTATUS(status);
    return outcome;
}

} // namespace Tervane::Math::TestKit
