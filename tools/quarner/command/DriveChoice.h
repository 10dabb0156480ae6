// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

#include "tools/quarner/host/Host.h"
#include "tools/quarner/options/Options.h"

namespace quarner::cli {

/// Which drives come into question.
enum class DriveUse { Write, Any };

/// The display name of the drive that a command works on: the image's, the one that is named, or
/// the only one that there is. Throws `UsageProblem`, which lists the drives, when that is none
/// or several.
std::string chooseDrive(const Host& host, const Target& target, DriveUse use);

/// The absolute path of an image. Throws `UsageProblem` for a name that does not end in ".cue", a
/// folder, and a place that does not exist.
std::string imagePath(const std::string& name);

} // namespace quarner::cli
