// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <unistd.h>

#include <utility>

namespace quarner {

/// Owns an open file descriptor, or none (-1).
class FileDescriptor {
public:
    explicit FileDescriptor(int number = -1) : _number(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : _number(std::exchange(other._number, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(_number, other._number);
        return *this;
    }
    ~FileDescriptor() {
        if (_number >= 0)
            close(_number);
    }

    int number() const { return _number; }
    bool isOpen() const { return _number >= 0; }

private:
    int _number;
};

} // namespace quarner
