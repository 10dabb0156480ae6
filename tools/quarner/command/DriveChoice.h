// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>

#include "tools/quarner/host/Host.h"
#include "tools/quarner/options/DiscKind.h"
#include "tools/quarner/options/Options.h"

namespace quarner::cli {

/// The display name of the drive that a command works on: the image's, the one that is named, or
/// the only one that there is. With a kind of disc that is to be burnt, it is a drive that writes
/// CDs, or an image of that kind with a blank disc. Throws `UsageProblem`, which lists the drives,
/// when that is none or several.
std::string chooseDrive(const Host& host, const Target& target,
                        std::optional<DiscKind> toBurn = std::nullopt);

} // namespace quarner::cli
