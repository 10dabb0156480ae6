// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/posix/FileStamps.h"

#include <fcntl.h>
#include <unistd.h>

#include "adapters/posix/SystemCall.h"

namespace quarner {

std::optional<FileStamp> stampOfFile(const std::string& path) {
    struct stat status = {};
    const int outcome = uninterrupted([&] { return stat(path.c_str(), &status); });
    if (outcome != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return stampOf(status);
}

bool mayBeRead(const std::string& path) {
    return uninterrupted([&] { return faccessat(AT_FDCWD, path.c_str(), R_OK, AT_EACCESS); }) == 0;
}

} // namespace quarner
