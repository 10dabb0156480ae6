// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/drive/AccessProblem.h"

#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <system_error>
#include <vector>

#include "adapters/drive/DriveOpening.h"
#include "quarner/platform/Texts.h"

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
        return text("{node} may be opened only by members of the group {group}",
                    {{"node", node}, {"group", nameOfGroup(found.st_gid)}});
    return text("{node} may not be opened for reading and writing: {error}",
                {{"node", node}, {"error", std::generic_category().message(error)}});
}

/// A problem together with what can be done about it.
const char* messageWithRemedy(int error) {
    switch (error) {
    case EBUSY:
        return translatable("{problem}; its disc may be mounted");
    case EACCES:
        return translatable("{problem}; an administrator can change that, then log in again");
    case EPERM: // a container may have no access to devices, whatever the node's mode
    case ENOENT:
        return translatable("{problem}; in a container, the drive has to be passed through");
    default:
        return "{problem}";
    }
}

} // namespace

std::string openingProblem(const std::string& node, int error) {
    switch (error) {
    case EACCES:
        return permissionProblem(node, error);
    case EPERM:
        return text("the system forbids opening {node}", {{"node", node}});
    case EBUSY:
        return text("{node} is in use by another program", {{"node", node}});
    case ENOENT:
        return text("the drive has no device node {node}", {{"node", node}});
    default:
        return text("{node} cannot be opened: {error}",
                    {{"node", node}, {"error", std::generic_category().message(error)}});
    }
}

std::optional<std::string> accessProblem(const std::string& node) {
    // The system itself opens a drive for a moment after each event.
    constexpr std::chrono::milliseconds timeout{500};
    const bool isPermitted = access(node.c_str(), R_OK | W_OK) == 0;
    const int result = isPermitted ? openDrive(node, timeout, nullptr) : -errno;
    if (result < 0)
        return text(messageWithRemedy(-result), {{"problem", openingProblem(node, -result)}});
    close(result);
    return std::nullopt;
}

} // namespace quarner
