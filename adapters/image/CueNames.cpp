// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/image/CueNames.h"

#include <algorithm>
#include <string_view>

#include "adapters/image/FittingStem.h"
#include "adapters/image/ImagePath.h"

namespace quarner {
namespace {

/// The longest addition to a stem in the hidden names.
constexpr std::string_view longestAddition = "..bin.link.part";

bool cannotBeQuoted(char c) { return c == '"' || (c >= 0 && c < ' ') || c == '\x7f'; }

std::string quotable(std::string stem) {
    if (std::none_of(stem.begin(), stem.end(), cannotBeQuoted))
        return stem;
    const std::string number = numberFor(stem);
    std::replace_if(stem.begin(), stem.end(), cannotBeQuoted, '_');
    return stem + number;
}

/// Returns ".bIn" for "mix.cUe": two different sheets never refer to the same BIN.
std::string binExtension(const std::string& cuePath) {
    std::string extension = ".bin";
    const std::size_t start = cuePath.size() - extension.size();
    for (std::size_t i = 0; i < extension.size(); ++i)
        if (cuePath[start + i] >= 'A' && cuePath[start + i] <= 'Z')
            extension[i] = static_cast<char>(extension[i] - 'a' + 'A');
    return extension;
}

} // namespace

std::string CueNames::baseName(const std::string& path) {
    return path.substr(path.find_last_of('/') + 1);
}

std::optional<CueNames> cueNames(const std::string& cuePath) {
    const std::optional<ImagePath> parts = imagePath(cuePath, ".cue");
    if (!parts)
        return std::nullopt;
    const std::string stem = quotable(parts->stem);
    const std::string extension = binExtension(parts->path);
    const std::string base = parts->base();
    const std::size_t longest = longestNameIn(parts->folder);
    const std::string binStem = fittingStem(stem, longest - extension.size());
    const std::string shortStem = fittingStem(stem, longest - longestAddition.size());
    const std::string hidden = base + '.' + shortStem;
    return CueNames{.folder = parts->folder,
                    .cue = parts->path,
                    .plainBin = base + binStem + extension,
                    .newBin = base + shortStem + extension + ".new",
                    .lock = hidden + ".bin.lock",
                    .binPart = hidden + ".bin.part",
                    .linkPart = hidden + ".bin.link.part",
                    .cuePart = hidden + ".cue.part",
                    .lastCuePart = hidden + ".cue.last.part"};
}

} // namespace quarner
