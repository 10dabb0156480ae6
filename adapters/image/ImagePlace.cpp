// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/image/ImagePlace.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "adapters/posix/SystemCall.h"
#include "quarner/platform/Texts.h"

namespace quarner {
namespace {

/// Throws `BurnFailure` if an image may not replace what is at a path: something that is not a
/// regular file, a file that this user may not write to, or one whose status cannot be read.
void refuseIrreplaceable(const std::string& path) {
    const std::optional<struct stat> found = statusOf(path);
    if (!found)
        return;
    if (!S_ISREG(found->st_mode))
        throw BurnFailure(DRError::WriteFailed,
                          text("{path} is not a file and is not replaced", {{"path", path}}), path);
    const auto askAccess = [&] { return faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS); };
    if (uninterrupted(askAccess) == 0)
        return;
    const int error = errno;
    constexpr const char* message = translatable("asking for access to {path}: {error}");
    if (writeFailure(error, message, path).error() != DRError::PermissionDenied)
        throw writeFailure(error, message, path);
    throw BurnFailure(DRError::PermissionDenied,
                      text("{path} may not be written to and is not replaced", {{"path", path}}),
                      path);
}

void refuseClosedFolder(const std::string& folder) {
    const auto askAccess = [&] {
        return faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS);
    };
    if (uninterrupted(askAccess) == 0)
        return;
    if (errno == ENOENT)
        throw BurnFailure(DRError::FolderMissing, text("{path} does not exist", {{"path", folder}}),
                          folder);
    throw writeFailure(errno, translatable("writing to the folder {path}: {error}"), folder);
}

} // namespace

std::optional<struct stat> statusOf(const std::string& path) {
    struct stat found = {};
    if (uninterrupted([&] { return stat(path.c_str(), &found); }) == 0)
        return found;
    if (errno != ENOENT)
        throw writeFailure(errno, translatable("looking at {path}: {error}"), path);
    return std::nullopt;
}

bool isThere(const std::string& path) {
    struct stat found = {};
    if (uninterrupted([&] { return lstat(path.c_str(), &found); }) == 0)
        return true;
    if (errno != ENOENT)
        throw writeFailure(errno, translatable("looking at {path}: {error}"), path);
    return false;
}

void refuseUnfitPlace(const CueNames& names) {
    for (const std::string* file : {&names.cue, &names.plainBin, &names.newBin})
        refuseIrreplaceable(*file);
    refuseClosedFolder(names.folder);
}

void refuseUnfitPlace(const IsoNames& names) {
    refuseIrreplaceable(names.iso);
    refuseClosedFolder(names.folder);
}

std::optional<BurnFailure> problemOfPlace(const std::string& path) {
    try {
        if (const std::optional<CueNames> names = cueNames(path))
            refuseUnfitPlace(*names);
        else if (const std::optional<IsoNames> data = isoNames(path))
            refuseUnfitPlace(*data);
    } catch (const BurnFailure& failure) {
        return failure;
    }
    return std::nullopt;
}

} // namespace quarner
