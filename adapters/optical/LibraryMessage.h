// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <deque>
#include <string>

namespace quarner {

/// A message of libburn.
struct LibraryMessage {
    std::uint64_t moment = 0; ///< its place in the sequence of all messages
    int severity = 0;         ///< libburn's rank: the higher, the more severe
    std::string text;
};

/// Returns the message later than `moment` that best explains a failure; empty if there is none.
/// That is the most severe one with the sense data of a failed SCSI command, since libburn reports
/// its consequences with a higher severity; without one, the most severe of all. Of several, the
/// first.
std::string failureReason(const std::deque<LibraryMessage>& messages, std::uint64_t moment);

} // namespace quarner
