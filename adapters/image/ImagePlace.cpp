// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/image/ImagePlace.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "adapters/image/ReplacedFile.h"
#include "adapters/posix/SystemCall.h"

namespace quarner {
namespace {

void refuseClosedFolder(const std::string& folder) {
    const auto askAccess = [&] {
        return faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS);
    };
    if (uninterrupted(askAccess) != 0)
        throw writeFailure(errno, "writing to the folder " + folder);
}

} // namespace

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
