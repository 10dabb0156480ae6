// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "quarner/project/DiscProject.h"

namespace quarner::cli {

using DiscKind = DiscProject::Kind;

/// What is different about the discs that the program burns.
struct DiscTraits {
    const char* extension;  ///< of an image, in lower case, with its dot: ".cue"
    const char* example;    ///< the name of such an image
    const char* command;    ///< the command that burns it
    const char* titleHelp;  ///< what a title does
    const char* oneItem;    ///< what an added file is on it: "track"
    const char* onePause;   ///< said after one item if it has a pause; empty otherwise
    const char* manyPauses; ///< the same after several
    const char* excess;     ///< said of content that does not fit: "too long"
};

const DiscTraits& traitsOf(DiscKind kind);

/// "1 track", "3 tracks"
std::string counted(std::size_t count, const std::string& noun);

/// An amount in the unit of the disc, for display: "00:03:20", "3.8 MB".
std::string amountText(DiscKind kind, std::uint64_t amount);

} // namespace quarner::cli
