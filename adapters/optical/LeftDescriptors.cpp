// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/LeftDescriptors.h"

#include <dirent.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>

namespace quarner {

LeftDescriptors::LeftDescriptors(const struct stat& file) : _file(file), _before(open()) {}

std::set<int> LeftDescriptors::open() const {
    std::set<int> found;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir("/proc/self/fd"), closedir);
    while (const dirent* entry = folder ? readdir(folder.get()) : nullptr) {
        struct stat file = {};
        const int descriptor = std::atoi(entry->d_name);
        if (entry->d_name[0] != '.' && fstat(descriptor, &file) == 0 &&
            file.st_dev == _file.st_dev && file.st_ino == _file.st_ino)
            found.insert(descriptor);
    }
    return found;
}

void LeftDescriptors::closeAll() const {
    for (const int descriptor : open())
        if (!_before.contains(descriptor))
            close(descriptor);
}

} // namespace quarner
