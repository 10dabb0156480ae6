// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/LeftDescriptors.h"

#include <dirent.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace quarner {

LeftDescriptors::LeftDescriptors(const struct stat& file) : _file(file), _before(open()) {}

/// By the names of the descriptors: those of other threads may be closed at any moment.
std::set<int> LeftDescriptors::open() const {
    std::set<int> found;
    const std::string place = "/proc/self/fd";
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(place.c_str()), closedir);
    // NOLINTNEXTLINE(concurrency-mt-unsafe): no other thread reads this folder object
    while (const dirent* entry = folder ? readdir(folder.get()) : nullptr) {
        struct stat file = {};
        if (stat((place + '/' + entry->d_name).c_str(), &file) == 0 &&
            file.st_dev == _file.st_dev && file.st_ino == _file.st_ino)
            found.insert(std::atoi(entry->d_name));
    }
    return found;
}

void LeftDescriptors::closeAll() const {
    for (const int descriptor : open())
        if (!_before.contains(descriptor))
            close(descriptor);
}

} // namespace quarner
