// SPDX-License-Identifier: LGPL-2.1-or-later
#include <sys/stat.h>
#include <sys/xattr.h>

#include <array>
#include <cerrno>

#include "adapters/glib/DesktopLink.h"
#include "adapters/glib/GlibPointers.h"
#include "adapters/glib/GlibServices.h"
#include "adapters/posix/FileStamps.h"
#include "adapters/posix/RegularFile.h"
#include "adapters/posix/SystemCall.h"

namespace quarner {
namespace {

constexpr char typeCodeAttribute[] = "user.hfs.type";
constexpr int longestAliasChain = 32;

/// Queries the local file system only. A path never names a remote file here, and querying the
/// desktop's other file systems would start their services.
GObjectPtr<GFileInfo> queried(const std::string& path, const char* attribute) {
    const GObjectPtr<GFile> file(g_vfs_get_file_for_path(g_vfs_get_local(), path.c_str()));
    return GObjectPtr<GFileInfo>(
        g_file_query_info(file.get(), attribute, G_FILE_QUERY_INFO_NONE, nullptr, nullptr));
}

std::optional<std::uint32_t> typeCodeOf(const std::string& path) {
    std::array<unsigned char, 4> bytes = {}; // a longer value is an error
    const ssize_t size = uninterrupted(
        [&] { return getxattr(path.c_str(), typeCodeAttribute, bytes.data(), bytes.size()); });
    if (size != 4)
        return std::nullopt;
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 |
           std::uint32_t{bytes[2]} << 8 | std::uint32_t{bytes[3]};
}

bool exists(const std::string& path) {
    struct stat found = {};
    return uninterrupted([&] { return stat(path.c_str(), &found); }) == 0;
}

bool isFolder(const std::string& path) {
    struct stat found = {};
    return uninterrupted([&] { return stat(path.c_str(), &found); }) == 0 && S_ISDIR(found.st_mode);
}

std::vector<std::string> namesOf(GIcon* icon) {
    if (!G_IS_THEMED_ICON(icon))
        return {};
    std::vector<std::string> names;
    for (const char* const* name = g_themed_icon_get_names(G_THEMED_ICON(icon)); *name; ++name)
        names.emplace_back(*name);
    return names;
}

class GlibFileService : public FileService {
public:
    std::string displayName(const std::string& path) override {
        if (path.empty())
            return {};
        const auto info = queried(path, G_FILE_ATTRIBUTE_STANDARD_DISPLAY_NAME);
        if (info)
            return g_file_info_get_display_name(info.get());
        const GText name(g_filename_display_basename(path.c_str()));
        return name.get();
    }

    std::optional<FileAttributes> attributes(const std::string& path) override {
        struct stat found = {};
        if (uninterrupted([&] { return stat(path.c_str(), &found); }) != 0 || !mayBeRead(path))
            return std::nullopt;
        return FileAttributes{.size = found.st_size, .hfsTypeCode = typeCodeOf(path)};
    }

    Icon icon(const std::string& path) override {
        const auto info = queried(path, G_FILE_ATTRIBUTE_STANDARD_FAST_CONTENT_TYPE);
        const char* const type = info ? g_file_info_get_attribute_string(
                                            info.get(), G_FILE_ATTRIBUTE_STANDARD_FAST_CONTENT_TYPE)
                                      : nullptr;
        if (type == nullptr)
            return {};
        const GObjectPtr<GIcon> icon(g_content_type_get_icon(type));
        return {namesOf(icon.get())};
    }

    std::optional<std::string> resolveAlias(const std::string& path) override {
        std::optional<std::string> target;
        std::optional<std::string> next = targetOfDesktopLink(path);
        for (int links = 0; next; ++links) {
            if (links == longestAliasChain)
                return std::nullopt;
            target = std::move(next);
            next = targetOfDesktopLink(*target);
        }
        return target && exists(*target) ? target : std::nullopt;
    }

    std::optional<FileProblem> problem(const std::string& path) override {
        const RegularFile file(path);
        if (file.isOpen())
            return std::nullopt;
        if (file.error() == RegularFile::notRegular)
            return FileProblem{FileProblem::Kind::NotAFile,
                               isFolder(path) ? "a folder" : "not a file on disk"};
        const bool isMissing = file.error() == ENOENT || file.error() == ENOTDIR;
        return FileProblem{isMissing ? FileProblem::Kind::Missing : FileProblem::Kind::Unreadable,
                           file.problem()};
    }
};

} // namespace

std::shared_ptr<FileService> makeGlibFileService() { return std::make_shared<GlibFileService>(); }

} // namespace quarner
