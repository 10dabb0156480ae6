// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/drive/BurnLibrary.h"

#include <array>
#include <utility>
#include <vector>

#include "adapters/drive/Libburn.h"
#include "quarner/platform/Platform.h"

namespace quarner {
namespace {

constexpr std::size_t mostKept = 64;

} // namespace

BurnLibrary& BurnLibrary::shared() {
    static auto* const library = new BurnLibrary; // in use until the process ends
    return *library;
}

bool BurnLibrary::start() {
    const std::lock_guard lock(_mutex);
    return startUnlocked();
}

/// Does nothing if the library is running. Messages must not be queried before it runs.
bool BurnLibrary::startUnlocked() {
    char queued[] = "WARNING";
    char onStderr[] = "NEVER";
    char label[] = "";
    return burn::burn_initialize() == 1 &&
           burn::burn_msgs_set_severities(queued, onStderr, label) == 1;
}

BurnLibrary::Moment BurnLibrary::now() {
    logMessages();
    const std::lock_guard lock(_mutex);
    return _moment;
}

void BurnLibrary::logMessages() {
    std::vector<std::string> lines;
    {
        const std::lock_guard lock(_mutex);
        if (!startUnlocked())
            return;
        char any[] = "ALL";
        std::array<char, BURN_MSGS_MESSAGE_LEN> text = {};
        std::array<char, 80> severity = {};
        int code = 0;
        int number = 0;
        while (burn::burn_msgs_obtain(any, &code, text.data(), &number, severity.data()) == 1) {
            int rank = 0;
            burn::burn_text_to_sev(severity.data(), &rank, 0);
            keep({++_moment, rank, text.data()});
            lines.push_back(std::string("libburn: ") + severity.data() + ": " + text.data());
        }
    }
    for (const std::string& line : lines)
        currentPlatform()->log->log(line);
}

void BurnLibrary::keep(LibraryMessage message) {
    _kept.push_back(std::move(message));
    if (_kept.size() > mostKept)
        _kept.pop_front();
}

std::string BurnLibrary::failureSince(Moment moment) {
    logMessages();
    const std::lock_guard lock(_mutex);
    return failureReason(_kept, moment);
}

} // namespace quarner
