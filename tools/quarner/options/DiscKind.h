// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "quarner/project/DiscProject.h"

namespace quarner::cli {

using DiscKind = DiscProject::Kind;

/// The command that burns such discs.
inline const char* commandFor(DiscKind kind) { return kind == DiscKind::Audio ? "audio" : "data"; }

/// The extension of an image, in lower case.
inline const char* extensionFor(DiscKind kind) { return kind == DiscKind::Audio ? ".cue" : ".iso"; }

} // namespace quarner::cli
