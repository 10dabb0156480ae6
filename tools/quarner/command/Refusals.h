// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

#include "quarner/front/FileRefusal.h"
#include "quarner/front/Quarner.h"

namespace quarner::cli {

/// Why a burner refused a file, in a few words: "no such file", "unreadable: Permission denied",
/// "copy-protected", "unsupported type (...)", "shorter than a second".
std::string reasonText(const FileRefusal& refusal, Quarner& burner);

} // namespace quarner::cli
