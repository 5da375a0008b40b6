#pragma once

/// @file
/// oneMKL's own threads: when a call may use them, and what becomes of it when there are none to be had.

namespace Tervane::Math::Detail::OneMKL {

/// Held around a call into oneMKL. While it lives, oneMKL works on the calling thread alone unless its
/// threads have been started.
///
/// The OpenMP runtimes print and end the process when a thread or memory is refused to them, and take no "no"
/// for an answer: oneMKL's solvers go wrong on a team that is smaller than they asked for. So whether there
/// are threads is found out before oneMKL asks: before a calling thread's first spread call, as many threads
/// as it would take are started and ended, memory is taken and given back, and then the runtime starts its
/// own at once. Where one of these is refused the call runs on one thread, and the next call tries again.
class ThreadUse {
public:
    /// @param mayBeSpread whether the call is large enough for oneMKL to spread it; a smaller one leaves the
    /// OpenMP runtime alone
    explicit ThreadUse(bool mayBeSpread) noexcept;
    ~ThreadUse();

    ThreadUse(ThreadUse const&) = delete;
    ThreadUse& operator=(ThreadUse const&) = delete;

private:
    bool _isAlone;
    int _before;
};

} // namespace Tervane::Math::Detail::OneMKL
