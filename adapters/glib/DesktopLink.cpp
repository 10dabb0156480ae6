// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/glib/DesktopLink.h"

#include <sys/stat.h>

#include <string_view>

#include "adapters/glib/GlibPointers.h"
#include "adapters/posix/SystemCall.h"

namespace quarner {
namespace {

constexpr std::string_view extension = ".desktop";
constexpr off_t largestEntry = 1 << 20; // bytes; real entries have a few thousand

using KeyFile = std::unique_ptr<GKeyFile, ReleasedBy<g_key_file_free>>;

/// Called before opening: a file that is not regular may block, or never end.
bool isSmallRegularFile(const std::string& path) {
    struct stat found = {};
    return uninterrupted([&] { return lstat(path.c_str(), &found); }) == 0 &&
           S_ISREG(found.st_mode) && found.st_size <= largestEntry;
}

std::string entry(GKeyFile* file, const char* key) {
    const GText text(g_key_file_get_string(file, G_KEY_FILE_DESKTOP_GROUP, key, nullptr));
    return text ? text.get() : "";
}

bool isOnThisMachine(const char* host) {
    return host == nullptr || *host == '\0' || std::string_view(host) == "localhost";
}

std::optional<std::string> localPath(const std::string& url) {
    if (url.starts_with('/'))
        return url;
    char* host = nullptr;
    const GText path(g_filename_from_uri(url.c_str(), &host, nullptr));
    const GText ownedHost(host);
    if (!path || !isOnThisMachine(host))
        return std::nullopt;
    return path.get();
}

} // namespace

std::optional<std::string> targetOfDesktopLink(const std::string& path) {
    if (!path.ends_with(extension) || !isSmallRegularFile(path))
        return std::nullopt;
    const KeyFile file(g_key_file_new());
    if (!g_key_file_load_from_file(file.get(), path.c_str(), G_KEY_FILE_NONE, nullptr))
        return std::nullopt;
    if (entry(file.get(), G_KEY_FILE_DESKTOP_KEY_TYPE) != G_KEY_FILE_DESKTOP_TYPE_LINK)
        return std::nullopt;
    return localPath(entry(file.get(), G_KEY_FILE_DESKTOP_KEY_URL));
}

} // namespace quarner
