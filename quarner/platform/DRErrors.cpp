// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/DRErrors.h"

namespace quarner {
namespace {

constexpr std::string_view unknown = "the drive reported an unknown error";

/// Without a default, so that the compiler names a code that is missing.
std::string_view textFor(DRError error) {
    switch (error) {
    case DRError::UserCanceled:
        return "the burn was cancelled";
    case DRError::DeviceBusy:
        return "the drive is busy with another burn or program";
    case DRError::DeviceVanished:
        return "the drive was unplugged";
    case DRError::MediaNotPresent:
        return "there is no disc in the drive";
    case DRError::MediaNotWritable:
        return "the disc cannot be written";
    case DRError::MediaTooSmall:
        return "the content does not fit the disc";
    case DRError::WrongMedia:
        return "the disc is not a recordable CD";
    case DRError::EmptyLayout:
        return "there is nothing to write";
    case DRError::TooManyTracks:
        return "a disc holds at most 99 tracks";
    case DRError::DeviceNotPermitted:
        return "the drive may not be opened";
    case DRError::DeviceHanging:
        return "the drive does not respond";
    case DRError::SourceMissing:
        return "a source file is gone or unreadable";
    case DRError::SourceChanged:
        return "a source file has changed since it was added";
    case DRError::SourceUnreadable:
        return "a source file cannot be read or decoded";
    case DRError::NoSpace:
        return "no space is left for the image";
    case DRError::PermissionDenied:
        return "the image may not be written there";
    case DRError::WriteFailed:
        return "writing failed";
    case DRError::ReadBackFailed:
        return "the written disc cannot be read back";
    case DRError::VerifyFailed:
        return "the written disc differs from what was sent to it";
    case DRError::FolderMissing:
        return "the folder for the image does not exist";
    case DRError::Internal:
        return "an internal error occurred";
    }
    return unknown;
}

} // namespace

std::string_view textForBurnErrorCode(std::int64_t code) {
    if (code == 0)
        return "the content does not fit the disc, or there is no disc to write";
    const auto error = static_cast<DRError>(static_cast<std::uint32_t>(code));
    return signedCode(error) == code ? textFor(error) : unknown;
}

} // namespace quarner
