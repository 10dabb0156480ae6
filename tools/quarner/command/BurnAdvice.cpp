// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/command/BurnAdvice.h"

#include <string_view>

#include "quarner/platform/DRErrors.h"
#include "quarner/util/MultiMedia.h"
#include "tools/quarner/text/SafeText.h"

namespace quarner::cli {
namespace {

/// What can be done about a failed burn; empty if nothing can. Without a default, so that the
/// compiler names a code that is missing.
std::string_view adviceFor(DRError error) {
    switch (error) {
    case DRError::DeviceBusy:
        return "Wait until the other burn or program has ended.";
    case DRError::DeviceVanished:
        return "Reconnect the drive and use a new disc.";
    case DRError::DeviceNotPermitted:
        return "An administrator can change that; then log in again.";
    case DRError::MediaNotPresent:
    case DRError::MediaNotWritable:
    case DRError::WrongMedia:
        return "Insert a blank CD-R or CD-RW.";
    case DRError::TooManyTracks:
        return "Burn the files to several discs.";
    case DRError::SourceMissing:
        return "Put the file back, and try again.";
    case DRError::SourceChanged:
        return "Try again with the file as it is now.";
    case DRError::SourceUnreadable:
        return "Leave the file out, or replace it.";
    case DRError::PermissionDenied:
        return "Choose a folder that you may write to with --image, or change the folder's "
               "permissions.";
    case DRError::ReadBackFailed:
    case DRError::VerifyFailed:
        return "Try again, preferably with a new disc.";
    case DRError::UserCanceled:
    case DRError::MediaTooSmall:
    case DRError::EmptyLayout:
    case DRError::NoSpace: // see `adviceForFailedBurn`
    case DRError::WriteFailed:
    case DRError::Internal:
        return {};
    }
    return {};
}

} // namespace

std::string adviceForFailedBurn(std::int64_t code, std::uint64_t imageBytes) {
    if (code == signedCode(DRError::NoSpace))
        return "The image takes " +
               MultiMedia::stringWithFilesize(static_cast<std::int64_t>(imageBytes)) +
               ": make room for it, or put it on another file system with --image.";
    const auto error = static_cast<DRError>(static_cast<std::uint32_t>(code));
    return std::string(signedCode(error) == code ? adviceFor(error) : std::string_view());
}

std::string explainedFailure(std::int64_t code, const std::string& detail,
                             std::uint64_t imageBytes) {
    std::string text(textForBurnErrorCode(code));
    if (!detail.empty() && detail != text)
        text += " (" + safeText(detail) + ")";
    const std::string advice = adviceForFailedBurn(code, imageBytes);
    return advice.empty() ? text : text + "\n" + advice;
}

} // namespace quarner::cli
