// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/posix/OwnTree.h"

#include <dlfcn.h>
#include <link.h>

#include <filesystem>
#include <system_error>

namespace quarner {
namespace {

namespace fs = std::filesystem;

constexpr char here = 0;

/// The name under which a program was started is its caller's choice: the kernel says which file it
/// is. The linker's list names libraries only.
fs::path ownFile() {
    Dl_info info = {};
    link_map* map = nullptr;
    const bool isLibrary =
        dladdr1(&here, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) != 0 &&
        map != nullptr && map->l_name[0] == '/';
    std::error_code error;
    return fs::canonical(isLibrary ? map->l_name : "/proc/self/exe", error);
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
