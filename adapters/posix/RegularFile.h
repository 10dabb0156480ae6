// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <system_error>
#include <utility>

#include "adapters/posix/FileDescriptor.h"
#include "adapters/posix/FileStamps.h"
#include "adapters/posix/SystemCall.h"

namespace quarner {

/// A regular file that the user named, opened for reading. Neither opening nor reading it waits for
/// anybody: what is at a path may have been replaced by a FIFO, a device, a socket or a folder
/// since it was looked at, and some files of the kernel wait for their next line. Used by one
/// thread at a time.
class RegularFile {
public:
    /// Opens the file at a path; symbolic links are followed. Anything but a regular file is
    /// refused without being read.
    explicit RegularFile(const std::string& path) {
        struct stat found = {};
        // Before opening, too: to open some devices does something to them.
        if (uninterrupted([&] { return stat(path.c_str(), &found); }) != 0)
            _error = errno;
        else if (isRegular(found))
            open(path);
    }

    bool isOpen() const { return _descriptor.isOpen(); }

    /// Why the file is not open, without its path: "No such file or directory", "not a regular
    /// file". Empty if it is open.
    std::string problem() const {
        if (_error == notRegular)
            return "not a regular file";
        return _error == 0 ? std::string() : std::generic_category().message(_error);
    }

    /// The `errno` with which opening failed: `notRegular` for anything but a regular file, 0 if
    /// the file is open.
    int error() const { return _error; }
    static constexpr int notRegular = EINVAL;

    /// For what is not done here: seeking, advice. -1 if the file is not open.
    int number() const { return _descriptor.number(); }

    /// The stamp of the file when it was opened, whatever is at its path now: equal to that of
    /// `stampOfFile` if it is the same file, unchanged. All zero if no file is open.
    const FileStamp& stamp() const { return _stamp; }

    /// Reads at most `buffer.size()` bytes from the current position on. Returns their number, 0 at
    /// the end of the file, and -1 with `errno` if it fails: `EAGAIN` for a file of the kernel that
    /// has nothing to say now.
    ssize_t read(std::span<std::byte> buffer) const {
        return uninterrupted([&] { return ::read(number(), buffer.data(), buffer.size()); });
    }

private:
    void open(const std::string& path) {
        constexpr int flags = O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
        FileDescriptor opened(uninterrupted([&] { return ::open(path.c_str(), flags); }));
        struct stat found = {};
        if (!opened.isOpen() || uninterrupted([&] { return fstat(opened.number(), &found); }) != 0)
            _error = errno;
        else if (isRegular(found)) {
            _descriptor = std::move(opened);
            _stamp = stampOf(found);
        }
    }
    bool isRegular(const struct stat& found) {
        if (!S_ISREG(found.st_mode))
            _error = notRegular;
        return S_ISREG(found.st_mode);
    }

    FileDescriptor _descriptor;
    FileStamp _stamp;
    int _error = 0;
};

} // namespace quarner
