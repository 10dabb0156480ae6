// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "quarner/device/QuarnerDevice.h"

namespace quarner::cli {

/// What somebody is shown who is asked whether a disc is to be burnt: the drive, the disc, what
/// happens to it, the title, and the question.
std::vector<std::string> burnQuestion(const QuarnerDevice& device,
                                      const std::optional<std::string>& title);

/// Whether the answer to it is yes; whatever else is typed means no.
bool isYes(const std::string& answer);

} // namespace quarner::cli
