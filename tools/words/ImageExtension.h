// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "quarner/project/DiscProject.h"

namespace quarner::words {

/// The extension of an image of such a disc, in lower case: ".cue".
inline const char* extensionFor(DiscProject::Kind kind) {
    return kind == DiscProject::Kind::Audio ? ".cue" : ".iso";
}

} // namespace quarner::words
