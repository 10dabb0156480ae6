// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/image/ImageNames.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string_view>

namespace quarner {
namespace {

namespace fs = std::filesystem;

/// The parts of an image's path.
struct ImagePath {
    std::string folder; ///< absolute
    std::string stem;   ///< the file's name without its extension
    std::string path;   ///< the whole

    /// Returns the folder with a slash at its end.
    std::string base() const { return folder.ends_with('/') ? folder : folder + '/'; }
};

std::string lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return text;
}

/// Returns the target of the links at a path, whether it exists or not.
fs::path followed(fs::path path) {
    constexpr int mostLinks = 40; // the system's limit
    std::error_code error;
    for (int i = 0; i < mostLinks && fs::is_symlink(fs::symlink_status(path, error)); ++i) {
        const fs::path target = fs::read_symlink(path, error);
        if (error)
            break;
        path = path.parent_path() / target; // an absolute target replaces the path
    }
    return path;
}

fs::path resolved(const std::string& path) {
    std::error_code error;
    const fs::path whole = fs::absolute(path, error);
    const fs::path target = fs::canonical(whole, error);
    return error ? followed(whole) : target;
}

/// Splits a path, following symbolic links, also if the file does not exist. Returns `std::nullopt`
/// if it does not end in a file name with this extension (".cue"), ignoring case.
std::optional<ImagePath> imagePath(const std::string& path, const std::string& extension) {
    const fs::path whole = resolved(path);
    const std::string name = whole.filename().string();
    if (name.size() <= extension.size() || !lowered(name).ends_with(extension))
        return std::nullopt;
    return ImagePath{.folder = whole.parent_path().string(),
                     .stem = name.substr(0, name.size() - extension.size()),
                     .path = whole.string()};
}

bool continuesCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

/// Returns a hash as "-0123cdef", which distinguishes names that were changed into the same one. It
/// is no protection against forgery.
std::string numberFor(const std::string& name) {
    std::uint32_t number = 2166136261U; // FNV-1a
    for (const char c : name)
        number = (number ^ static_cast<unsigned char>(c)) * 16777619U;
    std::array<char, 16> text = {};
    std::snprintf(text.data(), text.size(), "-%08x", number);
    return text.data();
}

/// Returns the longest possible file name in this folder, in bytes.
std::size_t longestNameIn(const std::string& folder) {
    constexpr long usual = 255; // some file systems count characters, and return their most bytes
    constexpr long least = 64;
    const long most = pathconf(folder.c_str(), _PC_NAME_MAX);
    return static_cast<std::size_t>(most < 0 ? usual : std::clamp(most, least, usual));
}

/// Returns the stem if it has at most `most` bytes (more than 12); otherwise its beginning, cut
/// between two characters, and its hash.
std::string fittingStem(const std::string& stem, std::size_t most) {
    if (stem.size() <= most)
        return stem;
    constexpr int longestCharacter = 4;
    const std::string number = numberFor(stem);
    std::size_t end = most - number.size();
    for (int i = 1; i < longestCharacter && continuesCharacter(stem[end]); ++i)
        --end;
    return stem.substr(0, end) + number;
}

/// The longest addition to a stem in the hidden names of an audio image.
constexpr std::string_view longestCueAddition = "..bin.link.part";

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
    const std::string shortStem = fittingStem(stem, longest - longestCueAddition.size());
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

std::optional<IsoNames> isoNames(const std::string& path) {
    const std::optional<ImagePath> parts = imagePath(path, ".iso");
    if (!parts)
        return std::nullopt;
    constexpr std::string_view longestAddition = "..iso.lock";
    const std::size_t longest = longestNameIn(parts->folder);
    const std::string hidden =
        parts->base() + '.' + fittingStem(parts->stem, longest - longestAddition.size()) + ".iso";
    return IsoNames{.folder = parts->folder,
                    .iso = parts->path,
                    .lock = hidden + ".lock",
                    .part = hidden + ".part"};
}

} // namespace quarner
