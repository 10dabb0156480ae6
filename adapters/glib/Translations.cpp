// SPDX-License-Identifier: LGPL-2.1-or-later
#include <dlfcn.h>
#include <libintl.h>

#include <filesystem>
#include <string>

#include "quarner/display.h"

namespace quarner {
namespace {

namespace fs = std::filesystem;

constexpr char domain[] = "quarner";
constexpr char anyCatalogue[] = "de/LC_MESSAGES/quarner.mo";

/// The file that this code was loaded from: the shared library, or the program.
fs::path ownFile() {
    Dl_info info = {};
    const bool isFound = dladdr(domain, &info) != 0 && info.dli_fname != nullptr;
    const fs::path named = isFound ? info.dli_fname : "";
    std::error_code error;
    // A program is named as its user typed it.
    return fs::canonical(named.is_absolute() ? named : "/proc/self/exe", error);
}

/// share/locale beside one of the folders that the file is in, so that the build tree and an
/// installed tree that was moved have their catalogues; otherwise the folder of the installation.
std::string folderOfCatalogues() {
    constexpr int mostLevels = 3; // PREFIX/lib/x86_64-linux-gnu/libquarner-desktop.so
    fs::path folder = ownFile().parent_path();
    for (int level = 0; level < mostLevels && folder.has_relative_path(); ++level) {
        const fs::path found = folder.parent_path() / "share" / "locale";
        std::error_code error;
        if (fs::exists(found / anyCatalogue, error))
            return found;
        folder = folder.parent_path();
    }
    return QUARNER_LOCALE_DIR;
}

std::string boundFolder(const char* ofDomain) {
    const char* const folder = bindtextdomain(ofDomain, nullptr);
    return folder == nullptr ? "" : folder;
}

} // namespace

void bindTranslations() {
    // A domain that nobody has bound has the folder of the system.
    if (boundFolder(domain) == boundFolder("quarner-unbound"))
        bindtextdomain(domain, folderOfCatalogues().c_str());
    bind_textdomain_codeset(domain, "UTF-8");
}

} // namespace quarner
