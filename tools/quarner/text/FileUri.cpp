// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/text/FileUri.h"

#include <glib.h>

#include <algorithm>
#include <filesystem>
#include <memory>

namespace quarner::cli {
namespace {

namespace fs = std::filesystem;

/// Readers of a URI drop "folder/.." by its text alone, which is another place than that of the
/// path if the folder is a symbolic link.
fs::path withoutParentSteps(const fs::path& path) {
    if (std::find(path.begin(), path.end(), "..") == path.end())
        return path;
    std::error_code error;
    const fs::path folder = fs::weakly_canonical(path.parent_path(), error);
    return error ? path : folder / path.filename();
}

} // namespace

std::string fileUri(const std::string& path) {
    std::error_code error;
    const fs::path absolute = fs::absolute(path, error);
    if (error)
        return {};
    const std::unique_ptr<char, decltype(&g_free)> uri(
        g_filename_to_uri(withoutParentSteps(absolute).c_str(), nullptr, nullptr), g_free);
    return uri ? uri.get() : std::string();
}

} // namespace quarner::cli
