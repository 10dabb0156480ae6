// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "quarner/platform/Export.h"
#include "quarner/platform/Value.h"

namespace quarner {

/// The attributes of a file as a file manager reads them.
struct FileAttributes {
    std::int64_t size = 0; ///< bytes
    /// The classic four-character type code, most significant byte first; `std::nullopt` if the
    /// file has none.
    std::optional<std::uint32_t> hfsTypeCode;
};

/// Why a file cannot be read.
struct FileProblem {
    /// What is wrong.
    enum class Kind {
        Missing,   ///< nothing is at the path
        NotAFile,  ///< a folder, a device, a socket or the like
        Unreadable ///< the file may not be opened, or opening it fails
    };

    Kind kind = Kind::Missing; ///< what is wrong, for programs
    /// A few English words without the path, such as "Permission denied" or "a folder". May be
    /// empty.
    std::string detail = {};

    /// Compares every member.
    bool operator==(const FileProblem&) const = default;
};

/// Information about files. Every operation may be called on any thread and never throws.
class QUARNER_EXPORT FileService {
public:
    FileService() = default;
    virtual ~FileService();
    FileService(const FileService&) = delete;
    FileService& operator=(const FileService&) = delete;

    /// Returns the name of the file as shown to users, in valid UTF-8. If there is no file at
    /// `path`, returns the path's last component.
    virtual std::string displayName(const std::string& path) = 0;

    /// Returns the attributes, or `std::nullopt` if they cannot be read (no such file, no
    /// permission).
    virtual std::optional<FileAttributes> attributes(const std::string& path) = 0;

    /// Returns the icon of the file's type; one without names if that is unknown.
    virtual Icon icon(const std::string& path) = 0;

    /// Returns the path that an alias refers to, following a chain of aliases to its end. Returns
    /// `std::nullopt` if the file is not an alias, or if its target is gone. A symbolic link is not
    /// an alias.
    virtual std::optional<std::string> resolveAlias(const std::string& path) = 0;

    /// Returns why the file at a path cannot be read; `std::nullopt` if it can be opened. The
    /// default tells only whether its attributes can be read: a file without them is missing.
    virtual std::optional<FileProblem> problem(const std::string& path);
};

} // namespace quarner
