// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/DriveLog.h"

#include <string>

#include "quarner/platform/Platform.h"

namespace quarner {

void logLine(std::initializer_list<std::string_view> parts) noexcept try {
    std::string line;
    for (const std::string_view part : parts)
        line += part;
    currentPlatform()->log->log(line);
} catch (...) { // the host's log is no part of the burn
}

} // namespace quarner
