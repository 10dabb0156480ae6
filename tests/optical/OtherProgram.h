// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <string>

namespace quarner {

/// While the object exists, another program has the drive open exclusively.
class OtherProgram {
public:
    explicit OtherProgram(const std::string& node)
        : _descriptor(open(node.c_str(), O_RDWR | O_NONBLOCK | O_EXCL | O_CLOEXEC)) {}
    ~OtherProgram() { close(_descriptor); }
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;

private:
    const int _descriptor;
};

} // namespace quarner
