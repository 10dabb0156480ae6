// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/PCMService.h"

namespace quarner {

PCMStream::~PCMStream() = default;

std::string PCMStream::problem() const { return {}; }

PCMService::~PCMService() = default;

std::optional<PCMLength> PCMService::measureWhile(const std::string& path,
                                                  const MayContinue& /*mayContinue*/) {
    return measure(path);
}

std::string PCMService::problemWith(const std::string& /*path*/) { return {}; }

bool PCMService::isDamaged(const std::string& /*path*/) { return false; }

} // namespace quarner
