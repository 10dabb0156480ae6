// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <thread>

namespace quarner {

/// Detects the end of the thread on which libburn writes a session. The drive's state does not show
/// it: a lost drive counts as idle at once, while the thread works on it for another half second.
class WritingThread {
public:
    /// Construct it on a thread other than libburn's.
    WritingThread();

    /// Called by libburn's data source. Records the current thread, unless it is the one that
    /// constructed this object.
    void touch();

    /// Whether a recorded thread has not ended yet. Any thread.
    bool isRunning() const;

private:
    struct State;
    struct Exit;

    const std::thread::id _maker = std::this_thread::get_id();
    const std::shared_ptr<State> _state;
};

} // namespace quarner
