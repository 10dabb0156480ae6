// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>
#include <utility>

#include "quarner/platform/BurnItem.h"
#include "quarner/platform/FileStamp.h"

namespace quarner {

/// A file node of a data disc. It refers to one file on disk. Its property dictionary applies to
/// all file systems (`DRAllFilesystems`).
class QUARNER_EXPORT DRFile : public BurnItem {
public:
    /// What `className` returns.
    static constexpr std::string_view drClassName = "DRFile";

    /// `sourcePath` is kept as it is given, and looked up each time that the file is opened. The
    /// file need not exist.
    explicit DRFile(std::string sourcePath, FileStamp stamp = {})
        : _sourcePath(std::move(sourcePath)), _stamp(stamp) {}

    std::string_view className() const override;
    bool isKindOfClass(std::string_view name) const override;

    /// The path that the node was made from, unchanged.
    const std::string& sourcePath() const { return _sourcePath; }

    /// The file's stamp when the node was made. A recorder refuses to write a file with another
    /// stamp.
    const FileStamp& stamp() const { return _stamp; }

private:
    std::string _sourcePath;
    FileStamp _stamp;
};

} // namespace quarner
