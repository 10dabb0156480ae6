// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/image/ImagePath.h"

#include <algorithm>
#include <filesystem>

namespace quarner {
namespace {

namespace fs = std::filesystem;

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

} // namespace

std::optional<ImagePath> imagePath(const std::string& path, const std::string& extension) {
    const fs::path whole = resolved(path);
    const std::string name = whole.filename().string();
    if (name.size() <= extension.size() || !lowered(name).ends_with(extension))
        return std::nullopt;
    return ImagePath{.folder = whole.parent_path().string(),
                     .stem = name.substr(0, name.size() - extension.size()),
                     .path = whole.string()};
}

} // namespace quarner
