// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/image/ReplacedFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "adapters/engine/BurnFailure.h"
#include "adapters/posix/SystemCall.h"

namespace quarner {
namespace {

constexpr mode_t groups = 0070;
constexpr mode_t permissions = 0777;

mode_t permissionsLike(const struct stat& old, const struct stat& made) {
    mode_t mode = old.st_mode & permissions;
    if (made.st_uid != old.st_uid)
        mode |= S_IRUSR | S_IWUSR;
    if (made.st_gid != old.st_gid)
        mode = (mode & ~groups) | (mode & S_IRWXO) << 3;
    return mode;
}

void takeOwner(int file, const struct stat& old) {
    const auto give = [&](uid_t user) {
        return uninterrupted([&] { return fchown(file, user, old.st_gid); }) == 0;
    };
    constexpr auto unchanged = static_cast<uid_t>(-1);
    static_cast<void>(give(old.st_uid) || give(unchanged)); // only root gives files away
}

} // namespace

std::optional<struct stat> statusOf(const std::string& path) {
    struct stat found = {};
    if (uninterrupted([&] { return stat(path.c_str(), &found); }) == 0)
        return found;
    if (errno != ENOENT)
        throw writeFailure(errno, "looking at " + path);
    return std::nullopt;
}

void refuseIrreplaceable(const std::string& path) {
    const std::optional<struct stat> found = statusOf(path);
    if (!found)
        return;
    if (!S_ISREG(found->st_mode))
        throw BurnFailure(DRError::WriteFailed, path + " is not a file and is not replaced");
    const auto askAccess = [&] { return faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS); };
    if (uninterrupted(askAccess) != 0)
        throw BurnFailure(DRError::PermissionDenied,
                          path + " may not be written to and is not replaced");
}

bool isThere(const std::string& path) {
    struct stat found = {};
    if (uninterrupted([&] { return lstat(path.c_str(), &found); }) == 0)
        return true;
    if (errno != ENOENT)
        throw writeFailure(errno, "looking at " + path);
    return false;
}

bool takeAccess(const FileDescriptor& file, const struct stat& old) {
    takeOwner(file.number(), old);
    struct stat made = {};
    if (uninterrupted([&] { return fstat(file.number(), &made); }) != 0)
        return false;
    const mode_t wanted = permissionsLike(old, made);
    if ((made.st_mode & permissions) == wanted)
        return true;
    const bool isSet = uninterrupted([&] { return fchmod(file.number(), wanted); }) == 0;
    return isSet || errno == EPERM || errno == EOPNOTSUPP || errno == ENOSYS;
}

} // namespace quarner
