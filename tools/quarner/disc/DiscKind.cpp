// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/disc/DiscKind.h"

namespace quarner::cli {
namespace {

constexpr DiscTraits audioDisc = {
    .extension = ".cue",
    .example = "mix.cue",
    .command = "audio",
    .titleHelp = "Name of the disc (neither an image nor a player shows it)",
};

constexpr DiscTraits dataDisc = {
    .extension = ".iso",
    .example = "mix.iso",
    .command = "data",
    .titleHelp = "Name of the disc",
};

} // namespace

const DiscTraits& traitsOf(DiscKind kind) { return kind == DiscKind::Data ? dataDisc : audioDisc; }

} // namespace quarner::cli
