#pragma once

namespace Tervane::Math::Detail {

/// Whether the standard parallel algorithms may be called now, on this thread. Starts the runtime behind them
/// where that is still to do and can be done; never throws, never waits for another thread that starts it.
///
/// The algorithms end the process on any exception but std::bad_alloc, and their runtime, oneTBB, throws
/// another one when a thread is refused. An allocation that fails while it starts, or while a loop of its
/// runs, leaves it hanging or ends the process. So it is entered only when it will want neither: memory and
/// threads are tried, then a first loop brings up every worker that it will ever ask for, and each thread
/// that enters takes the few small objects beforehand that a loop is made of. What cannot be had now is asked
/// for again later, at growing intervals; a start that failed half-way is never repeated.
///
/// The work is the caller's to do when the answer is no.
bool parallelRuntimeIsReady() noexcept;

} // namespace Tervane::Math::Detail
