// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "quarner/project/DiscProject.h"

namespace quarner::cli {

using DiscKind = DiscProject::Kind;

/// What is different about the discs that the program burns.
struct DiscTraits {
    const char* extension; ///< of an image, in lower case, with its dot: ".cue"
    const char* example;   ///< the name of such an image
    const char* command;   ///< the command that burns it
    const char* titleHelp; ///< what a title does
};

const DiscTraits& traitsOf(DiscKind kind);

} // namespace quarner::cli
