// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/AccessProblem.h"

#include <fcntl.h>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <vector>

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

} // namespace

std::optional<std::string> accessProblem(const std::string& node) {
    if (access(node.c_str(), R_OK | W_OK) == 0)
        return std::nullopt;
    const int error = errno;
    struct stat found = {};
    if (stat(node.c_str(), &found) != 0)
        return std::nullopt;
    const bool groupMay = (found.st_mode & 0060) == 0060;
    if (groupMay && !isMember(found.st_gid))
        return node + " may be opened only by members of the group " + nameOfGroup(found.st_gid);
    return node +
           " may not be opened for reading and writing: " + std::generic_category().message(error);
}

} // namespace quarner
