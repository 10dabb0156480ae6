// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/DriveList.h"

#include <algorithm>
#include <utility>

namespace quarner {

DriveList::DriveList(std::shared_ptr<RunLoops> runLoops) : _runLoops(std::move(runLoops)) {}

DriveList::~DriveList() = default;

void DriveList::notify(const char* notification, std::shared_ptr<DRDevice> drive) const {
    _runLoops->postToAll({notification, std::move(drive), {}});
}

std::string uniqueDriveName(const std::string& wanted,
                            const std::vector<std::shared_ptr<DRDevice>>& drives) {
    const auto isTaken = [&](const std::string& name) {
        return std::any_of(drives.begin(), drives.end(),
                           [&](const auto& drive) { return drive->displayName() == name; });
    };
    std::string candidate = wanted;
    for (int number = 2; isTaken(candidate); ++number)
        candidate = wanted + " (" + std::to_string(number) + ')';
    return candidate;
}

} // namespace quarner
