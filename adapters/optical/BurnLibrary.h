// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <set>
#include <string>

#include "adapters/optical/LibraryMessage.h"
#include "adapters/optical/NodeDescriptors.h"

namespace quarner {

/// What libburn has only once in a process: its list of drives, and its queue of messages. Nobody
/// else in the process may use libburn while a drive is open here. Every operation may be called on
/// any thread.
class BurnLibrary {
public:
    static BurnLibrary& shared(); ///< until the end of the process
    BurnLibrary(const BurnLibrary&) = delete;
    BurnLibrary& operator=(const BurnLibrary&) = delete;

    /// Held by whoever adds a drive to the library's list, takes one off, or has the library make a
    /// thread: its lists have no lock.
    std::mutex& drives() { return _drives; }

    /// Starts libburn, without its handler of signals, unless it is running: to be called before a
    /// drive is opened. Answers whether it is running.
    bool start();

    // With `drives` held. What the library keeps of a drive that it failed to take: it lists it for
    // ever, does not take it again under the same address, and may leave its file open. The file
    // is taken away from it at once, the rest is cleared away as soon as it has no drive.

    /// An address for a drive's node that was not tried in vain; empty when there are none left.
    std::string untriedAddress(const std::string& node) const;
    void driveWasTaken() { ++_takenDrives; }
    void driveWasReleased();
    void driveWasNotTaken(const NodeDescriptors& before);

    /// A moment in the sequence of the library's messages.
    using Moment = std::uint64_t;
    Moment now();

    /// Passes what the library has to say on to the platform's log. To be called now and then while
    /// the library works, and after it.
    void logMessages();

    /// Returns the message since a moment that best explains a failure, see `failureReason`; empty
    /// if there is none. Two drives at work have one queue, so the text may be of the other.
    std::string failureSince(Moment moment);

private:
    BurnLibrary() = default;
    ~BurnLibrary() = default;
    void clearAway();
    static bool startUnlocked();
    void keep(LibraryMessage message);

    std::mutex _drives;
    int _takenDrives = 0;
    std::size_t _failures = 0; ///< to take a drive, that are still to be cleared away
    std::set<int> _left;       ///< the descriptors of them
    std::mutex _mutex;
    Moment _moment = 0;
    std::deque<LibraryMessage> _kept;
};

} // namespace quarner
