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

/// A file that is written once from start to end, and then read back. Used by one thread at a time
/// unless the comment says otherwise. Every operation throws a `BurnFailure` that names the file.
class ImageFile {
public:
    /// The number of threads that read an image back at once.
    static constexpr unsigned readers = 2;

    ImageFile() = default;
    virtual ~ImageFile();
    ImageFile(const ImageFile&) = delete;
    ImageFile& operator=(const ImageFile&) = delete;

    /// Reserves `size` bytes on the disk if the file system can do that at no cost.
    virtual void reserve(std::uint64_t size) = 0;

    /// Appends bytes, which may stay in memory until `sync`.
    virtual void append(std::span<const std::byte> bytes) = 0;

    /// Returns after all bytes are on the disk. Nothing may be appended afterwards.
    virtual void sync() = 0;

    /// Fills the buffer from the disk rather than from the page cache, as far as the file system
    /// allows. After `sync`, on any number of threads. The offset and the buffer's address are
    /// multiples of `bufferAlignment`. Throws at the end of the file.
    virtual void read(std::uint64_t offset, std::span<std::byte> buffer) = 0;
};

/// Prevents other burns to the same image. The destructor releases the lock and removes its file;
/// if the process is killed, the system releases it.
class ImageLock {
public:
    ImageLock() = default;
    virtual ~ImageLock();
    ImageLock(const ImageLock&) = delete;
    ImageLock& operator=(const ImageLock&) = delete;
};

/// The file system operations that an image needs. Every operation throws a `BurnFailure` that
/// names the file, and may be called on any thread.
class FileSystem {
public:
    FileSystem() = default;
    virtual ~FileSystem();
    FileSystem(const FileSystem&) = delete;
    FileSystem& operator=(const FileSystem&) = delete;

    /// Locks the file at `path`, creating it if necessary. Throws `DeviceBusy` if another burn of
    /// any process holds the lock, and the reason of `stop` if a stop was requested. Returns null
    /// on a file system without locks.
    virtual std::unique_ptr<ImageLock> lock(const std::string& path, const StopSignal& stop) = 0;

    /// Creates an empty file. Fails if there is anything at `path`. If there is a file at
    /// `replaced`, the new one gets its permissions, and its owner and group as far as this user
    /// may give them; at no time may anybody else open it.
    virtual std::unique_ptr<ImageFile> create(const std::string& path,
                                              const std::string& replaced) = 0;

    /// Returns the content of a small file, read from the disk; `std::nullopt` if it does not
    /// exist.
    virtual std::optional<std::string> content(const std::string& path) = 0;

    virtual void rename(const std::string& from, const std::string& to) = 0;

    /// Gives a file a second name. Returns false if that is not possible.
    virtual bool link(const std::string& existing, const std::string& name) = 0;

    /// Removes a file. Does nothing if it does not exist.
    virtual void remove(const std::string& path) = 0;

    /// Returns after the names in a folder are on the disk, as far as the file system reports that.
    virtual void syncFolder(const std::string& folder) = 0;
};

/// The file system of this machine.
std::shared_ptr<FileSystem> posixFileSystem();

} // namespace quarner
