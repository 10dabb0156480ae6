// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

#include "adapters/optical/LeftDescriptors.h"

namespace quarner {

/// What libburn has only once in a process: its list of drives, and its queue of messages. Nobody
/// else in the process may use libburn while a drive is open here. Every operation may be called on
/// any thread.
class BurnLibrary {
public:
    static BurnLibrary& shared(); ///< until the end of the process
    BurnLibrary(const BurnLibrary&) = delete;
    BurnLibrary& operator=(const BurnLibrary&) = delete;

    /// Held by whoever adds a drive to the library's list or takes one off.
    std::mutex& drives() { return _drives; }

    /// Starts libburn, without its handler of signals, unless it is running: to be called before a
    /// drive is opened. Answers whether it is running.
    bool start();

    // With `drives` held: what the library keeps of a drive that it failed to take. It lists the
    // drive for ever and does not take it again, and may leave its file open. That is cleared away
    // as soon as it has no drive that was taken.

    void driveWasTaken() { ++_takenDrives; }
    void driveWasReleased();
    /// `left`: what was open before the attempt.
    void driveWasNotTaken(LeftDescriptors left);

    /// A moment in the sequence of the library's messages.
    using Moment = std::uint64_t;
    Moment now();

    /// Passes what the library has to say on to the platform's log. To be called now and then while
    /// the library works, and after it.
    void logMessages();

    /// The most severe message since a moment, the first of them if several are; empty without one.
    /// Two drives at work have one queue, so the text may be of the other: it is for the diagnostic
    /// log alone.
    std::string worstSince(Moment moment);

private:
    struct Message {
        Moment moment;
        int severity;
        std::string text;
    };

    BurnLibrary() = default;
    ~BurnLibrary() = default;
    void clearAway();
    static bool startUnlocked();
    void keep(Message message);

    std::mutex _drives;
    int _takenDrives = 0;
    std::vector<LeftDescriptors> _left;
    std::mutex _mutex;
    Moment _moment = 0;
    std::deque<Message> _kept;
};

} // namespace quarner
