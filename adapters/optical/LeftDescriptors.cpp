// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/LeftDescriptors.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

namespace quarner {
namespace {

// As proc(5) has them.
const std::string descriptors = "/proc/self/fd";
constexpr std::string_view removed = " (deleted)";

} // namespace

LeftDescriptors::LeftDescriptors(std::string place) : _place(std::move(place)), _before(open()) {}

std::string LeftDescriptors::placeOf(int descriptor) {
    std::error_code error;
    const std::string link = descriptors + '/' + std::to_string(descriptor);
    std::string place = std::filesystem::read_symlink(link, error).string();
    if (place.ends_with(removed))
        place.resize(place.size() - removed.size());
    return place;
}

/// By the names of the descriptors: those of other threads may be closed at any moment.
std::set<int> LeftDescriptors::open() const {
    std::set<int> found;
    std::error_code error;
    std::filesystem::directory_iterator entry(descriptors, error);
    for (; entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const int descriptor = std::atoi(entry->path().filename().c_str());
        if (!_place.empty() && placeOf(descriptor) == _place)
            found.insert(descriptor);
    }
    return found;
}

void LeftDescriptors::findOpened() {
    _opened = open();
    for (const int descriptor : _before)
        _opened.erase(descriptor);
}

void LeftDescriptors::closeAll() const {
    for (const int descriptor : _opened)
        if (placeOf(descriptor) == _place)
            close(descriptor);
}

} // namespace quarner
