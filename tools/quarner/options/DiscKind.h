// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "quarner/project/DiscProject.h"
#include "tools/words/ImageExtension.h"

namespace quarner::cli {

using DiscKind = DiscProject::Kind;
using words::extensionFor;

/// The command that burns such discs.
inline const char* commandFor(DiscKind kind) { return kind == DiscKind::Audio ? "audio" : "data"; }

} // namespace quarner::cli
