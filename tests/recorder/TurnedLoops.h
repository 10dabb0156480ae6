// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>

namespace quarner {

/// The run loops of a recorder under test, which turn only when the test says so. Each thread
/// turns its own.
class TurnedLoops {
public:
    TurnedLoops() = default;
    virtual ~TurnedLoops() = default;
    TurnedLoops(const TurnedLoops&) = delete;
    TurnedLoops& operator=(const TurnedLoops&) = delete;

    /// In step, a burn goes on only when its last record was delivered, so that a handler acts at
    /// exactly the moment that a record tells of.
    virtual void setInStep(bool isInStep) = 0;
    /// Turns the loop of this thread until the condition holds, for a minute at most; answers
    /// whether it came to hold.
    virtual bool runUntil(const std::function<bool()>& condition) = 0;
    /// Delivers what is waiting on this thread.
    virtual void runPending() = 0;
};

} // namespace quarner
