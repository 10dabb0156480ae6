// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/NodeDescriptors.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

namespace quarner {
namespace {

// As documented in proc(5).
const std::string descriptorFolder = "/proc/self/fd";
constexpr std::string_view removed = " (deleted)";

constexpr const char* emptyFile = "quarner-lost-drive";

} // namespace

NodeDescriptors::NodeDescriptors(std::string path) : _path(std::move(path)), _before(open()) {}

std::string NodeDescriptors::pathOf(int descriptor) {
    std::error_code error;
    const std::string link = descriptorFolder + '/' + std::to_string(descriptor);
    std::string path = std::filesystem::read_symlink(link, error).string();
    if (path.ends_with(removed))
        path.resize(path.size() - removed.size());
    return path;
}

/// Reads the names of the descriptors, because other threads may close theirs at any moment.
std::set<int> NodeDescriptors::open() const {
    std::set<int> found;
    std::error_code error;
    std::filesystem::directory_iterator entry(descriptorFolder, error);
    for (; entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const int descriptor = std::atoi(entry->path().filename().c_str());
        if (!_path.empty() && pathOf(descriptor) == _path)
            found.insert(descriptor);
    }
    return found;
}

std::set<int> NodeDescriptors::openedSince() const {
    std::set<int> opened = open();
    for (const int descriptor : _before)
        opened.erase(descriptor);
    return opened;
}

bool replaceByEmptyFile(const std::set<int>& descriptors, const std::string& path) {
    const int nothing = memfd_create(emptyFile, MFD_CLOEXEC);
    if (nothing < 0)
        return false;
    for (const int descriptor : descriptors)
        if (NodeDescriptors::pathOf(descriptor) == path)
            dup3(nothing, descriptor, O_CLOEXEC);
    close(nothing);
    return true;
}

void closeReplaced(const std::set<int>& descriptors) {
    for (const int descriptor : descriptors)
        if (NodeDescriptors::pathOf(descriptor) == std::string("/memfd:") + emptyFile)
            close(descriptor);
}

} // namespace quarner
