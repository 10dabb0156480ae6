// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/image/PosixImageFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>

#include "adapters/engine/BurnFailure.h"
#include "adapters/image/ImagePlace.h"
#include "adapters/posix/SystemCall.h"
#include "quarner/platform/Texts.h"

namespace quarner {
namespace {

constexpr std::size_t bufferSize = std::size_t(1) << 20;
constexpr std::uint64_t writeBackStep = std::uint64_t(8) << 20;
constexpr mode_t groups = 0070;
constexpr mode_t permissions = 0777;

FileDescriptor create(const std::string& path, mode_t mode) {
    constexpr int flags = O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW;
    FileDescriptor file(uninterrupted([&] { return open(path.c_str(), flags, mode); }));
    if (!file.isOpen())
        throw writeFailure(errno, translatable("creating {path}: {error}"), path);
    return file;
}

/// Returns whether the file system accepts that.
bool enterDirectMode(const FileDescriptor& file) {
    const int flags = fcntl(file.number(), F_GETFL);
    return flags >= 0 && fcntl(file.number(), F_SETFL, flags | O_DIRECT) == 0;
}

mode_t permissionsLike(const struct stat& old, const struct stat& made) {
    mode_t mode = old.st_mode & permissions;
    if (made.st_uid != old.st_uid)
        mode |= S_IRUSR | S_IWUSR;
    if (made.st_gid != old.st_gid)
        mode = (mode & ~groups) | (mode & S_IRWXO) << 3;
    return mode;
}

void takeOwner(int file, const struct stat& old) {
    const auto give = [&](uid_t user) {
        return uninterrupted([&] { return fchown(file, user, old.st_gid); }) == 0;
    };
    constexpr auto unchanged = static_cast<uid_t>(-1);
    static_cast<void>(give(old.st_uid) || give(unchanged)); // only root gives files away
}

/// Gives a new file the permissions of an old one, and its owner and group as far as this user may
/// give them. What the old file granted to another owner or group is not granted to the new one's:
/// the owner can always read and write it then, and its group gets what everybody gets. Returns
/// false, with `errno`, if the permissions cannot be set; a file system without permissions is
/// fine.
bool takeAccess(const FileDescriptor& file, const struct stat& old) {
    takeOwner(file.number(), old);
    struct stat made = {};
    if (uninterrupted([&] { return fstat(file.number(), &made); }) != 0)
        return false;
    const mode_t wanted = permissionsLike(old, made);
    if ((made.st_mode & permissions) == wanted)
        return true;
    const bool isSet = uninterrupted([&] { return fchmod(file.number(), wanted); }) == 0;
    return isSet || errno == EPERM || errno == EOPNOTSUPP || errno == ENOSYS;
}

/// Nobody else may open the file until it has the permissions of the one that it replaces.
FileDescriptor createLike(const std::string& path, const std::string& replaced) {
    constexpr mode_t readableByAll = 0666; // the umask is subtracted
    constexpr mode_t readableByOwner = 0600;
    const std::optional<struct stat> old = statusOf(replaced);
    FileDescriptor file = create(path, old ? readableByOwner : readableByAll);
    if (old && !takeAccess(file, *old))
        throw writeFailure(errno, translatable("setting the permissions of {path}: {error}"), path);
    return file;
}

/// Leaves direct mode, because some file systems accept the flag and then refuse to read or write.
/// Returns whether the file was in direct mode.
bool leaveDirectMode(const FileDescriptor& file) {
    const int flags = fcntl(file.number(), F_GETFL);
    return flags >= 0 && (flags & O_DIRECT) != 0 &&
           fcntl(file.number(), F_SETFL, flags & ~O_DIRECT) == 0;
}

BurnFailure readFailure(int errorNumber, const std::string& path) {
    return {DRError::ReadBackFailed,
            text("reading {path}: {error}",
                 {{"path", path}, {"error", std::generic_category().message(errorNumber)}})};
}

} // namespace

PosixImageFile::PosixImageFile(const std::string& path, const std::string& replaced)
    : _path(path), _file(createLike(path, replaced)), _isDirect(enterDirectMode(_file)),
      _buffer(bufferSize) {}

void PosixImageFile::reserve(std::uint64_t size) {
    const auto allocate = [&] {
        constexpr int plain = 0;
        return fallocate(_file.number(), plain, 0, static_cast<off_t>(size));
    };
    if (uninterrupted(allocate) == 0)
        return;
    if (errno != EOPNOTSUPP && errno != ENOSYS && errno != EINVAL)
        throw writeFailure(errno, translatable("reserving space for {path}: {error}"), _path);
}

void PosixImageFile::append(std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const auto part = bytes.first(std::min(bytes.size(), bufferSize - _buffered));
        std::memcpy(_buffer.bytes().data() + _buffered, part.data(), part.size());
        _buffered += part.size();
        if (_buffered == bufferSize)
            flush();
        bytes = bytes.subspan(part.size());
    }
}

/// The last buffer is padded to the alignment; `sync` truncates the file.
void PosixImageFile::flush() {
    const std::size_t padded = (_buffered + bufferAlignment - 1) & ~(bufferAlignment - 1);
    const auto bytes = _buffer.bytes().first(padded);
    std::memset(bytes.data() + _buffered, 0, padded - _buffered);
    writeAll(bytes);
    _written += _buffered;
    _buffered = 0;
    if (!_isDirect)
        startWriteBack();
}

void PosixImageFile::writeAll(std::span<const std::byte> bytes) {
    auto offset = static_cast<off_t>(_written);
    while (!bytes.empty()) {
        const ssize_t count = uninterrupted(
            [&] { return pwrite(_file.number(), bytes.data(), bytes.size(), offset); });
        if (count > 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(count));
            offset += count;
        } else if (count == 0) {
            throw BurnFailure(DRError::WriteFailed,
                              text("writing {path}: no byte is taken", {{"path", _path}}), _path);
        } else if (errno == EINVAL && leaveDirectMode(_file)) {
            _isDirect = false;
        } else {
            throw writeFailure(errno, translatable("writing {path}: {error}"), _path);
        }
    }
}

void PosixImageFile::startWriteBack() {
    if (_written - _writtenBack < writeBackStep)
        return;
    sync_file_range(_file.number(), static_cast<off_t>(_writtenBack),
                    static_cast<off_t>(_written - _writtenBack), SYNC_FILE_RANGE_WRITE);
    _writtenBack = _written;
}

void PosixImageFile::sync() {
    flush();
    const auto cutOff = [this] { return ftruncate(_file.number(), static_cast<off_t>(_written)); };
    const auto sync = [this] { return fsync(_file.number()); };
    if (uninterrupted(cutOff) != 0 || uninterrupted(sync) != 0)
        throw writeFailure(errno, translatable("writing {path}: {error}"), _path);
    posix_fadvise(_file.number(), 0, 0, POSIX_FADV_DONTNEED);
    posix_fadvise(_file.number(), 0, 0, POSIX_FADV_SEQUENTIAL);
}

void PosixImageFile::read(std::uint64_t offset, std::span<std::byte> buffer) {
    const std::size_t aligned = buffer.size() & ~(bufferAlignment - 1);
    readPart(offset, buffer.first(aligned), aligned);
    const auto rest = buffer.subspan(aligned);
    if (rest.empty())
        return;
    SectorBuffer end(bufferAlignment);
    readPart(offset + aligned, end.bytes(), rest.size());
    std::copy_n(end.bytes().begin(), rest.size(), rest.begin());
}

void PosixImageFile::readPart(std::uint64_t offset, std::span<std::byte> buffer,
                              std::size_t needed) const {
    std::size_t got = 0;
    while (got < needed) {
        const ssize_t count = uninterrupted([&] {
            return pread(_file.number(), buffer.data() + got, buffer.size() - got,
                         static_cast<off_t>(offset + got));
        });
        if (count < 0 && (errno != EINVAL || !leaveDirectMode(_file)))
            throw readFailure(errno, _path);
        if (count == 0)
            throw BurnFailure(DRError::VerifyFailed,
                              text("{path} is shorter than what was written", {{"path", _path}}),
                              _path);
        got += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
}

} // namespace quarner
