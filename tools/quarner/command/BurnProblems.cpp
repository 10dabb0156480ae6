// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/command/BurnProblems.h"

#include <string_view>

#include "quarner/platform/DRErrors.h"
#include "quarner/util/MultiMedia.h"
#include "tools/quarner/command/DriveChoice.h"
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
        return "Restore the file and try again.";
    case DRError::SourceChanged:
        return "Try again with the file as it is now.";
    case DRError::SourceUnreadable:
        return "Leave the file out, or replace it.";
    case DRError::PermissionDenied:
        return "Choose a folder that you may write to with --image, or change the permissions of "
               "the file or folder.";
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

std::string explained(DRError error) { return explainedFailure(signedCode(error), "", 0); }

/// By which a drive seems to have no disc.
std::string reasonForNoDisc(const Host& host, const QuarnerDevice& device) {
    const std::string drive = device.deviceName().value_or("");
    if (!isAttached(drive))
        return std::string(textForBurnErrorCode(signedCode(DRError::DeviceVanished)));
    if (device.isCheckingDisc())
        return "the drive still examines the disc.\nTry again when it is done.";
    const std::string problem = host.accessProblem(drive);
    return problem.empty() ? explained(DRError::MediaNotPresent) : problemText(drive, problem);
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

std::string discProblem(const Host& host, const QuarnerDevice& device) {
    if (!device.isDiscInDevice())
        return reasonForNoDisc(host, device);
    if (!device.isCDDisc())
        return explained(DRError::WrongMedia);
    const bool isWritable =
        device.isDiscBlank() || device.isDiscErasable() || device.isDiscOverwritable();
    return isWritable ? "" : explained(DRError::MediaNotWritable);
}

} // namespace quarner::cli
