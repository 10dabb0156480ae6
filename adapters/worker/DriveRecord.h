// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

namespace quarner {

/// One optical drive as the system lists it.
struct DriveRecord {
    std::string node;        ///< the device node, "/dev/sr0"
    std::string sysPath;     ///< its folder in the system's device tree; gone when it is unplugged
    std::string vendor;      ///< as the drive reports it; may be empty
    std::string product;     ///< the same
    bool canWriteCD = false; ///< whether it records CD-R

    bool operator==(const DriveRecord&) const = default;
};

} // namespace quarner
