// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <string>

#include "adapters/drive/FailureCause.h"

namespace quarner {

/// The global state of libburn: its message queue. Every operation may be called on any thread.
class BurnLibrary {
public:
    static BurnLibrary& shared(); ///< until the end of the process
    BurnLibrary(const BurnLibrary&) = delete;
    BurnLibrary& operator=(const BurnLibrary&) = delete;

    /// Starts libburn, without its signal handler, unless it is running. Call it before opening a
    /// drive. Returns whether libburn is running.
    bool start();

    /// A position in the sequence of the library's messages.
    using Moment = std::uint64_t;
    Moment now();

    /// Forwards the library's messages to the platform's log. Call it repeatedly while the library
    /// works, and afterwards.
    void logMessages();

    /// Returns the message since a moment that best explains a failure, see `failureReason`; empty
    /// if there is none.
    std::string failureSince(Moment moment);

private:
    BurnLibrary() = default;
    ~BurnLibrary() = default;
    static bool startUnlocked();
    void keep(LibraryMessage message);

    std::mutex _mutex;
    Moment _moment = 0;
    std::deque<LibraryMessage> _kept;
};

} // namespace quarner
