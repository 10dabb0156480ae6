// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/disc/DiscKind.h"

#include <algorithm>
#include <vector>

#include "quarner/device/QuarnerDevice.h"
#include "quarner/front/Quarner.h"
#include "quarner/platform/DRMSF.h"
#include "quarner/platform/DiscFormat.h"
#include "quarner/util/MultiMedia.h"
#include "quarner/util/Paths.h"

namespace quarner::cli {
namespace {

constexpr std::uint64_t bytesPerSecond = std::uint64_t(DRMSF::framesPerSecond) * audioSectorSize;

std::string durationText(std::uint64_t seconds) {
    return MultiMedia::stringWithDuration(static_cast<std::int64_t>(seconds), false);
}

std::string sizeText(std::uint64_t bytes) {
    return MultiMedia::stringWithFilesize(static_cast<std::int64_t>(bytes));
}

constexpr DiscTraits audioDisc = {
    .extension = ".cue",
    .example = "mix.cue",
    .command = "audio",
    .oneItem = "track",
    .onePause = " and its pause",
    .allPauses = " and their pauses",
    .titleHelp = "Name of the disc (neither an image nor a player shows it)",
    .excess = "too long",
    .overhead = "less than a second too long",
    .tellsTimeLeft = true,
    .makeBurner = Quarner::audioCDBurner,
    .freeCapacity = [](const QuarnerDevice& device) { return device.freeTimeOfDisc(); },
    .capacityText = durationText,
    .imageBytes = [](std::uint64_t seconds) { return seconds * bytesPerSecond; },
};

constexpr DiscTraits dataDisc = {
    .extension = ".iso",
    .example = "mix.iso",
    .command = "data",
    .oneItem = "file",
    .onePause = "",
    .allPauses = "",
    .titleHelp = "Name of the disc",
    .excess = "too much",
    .overhead = "too little for it and the file system",
    .tellsTimeLeft = false,
    .makeBurner = Quarner::dataCDBurner,
    .freeCapacity = [](const QuarnerDevice& device) { return device.freeSizeOfDisc(); },
    .capacityText = sizeText,
    .imageBytes = [](std::uint64_t bytes) { return bytes; },
};

} // namespace

const DiscTraits& traitsOf(DiscKind kind) { return kind == DiscKind::Data ? dataDisc : audioDisc; }

std::string supportedTypes(Quarner& burner, std::string_view separator) {
    std::vector<std::string> extensions;
    for (const std::string& type : burner.supportedFileTypes()) {
        const std::string extension = Paths::lowercaseExtension("." + type);
        if (std::find(extensions.begin(), extensions.end(), extension) == extensions.end())
            extensions.push_back(extension);
    }
    std::string text;
    for (const std::string& extension : extensions)
        text.append(text.empty() ? "" : separator).append(extension);
    return text;
}

} // namespace quarner::cli
