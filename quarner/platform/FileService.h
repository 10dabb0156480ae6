// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "quarner/platform/Export.h"
#include "quarner/platform/Value.h"

namespace quarner {

/// What the file manager knows of a file.
struct FileAttributes {
    std::int64_t size = 0; ///< bytes
    /// The classic four-character type code, most significant byte first; nothing where the file
    /// has none.
    std::optional<std::uint32_t> hfsTypeCode;
};

/// The file services. Every operation may be called on any thread and never throws.
class QUARNER_EXPORT FileService {
public:
    FileService() = default;
    virtual ~FileService();
    FileService(const FileService&) = delete;
    FileService& operator=(const FileService&) = delete;

    /// The name of the file as a user sees it, valid UTF-8. A path at which nothing exists
    /// gives its last component.
    virtual std::string displayName(const std::string& path) = 0;

    /// The attributes; nothing when they cannot be read (no such file, no permission).
    virtual std::optional<FileAttributes> attributes(const std::string& path) = 0;

    virtual Icon icon(const std::string& path) = 0;

    /// The path that an alias stands for, chains of aliases followed to the end. Nothing when the
    /// file is not an alias, or what it stands for is gone. A symbolic link is not an alias.
    virtual std::optional<std::string> resolveAlias(const std::string& path) = 0;
};

} // namespace quarner
