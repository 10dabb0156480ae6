// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/image/ImageNames.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>

#include "adapters/image/ImagePath.h"

namespace quarner {
namespace {

bool cannotBeQuoted(char c) { return c == '"' || (c >= 0 && c < ' ') || c == '\x7f'; }

/// FNV-1a: told apart must be names, not attackers.
std::uint32_t numberOf(const std::string& name) {
    std::uint32_t number = 2166136261U;
    for (const char c : name)
        number = (number ^ static_cast<unsigned char>(c)) * 16777619U;
    return number;
}

std::string quotable(std::string stem) {
    if (std::none_of(stem.begin(), stem.end(), cannotBeQuoted))
        return stem;
    std::array<char, 16> suffix = {};
    std::snprintf(suffix.data(), suffix.size(), "-%08x", numberOf(stem));
    std::replace_if(stem.begin(), stem.end(), cannotBeQuoted, '_');
    return stem + suffix.data();
}

/// ".bIn" for "mix.cUe": no two sheets that are different files name the same BIN.
std::string binExtension(const std::string& cuePath) {
    std::string extension = ".bin";
    const std::size_t start = cuePath.size() - extension.size();
    for (std::size_t i = 0; i < extension.size(); ++i)
        if (cuePath[start + i] >= 'A' && cuePath[start + i] <= 'Z')
            extension[i] = static_cast<char>(extension[i] - 'a' + 'A');
    return extension;
}

} // namespace

std::string ImageNames::baseName(const std::string& path) {
    return path.substr(path.find_last_of('/') + 1);
}

std::optional<ImageNames> imageNames(const std::string& cuePath) {
    const std::optional<ImagePath> parts = imagePath(cuePath, ".cue");
    if (!parts)
        return std::nullopt;
    const std::string stem = quotable(parts->stem);
    const std::string extension = binExtension(parts->path);
    const std::string base = parts->base();
    const std::string hidden = base + '.' + stem;
    return ImageNames{.folder = parts->folder,
                      .cue = parts->path,
                      .plainBin = base + stem + extension,
                      .newBin = base + stem + extension + ".new",
                      .lock = hidden + ".bin.lock",
                      .binPart = hidden + ".bin.part",
                      .linkPart = hidden + ".bin.link.part",
                      .cuePart = hidden + ".cue.part",
                      .lastCuePart = hidden + ".cue.last.part"};
}

} // namespace quarner
