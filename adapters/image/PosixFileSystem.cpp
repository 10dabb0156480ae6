// SPDX-License-Identifier: LGPL-2.1-or-later
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <span>
#include <string>
#include <system_error>
#include <utility>

#include "adapters/engine/BurnFailure.h"
#include "adapters/image/FileSystem.h"
#include "adapters/image/PosixImageFile.h"
#include "adapters/posix/FileDescriptor.h"
#include "adapters/posix/RegularFile.h"
#include "adapters/posix/SystemCall.h"
#include "quarner/platform/Texts.h"

namespace quarner {

namespace {

class PosixLock : public ImageLock {
public:
    PosixLock(std::string path, FileDescriptor file)
        : _path(std::move(path)), _file(std::move(file)) {}
    /// Removes the file before it releases the lock, so that no other process can hold it then.
    ~PosixLock() override {
        uninterrupted([this] { return unlink(_path.c_str()); });
    }

private:
    const std::string _path;
    const FileDescriptor _file;
};

FileDescriptor openedLock(const std::string& path) {
    constexpr mode_t readableByAll = 0666;
    constexpr int flags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
    FileDescriptor file(uninterrupted([&] { return open(path.c_str(), flags, readableByAll); }));
    if (!file.isOpen())
        throw writeFailure(errno, translatable("creating {path}: {error}"), path);
    return file;
}

void takeLock(const FileDescriptor& file, const std::string& path) {
    if (uninterrupted([&] { return flock(file.number(), LOCK_EX | LOCK_NB); }) == 0)
        return;
    if (errno == EWOULDBLOCK)
        throw BurnFailure(DRError::DeviceBusy,
                          text("{path} is held by another burn", {{"path", path}}), path);
    const bool hasNoLocks = errno == ENOLCK || errno == EOPNOTSUPP || errno == ENOSYS;
    if (!hasNoLocks)
        throw writeFailure(errno, translatable("locking {path}: {error}"), path);
}

/// Returns whether the file is still the one at the path: the last holder may have removed it
/// between the opening and the locking.
bool isAtPath(const FileDescriptor& file, const std::string& path) {
    struct stat opened = {};
    struct stat found = {};
    if (uninterrupted([&] { return fstat(file.number(), &opened); }) != 0)
        throw writeFailure(errno, translatable("locking {path}: {error}"), path);
    if (uninterrupted([&] { return stat(path.c_str(), &found); }) == 0)
        return opened.st_dev == found.st_dev && opened.st_ino == found.st_ino;
    if (errno != ENOENT)
        throw writeFailure(errno, translatable("locking {path}: {error}"), path);
    return false;
}

class PosixFileSystem : public FileSystem {
public:
    std::unique_ptr<ImageLock> lock(const std::string& path, const StopSignal& stop) override;
    std::unique_ptr<ImageFile> create(const std::string& path,
                                      const std::string& replaced) override {
        return std::make_unique<PosixImageFile>(path, replaced);
    }
    std::optional<std::string> content(const std::string& path) override;
    void rename(const std::string& from, const std::string& to) override;
    bool link(const std::string& existing, const std::string& name) override;
    void remove(const std::string& path) override;
    void syncFolder(const std::string& folder) override;
};

std::unique_ptr<ImageLock> PosixFileSystem::lock(const std::string& path, const StopSignal& stop) {
    // Each holder that lets go in between costs one attempt. Some network file systems number a
    // file differently each time: there, no attempt would be the last.
    constexpr int attempts = 100;
    for (int i = 0; i < attempts; ++i) {
        stop.throwIfRequested();
        FileDescriptor file = openedLock(path);
        takeLock(file, path);
        if (isAtPath(file, path))
            return std::make_unique<PosixLock>(path, std::move(file));
    }
    throw BurnFailure(
        DRError::WriteFailed,
        text("locking {path}: the file system does not keep the file there", {{"path", path}}),
        path);
}

std::optional<std::string> PosixFileSystem::content(const std::string& path) {
    constexpr std::size_t most = std::size_t(1) << 20;
    const RegularFile file(path);
    if (file.error() == ENOENT)
        return std::nullopt;
    if (!file.isOpen()) // before anything is written: not a write failure of the image
        throw writeFailure(file.error(), translatable("reading {path}: {error}"), path);
    std::string text;
    std::array<char, 4096> buffer = {};
    posix_fadvise(file.number(), 0, 0, POSIX_FADV_DONTNEED);
    ssize_t count = 1;
    while (count > 0 && text.size() < most) {
        count = file.read(std::as_writable_bytes(std::span(buffer)));
        if (count > 0)
            text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    if (count < 0)
        throw BurnFailure(
            DRError::ReadBackFailed,
            quarner::text("reading {path}: {error}",
                          {{"path", path}, {"error", std::generic_category().message(errno)}}),
            path);
    return text;
}

void PosixFileSystem::rename(const std::string& from, const std::string& to) {
    if (uninterrupted([&] { return std::rename(from.c_str(), to.c_str()); }) != 0)
        throw writeFailure(errno, translatable("renaming {from} to {path}: {error}"), to, from);
}

bool PosixFileSystem::link(const std::string& existing, const std::string& name) {
    return uninterrupted([&] { return ::link(existing.c_str(), name.c_str()); }) == 0;
}

void PosixFileSystem::remove(const std::string& path) {
    if (uninterrupted([&] { return unlink(path.c_str()); }) != 0 && errno != ENOENT)
        throw writeFailure(errno, translatable("removing {path}: {error}"), path);
}

void PosixFileSystem::syncFolder(const std::string& folder) {
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
    const FileDescriptor file(uninterrupted([&] { return open(folder.c_str(), flags); }));
    if (!file.isOpen())
        return; // a folder may be writable but not readable
    if (uninterrupted([&] { return fsync(file.number()); }) != 0 && errno != EINVAL)
        throw writeFailure(errno, translatable("writing {path}: {error}"), folder);
}

} // namespace

std::shared_ptr<FileSystem> posixFileSystem() { return std::make_shared<PosixFileSystem>(); }

} // namespace quarner
