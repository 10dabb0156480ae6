// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/disc/DiscKind.h"

#include "quarner/util/MultiMedia.h"

namespace quarner::cli {
namespace {

constexpr DiscTraits audioDisc = {
    .extension = ".cue",
    .example = "mix.cue",
    .command = "audio",
    .titleHelp = "Name of the disc (neither an image nor a player shows it)",
    .oneItem = "track",
    .onePause = " and its pause",
    .manyPauses = " and their pauses",
    .excess = " too long",
};

constexpr DiscTraits dataDisc = {
    .extension = ".iso",
    .example = "mix.iso",
    .command = "data",
    .titleHelp = "Name of the disc",
    .oneItem = "file",
    .onePause = "",
    .manyPauses = "",
    .excess = " too much",
};

} // namespace

const DiscTraits& traitsOf(DiscKind kind) { return kind == DiscKind::Data ? dataDisc : audioDisc; }

std::string counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string amountText(DiscKind kind, std::uint64_t amount) {
    const auto number = static_cast<std::int64_t>(amount);
    return kind == DiscKind::Audio ? MultiMedia::stringWithDuration(number, false)
                                   : MultiMedia::stringWithFilesize(number);
}

} // namespace quarner::cli
