// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <thread>

namespace quarner {

/// The thread on which libburn writes a session. The drive tells nothing of its end: one that is
/// lost counts as idle at once, while the thread works on it for half a second more.
class WritingThread {
public:
    /// On another thread than libburn's.
    WritingThread();

    /// Called by what libburn reads from. Remembers this thread, unless it is the one on which this
    /// object was made.
    void touch();

    /// Whether a thread was remembered that has not ended yet. Any thread.
    bool isRunning() const;

private:
    struct State;
    struct Exit;

    const std::thread::id _maker = std::this_thread::get_id();
    const std::shared_ptr<State> _state;
};

} // namespace quarner
