// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

#include "adapters/engine/SectorBuffer.h"
#include "adapters/image/FileSystem.h"
#include "adapters/posix/FileDescriptor.h"

namespace quarner {

/// A file written and read past the page cache if the file system supports that. This saves copies
/// and memory, keeps the cache of other programs, and reads back from the disk itself. Otherwise
/// the cache is asked to write early, and to drop its pages before the reading.
class PosixImageFile : public ImageFile {
public:
    /// See `FileSystem::create`.
    PosixImageFile(const std::string& path, const std::string& replaced);

    void reserve(std::uint64_t size) override;
    void append(std::span<const std::byte> bytes) override;
    void sync() override;
    void read(std::uint64_t offset, std::span<std::byte> buffer) override;

private:
    void flush();
    void writeAll(std::span<const std::byte> bytes);
    void startWriteBack();
    void readPart(std::uint64_t offset, std::span<std::byte> buffer, std::size_t needed) const;

    const std::string _path;
    FileDescriptor _file;
    bool _isDirect;
    SectorBuffer _buffer;
    std::size_t _buffered = 0;
    std::uint64_t _written = 0;
    std::uint64_t _writtenBack = 0;
};

} // namespace quarner
