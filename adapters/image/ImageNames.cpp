// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/image/ImageNames.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>

namespace quarner {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t extensionSize = 4; // ".cue"

bool hasCueExtension(const std::string& name) {
    std::string extension = name.size() > extensionSize ? name.substr(name.size() - 4) : "";
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return extension == ".cue";
}

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

fs::path resolved(const std::string& path) {
    std::error_code error;
    const fs::path whole = fs::absolute(path, error);
    const fs::path target = fs::canonical(whole, error);
    return error ? whole : target;
}

} // namespace

std::string ImageNames::baseName(const std::string& path) {
    return path.substr(path.find_last_of('/') + 1);
}

std::optional<ImageNames> imageNames(const std::string& cuePath) {
    const fs::path path = resolved(cuePath);
    const std::string name = path.filename().string();
    if (!hasCueExtension(name))
        return std::nullopt;
    const std::string folder = path.parent_path().string();
    const std::string stem = quotable(name.substr(0, name.size() - extensionSize));
    const std::string extension = name[name.size() - 3] == 'C' ? ".BIN" : ".bin";
    const std::string base = folder + (folder.ends_with('/') ? "" : "/");
    const std::string hidden = base + '.' + stem;
    return ImageNames{.folder = folder,
                      .cue = path.string(),
                      .plainBin = base + stem + extension,
                      .newBin = base + stem + extension + ".new",
                      .lock = hidden + ".bin.lock",
                      .binPart = hidden + ".bin.part",
                      .linkPart = hidden + ".bin.link.part",
                      .cuePart = hidden + ".cue.part",
                      .lastCuePart = hidden + ".cue.last.part"};
}

} // namespace quarner
