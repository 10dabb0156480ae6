// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <set>
#include <string>

#include "adapters/optical/FailureCause.h"
#include "adapters/optical/NodeDescriptors.h"

namespace quarner {

/// The global state of libburn: its list of drives, and its message queue. The rest of the process
/// must not use libburn while a drive is open here. Every operation may be called on any thread.
class BurnLibrary {
public:
    static BurnLibrary& shared(); ///< until the end of the process
    BurnLibrary(const BurnLibrary&) = delete;
    BurnLibrary& operator=(const BurnLibrary&) = delete;

    /// Guards the library's lists, which have no lock. Hold it to add or remove a drive, and while
    /// the library starts a thread.
    std::mutex& drives() { return _drives; }

    /// Starts libburn, without its signal handler, unless it is running. Call it before opening a
    /// drive. Returns whether libburn is running.
    bool start();

    // The following require `drives` to be held. If the library fails to open a drive, it keeps it
    // in its list, does not open it again under the same address, and may leave its file open. The
    // file is replaced at once; the rest is removed as soon as the library has no open drive.

    /// Returns an address for a drive's node that has not failed yet; empty if none is left.
    std::string untriedAddress(const std::string& node) const;
    void driveWasTaken() { ++_takenDrives; }
    void driveWasReleased();
    void driveWasNotTaken(const NodeDescriptors& before);

    /// A position in the sequence of the library's messages.
    using Moment = std::uint64_t;
    Moment now();

    /// Forwards the library's messages to the platform's log. Call it repeatedly while the library
    /// works, and afterwards.
    void logMessages();

    /// Returns the message since a moment that best explains a failure, see `failureReason`; empty
    /// if there is none. Two drives at work have one queue, so the text may be of the other.
    std::string failureSince(Moment moment);

private:
    BurnLibrary() = default;
    ~BurnLibrary() = default;
    void cleanUp();
    static bool startUnlocked();
    void keep(LibraryMessage message);

    std::mutex _drives;
    int _takenDrives = 0;
    std::size_t _failures = 0; ///< failures to open a drive that are not cleaned up yet
    std::set<int> _left;       ///< their descriptors
    std::mutex _mutex;
    Moment _moment = 0;
    std::deque<LibraryMessage> _kept;
};

} // namespace quarner
