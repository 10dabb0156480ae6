// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/posix/OwnTree.h"

#include <dlfcn.h>

#include <filesystem>
#include <system_error>

namespace quarner {
namespace {

namespace fs = std::filesystem;

constexpr char here = 0;

fs::path ownFile() {
    Dl_info info = {};
    const bool isFound = dladdr(&here, &info) != 0 && info.dli_fname != nullptr;
    const fs::path named = isFound ? info.dli_fname : "";
    std::error_code error;
    // A program is named as its user typed it.
    return fs::canonical(named.is_absolute() ? named : "/proc/self/exe", error);
}

} // namespace

std::string folderOfOwnTree(const std::string& folder, const std::string& file,
                            const std::string& otherwise) {
    constexpr int mostLevels = 3; // PREFIX/lib/x86_64-linux-gnu/libquarner-desktop.so
    fs::path place = ownFile().parent_path();
    for (int level = 0; level < mostLevels && place.has_relative_path(); ++level) {
        const fs::path found = place.parent_path() / folder;
        std::error_code error;
        if (fs::exists(found / file, error))
            return found;
        place = place.parent_path();
    }
    return otherwise;
}

} // namespace quarner
