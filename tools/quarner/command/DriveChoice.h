// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>

#include "tools/quarner/disc/DiscKind.h"
#include "tools/quarner/host/Host.h"
#include "tools/quarner/options/Options.h"

namespace quarner::cli {

/// The display name of the drive that a command works on: the image's, the one that is named, or
/// the only one that there is. With a kind of disc that is to be burnt, it is a drive that writes
/// CDs, or an image of that kind with a blank disc. Throws `UsageProblem`, which lists the drives,
/// when that is none or several.
std::string chooseDrive(const Host& host, const Target& target,
                        std::optional<DiscKind> toBurn = std::nullopt);

/// Whether there is a drive of this name.
bool isAttached(const std::string& name);

/// The absolute path of an image. Throws `UsageProblem` for a name that does not end like one of
/// this kind of disc, or of any kind; for a folder; and for a place that does not exist or cannot
/// be reached.
std::string imagePath(const std::string& name, std::optional<DiscKind> kind = std::nullopt);

} // namespace quarner::cli
