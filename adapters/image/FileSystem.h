// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "adapters/engine/StopSignal.h"

namespace quarner {

/// A file that is written from its start to its end, once, and then read back. Used by one thread
/// at a time unless said otherwise. Every operation throws `BurnFailure`, naming the file.
class ImageFile {
public:
    ImageFile() = default;
    virtual ~ImageFile();
    ImageFile(const ImageFile&) = delete;
    ImageFile& operator=(const ImageFile&) = delete;

    /// Sets so many bytes of the disk aside, where the file system can do that at no cost.
    virtual void reserve(std::uint64_t size) = 0;

    /// Adds bytes at the end; they may wait in memory until `sync`.
    virtual void append(std::span<const std::byte> bytes) = 0;

    /// Returns when all bytes are on the disk. Nothing is added afterwards.
    virtual void sync() = 0;

    /// Fills the buffer from the disk itself rather than from a copy in memory, as far as the file
    /// system lets itself be told so. After `sync`, by any number of threads at once. The offset
    /// and the buffer's address are multiples of `bufferAlignment`. Fails at the end of the file.
    virtual void read(std::uint64_t offset, std::span<std::byte> buffer) = 0;
};

/// Keeps others from burning to the same image. Let go of, and the file that marks it removed, when
/// it is destroyed; the system lets go of it when the process is killed.
class ImageLock {
public:
    ImageLock() = default;
    virtual ~ImageLock();
    ImageLock(const ImageLock&) = delete;
    ImageLock& operator=(const ImageLock&) = delete;
};

/// What an image needs of the file system. Every operation throws `BurnFailure`, naming the file,
/// and may be called on any thread.
class FileSystem {
public:
    FileSystem() = default;
    virtual ~FileSystem();
    FileSystem(const FileSystem&) = delete;
    FileSystem& operator=(const FileSystem&) = delete;

    /// Takes the lock that a path stands for, creating a file there. Fails with `DeviceBusy` when
    /// another burn, of whatever process, holds it, and with the stop's reason once one was
    /// requested. A file system without locks gives none.
    virtual std::unique_ptr<ImageLock> lock(const std::string& path, const StopSignal& stop) = 0;

    /// Creates an empty file. Fails if there is anything at `path`. If there is a file at
    /// `replaced`, the new one gets its permissions, and its owner and group as far as this user
    /// may give them; at no time may anybody else open it.
    virtual std::unique_ptr<ImageFile> create(const std::string& path,
                                              const std::string& replaced) = 0;

    /// The content of a small file, read from the disk; nothing when there is none.
    virtual std::optional<std::string> content(const std::string& path) = 0;

    virtual void rename(const std::string& from, const std::string& to) = 0;

    /// Gives a file a second name; answers false where that is not possible.
    virtual bool link(const std::string& existing, const std::string& name) = 0;

    /// Removes a file; does nothing when there is none.
    virtual void remove(const std::string& path) = 0;

    /// Returns when the names of a folder are on the disk, as far as the file system can tell.
    virtual void syncFolder(const std::string& folder) = 0;
};

/// The file system of this machine.
std::shared_ptr<FileSystem> posixFileSystem();

} // namespace quarner
