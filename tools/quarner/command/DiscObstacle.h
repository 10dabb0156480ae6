// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

#include "quarner/device/QuarnerDevice.h"
#include "tools/quarner/host/Host.h"

namespace quarner::cli {

/// What keeps the disc in a drive from being burnt, whatever is to be on it, and what can be done;
/// empty where nothing does.
std::string discObstacle(const Host& host, const QuarnerDevice& device);

} // namespace quarner::cli
