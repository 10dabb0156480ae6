// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>

namespace quarner {

/// The run loops of a recorder under test, which turn only when the test says so. Each thread turns
/// its own.
class TurnedLoops {
public:
    TurnedLoops() = default;
    virtual ~TurnedLoops() = default;
    TurnedLoops(const TurnedLoops&) = delete;
    TurnedLoops& operator=(const TurnedLoops&) = delete;

    /// In step, a burn waits until its last record was delivered, so that a handler acts exactly
    /// when the record is sent.
    virtual void setInStep(bool isInStep) = 0;
    /// For a handler in step: the burn that has sent the record waits until `setInStep(false)`, and
    /// no other one waits any more.
    virtual void holdSender() = 0;
    /// Turns the loop of this thread until the condition is true, for at most a minute. Returns
    /// whether it is.
    virtual bool runUntil(const std::function<bool()>& condition) = 0;
    /// Delivers all notifications that are queued for this thread.
    virtual void runPending() = 0;
    /// Calls `start` and waits until another thread has queued a notification. Returns at once if
    /// nothing is queued while no loop turns.
    virtual void waitForPostAfter(const std::function<void()>& start) = 0;
};

} // namespace quarner
