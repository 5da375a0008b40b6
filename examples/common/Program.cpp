#include "Program.h"

#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>

namespace Examples {

namespace {

void writeToTerminal(std::string const& text) {
    // Progress that cannot be shown is no failure.
    [[maybe_unused]] auto const written = ::write(STDERR_FILENO, text.data(), text.size());
}

/// Shows the current step in one line of the terminal, and clears it at the end.
class Progress {
public:
    explicit Progress(std::string const& program) : _program(program) {
        if (isatty(STDERR_FILENO) == 1) {
            current = this;
            _thread = std::jthread([this](std::stop_token const& stop) { show(stop); });
        }
    }
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;
    ~Progress() { current = nullptr; } // the thread is joined thereafter

    void setStep(std::string const& step) {
        std::lock_guard const lock(_mutex);
        _step = step;
        _changed.notify_one();
    }

    static inline Progress* current = nullptr;

private:
    void show(std::stop_token const& stop) {
        std::unique_lock lock(_mutex);
        if (_changed.wait_for(lock, stop, patience, [] { return false; }); stop.stop_requested()) {
            return;
        }
        constexpr char const* clear = "\r\033[K";
        std::string shown;
        while (!stop.stop_requested()) {
            shown = _step;
            writeToTerminal(clear + _program + ": " + shown + " ...");
            _changed.wait(lock, stop, [&] { return _step != shown; });
        }
        writeToTerminal(clear);
    }

    static constexpr std::chrono::seconds patience{2};

    std::string _program;
    std::mutex _mutex;
    std::condition_variable_any _changed;
    std::string _step = "starting";
    std::jthread _thread;
};

/// Writes the report as far as it goes; whether all of it arrived.
bool print(std::string const& report) {
    return std::fwrite(report.data(), 1, report.size(), stdout) == report.size() && std::fflush(stdout) == 0;
}

} // namespace

void showStep(std::string const& step) {
    if (Progress::current != nullptr) {
        Progress::current->setStep(step);
    }
}

int runProgram(std::string const& name, ProgramSettings const& settings,
               std::function<Expected<std::string, ErrorCode2>(Place& place)> const& work) {
    Tervane::Math::setExecutionPolicy(settings.policy);
    Place place;
    auto const failure = Tervane::System::guard<void>([&] {
        std::string const report = [&] {
            Progress const progress(name);
            return work(place).value();
        }();
        if (!print(report)) {
            place = {"standard output", 0, 0, std::error_code(errno, std::generic_category()).message()};
            throw Tervane::System::SystemError(FileFailure::FileNotWritable);
        }
    });
    if (!failure) {
        std::fputs((name + ": " + describe(place, failure.error()) + "\n").c_str(), stderr);
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

} // namespace Examples
