// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

#include "quarner/front/Quarner.h"
#include "tools/quarner/disc/DiscKind.h"

namespace quarner::cli {

/// Why a burner of this kind of disc does not take a file that it has refused, in a few words: "no
/// such file", "not readable: Permission denied", "copy-protected", "unsupported type (...)",
/// "unreadable: ...", "shorter than a second". Only on the main thread.
std::string reasonForRefusal(DiscKind kind, Quarner& burner, const std::string& path);

} // namespace quarner::cli
