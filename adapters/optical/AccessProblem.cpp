// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/AccessProblem.h"

#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <string_view>
#include <system_error>
#include <vector>

#include "adapters/optical/DriveOpening.h"

namespace quarner {
namespace {

bool isMember(gid_t group) {
    if (getegid() == group)
        return true;
    std::vector<gid_t> groups(std::size_t(std::max(0, getgroups(0, nullptr))));
    const int count = getgroups(int(groups.size()), groups.data());
    groups.resize(std::size_t(std::max(0, count)));
    return std::find(groups.begin(), groups.end(), group) != groups.end();
}

std::string nameOfGroup(gid_t group) {
    std::vector<char> buffer(4096);
    struct group entry = {};
    struct group* found = nullptr;
    getgrgid_r(group, &entry, buffer.data(), buffer.size(), &found);
    return found ? found->gr_name : std::to_string(group);
}

std::string permissionProblem(const std::string& node, int error) {
    struct stat found = {};
    const bool groupMay = stat(node.c_str(), &found) == 0 && (found.st_mode & 0060) == 0060;
    if (groupMay && !isMember(found.st_gid))
        return node + " may be opened only by members of the group " + nameOfGroup(found.st_gid);
    return node +
           " may not be opened for reading and writing: " + std::generic_category().message(error);
}

std::string_view remedy(int error) {
    switch (error) {
    case EBUSY:
        return "; its disc may be mounted";
    case EACCES:
        return "; an administrator can change that, then log in again";
    case EPERM: // a container may have no access to devices, whatever the node's mode
    case ENOENT:
        return "; in a container, the drive has to be passed through";
    default:
        return "";
    }
}

} // namespace

std::string openingProblem(const std::string& node, int error) {
    switch (error) {
    case EACCES:
        return permissionProblem(node, error);
    case EPERM:
        return "the system forbids opening " + node;
    case EBUSY:
        return node + " is in use by another program";
    case ENOENT:
        return "the drive has no device node " + node;
    default:
        return node + " cannot be opened: " + std::generic_category().message(error);
    }
}

std::optional<std::string> accessProblem(const std::string& node) {
    // The system itself opens a drive for a moment after each event.
    constexpr std::chrono::milliseconds timeout{500};
    const bool isPermitted = access(node.c_str(), R_OK | W_OK) == 0;
    const int result = isPermitted ? openDrive(node, timeout, nullptr) : -errno;
    if (result < 0)
        return openingProblem(node, -result).append(remedy(-result));
    close(result);
    return std::nullopt;
}

} // namespace quarner
