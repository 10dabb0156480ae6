// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/drive/FailureCause.h"

#include <chrono>
#include <regex>
#include <thread>

#include "adapters/drive/GrabbedDrive.h"
#include "adapters/drive/Libburn.h"

namespace quarner {
namespace {

constexpr std::chrono::milliseconds pollInterval{10};

/// The time for a drive that does not respond to disappear from the system.
constexpr std::chrono::milliseconds removalTimeout{1000};

/// Returns whether the drive still responds. The library does not report a drive that it loses
/// during this query: the drive then has an unsuitable disc without a kind (MMC: profile 0).
bool responds(burn::burn_drive* drive) {
    return burn::burn_drive_re_assess(drive, 0) == 1 &&
           (profileOf(drive) != 0 ||
            burn::burn_disc_get_status(drive) != burn::BURN_DISC_UNSUITABLE);
}

/// Key, code and qualifier, as in "[5 26 00]": libburn prints them behind the command.
bool hasSenseData(const std::string& text) {
    static const std::regex triple(R"(\[[0-9A-F] [0-9A-F]{2} [0-9A-F]{2}\])");
    return std::regex_search(text, triple);
}

bool isMoreSevere(const LibraryMessage& message, const LibraryMessage* than) {
    return than == nullptr || message.severity > than->severity;
}

} // namespace

DRError causeBehind(DRError error, const GrabbedDrive& grabbed, const DriveRecord& record,
                    const StopSignal& stop) {
    if (GrabbedDrive::isAnyAbandoned())
        return error;
    if (responds(grabbed.handle()))
        return burn::burn_disc_get_status(grabbed.handle()) == burn::BURN_DISC_EMPTY
                   ? DRError::MediaNotPresent
                   : error;
    const auto end = std::chrono::steady_clock::now() + removalTimeout;
    while (isAttached(record) && std::chrono::steady_clock::now() < end) {
        stop.throwIfRequested();
        std::this_thread::sleep_for(pollInterval);
    }
    return isAttached(record) ? error : DRError::DeviceVanished;
}

std::string failureReason(const std::deque<LibraryMessage>& messages, std::uint64_t moment) {
    const LibraryMessage* worst = nullptr;
    const LibraryMessage* command = nullptr;
    for (const LibraryMessage& message : messages) {
        if (message.moment <= moment)
            continue;
        if (isMoreSevere(message, worst))
            worst = &message;
        if (isMoreSevere(message, command) && hasSenseData(message.text))
            command = &message;
    }
    const LibraryMessage* const reason = command != nullptr ? command : worst;
    return reason == nullptr ? std::string() : reason->text;
}

} // namespace quarner
