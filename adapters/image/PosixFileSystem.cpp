// SPDX-License-Identifier: LGPL-2.1-or-later
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <string>
#include <utility>

#include "adapters/engine/BurnFailure.h"
#include "adapters/image/FileSystem.h"
#include "adapters/image/PosixImageFile.h"
#include "adapters/posix/FileDescriptor.h"

namespace quarner {

ImageFile::~ImageFile() = default;
ImageLock::~ImageLock() = default;
FileSystem::~FileSystem() = default;

namespace {

class PosixLock : public ImageLock {
public:
    PosixLock(std::string path, FileDescriptor file)
        : _path(std::move(path)), _file(std::move(file)) {}
    /// Removed before it is let go of: nobody else can have taken it then.
    ~PosixLock() override { unlink(_path.c_str()); }

private:
    const std::string _path;
    const FileDescriptor _file;
};

/// Whether the file is still the one at the path: its last holder may have removed it between the
/// opening and the locking.
bool isAtPath(const FileDescriptor& file, const std::string& path) {
    struct stat opened = {};
    struct stat found = {};
    return fstat(file.number(), &opened) == 0 && stat(path.c_str(), &found) == 0 &&
           opened.st_dev == found.st_dev && opened.st_ino == found.st_ino;
}

class PosixFileSystem : public FileSystem {
public:
    std::unique_ptr<ImageLock> lock(const std::string& path) override;
    std::unique_ptr<ImageFile> create(const std::string& path) override {
        return std::make_unique<PosixImageFile>(path);
    }
    std::optional<std::string> content(const std::string& path) override;
    void rename(const std::string& from, const std::string& to) override;
    bool link(const std::string& existing, const std::string& name) override;
    void remove(const std::string& path) override;
    void syncFolder(const std::string& folder) override;
};

std::unique_ptr<ImageLock> PosixFileSystem::lock(const std::string& path) {
    constexpr mode_t readableByAll = 0666;
    while (true) {
        FileDescriptor file(
            open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, readableByAll));
        if (!file.isOpen())
            throw writeFailure(errno, "creating " + path);
        if (flock(file.number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
            throw BurnFailure(DRError::DeviceBusy, path + " is held by another burn");
        if (isAtPath(file, path))
            return std::make_unique<PosixLock>(path, std::move(file));
    }
}

std::optional<std::string> PosixFileSystem::content(const std::string& path) {
    constexpr std::size_t most = std::size_t(1) << 20;
    // A pipe of this name must not make anyone wait for its writer.
    const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file.isOpen() && errno == ENOENT)
        return std::nullopt;
    if (!file.isOpen())
        throw writeFailure(errno, "reading " + path); // before anything is written: no fault of it
    std::string text;
    std::array<char, 4096> buffer = {};
    posix_fadvise(file.number(), 0, 0, POSIX_FADV_DONTNEED);
    ssize_t count = 1;
    while (count > 0 && text.size() < most) {
        count = read(file.number(), buffer.data(), buffer.size());
        if (count > 0)
            text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    if (count < 0)
        throw BurnFailure(DRError::ReadBackFailed, "reading " + path + " failed");
    return text;
}

void PosixFileSystem::rename(const std::string& from, const std::string& to) {
    if (std::rename(from.c_str(), to.c_str()) != 0)
        throw writeFailure(errno, "renaming " + from + " to " + to);
}

bool PosixFileSystem::link(const std::string& existing, const std::string& name) {
    return ::link(existing.c_str(), name.c_str()) == 0;
}

void PosixFileSystem::remove(const std::string& path) {
    if (unlink(path.c_str()) != 0 && errno != ENOENT)
        throw writeFailure(errno, "removing " + path);
}

void PosixFileSystem::syncFolder(const std::string& folder) {
    const FileDescriptor file(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!file.isOpen())
        return; // a folder may be writable and yet not readable
    if (fsync(file.number()) != 0 && errno != EINVAL)
        throw writeFailure(errno, "writing " + folder);
}

} // namespace

std::shared_ptr<FileSystem> posixFileSystem() { return std::make_shared<PosixFileSystem>(); }

} // namespace quarner
