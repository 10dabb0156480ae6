// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/BurnFailure.h"

#include <cerrno>
#include <system_error>

#include "quarner/platform/Texts.h"

namespace quarner {
namespace {

DRError codeForErrno(int errorNumber) {
    switch (errorNumber) {
    case ENOSPC:
    case EDQUOT:
        return DRError::NoSpace;
    case EACCES:
    case EPERM:
    case EROFS:
        return DRError::PermissionDenied;
    default:
        return DRError::WriteFailed;
    }
}

} // namespace

BurnFailure writeFailure(int errorNumber, const char* message, const std::string& path,
                         const std::string& from) {
    return {codeForErrno(errorNumber),
            text(message, {{"path", path},
                           {"from", from},
                           {"error", std::generic_category().message(errorNumber)}}),
            path};
}

} // namespace quarner
