// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/image/ReplacedFile.h"

#include <sys/stat.h>

#include <cerrno>

#include "adapters/engine/BurnFailure.h"

namespace quarner {

void refuseOtherThanFile(const std::string& path) {
    struct stat found = {};
    const bool isFound = stat(path.c_str(), &found) == 0;
    if (!isFound && errno != ENOENT)
        throw writeFailure(errno, "looking at " + path);
    if (isFound && !S_ISREG(found.st_mode))
        throw BurnFailure(DRError::WriteFailed, path + " is not a file and is not replaced");
}

bool isThere(const std::string& path) {
    struct stat found = {};
    return lstat(path.c_str(), &found) == 0;
}

} // namespace quarner
