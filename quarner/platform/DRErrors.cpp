// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/DRErrors.h"

#include <array>
#include <utility>

namespace quarner {
namespace {

constexpr std::array texts = {
    std::pair{DRError::UserCanceled, std::string_view("the burn was cancelled")},
    std::pair{DRError::DeviceBusy,
              std::string_view("the drive is busy with another burn or program")},
    std::pair{DRError::DeviceVanished, std::string_view("the drive was unplugged")},
    std::pair{DRError::MediaNotPresent, std::string_view("there is no disc in the drive")},
    std::pair{DRError::MediaNotWritable, std::string_view("the disc cannot be written")},
    std::pair{DRError::MediaTooSmall, std::string_view("the content does not fit the disc")},
    std::pair{DRError::WrongMedia, std::string_view("the disc is not a recordable CD")},
    std::pair{DRError::EmptyLayout, std::string_view("there is nothing to write")},
    std::pair{DRError::TooManyTracks, std::string_view("a disc holds at most 99 tracks")},
    std::pair{DRError::DeviceNotPermitted, std::string_view("the drive may not be opened")},
    std::pair{DRError::SourceMissing, std::string_view("a source file is gone or unreadable")},
    std::pair{DRError::SourceChanged,
              std::string_view("a source file has changed since it was added")},
    std::pair{DRError::SourceUnreadable, std::string_view("a source file cannot be decoded")},
    std::pair{DRError::NoSpace, std::string_view("no space is left for the image")},
    std::pair{DRError::PermissionDenied, std::string_view("the image may not be written there")},
    std::pair{DRError::WriteFailed, std::string_view("writing failed")},
    std::pair{DRError::ReadBackFailed, std::string_view("the written disc cannot be read back")},
    std::pair{DRError::VerifyFailed,
              std::string_view("the written disc differs from what was sent to it")},
    std::pair{DRError::Internal, std::string_view("an internal error occurred")},
};

} // namespace

std::string_view textForBurnErrorCode(std::int64_t code) {
    if (code == 0)
        return "the content does not fit the disc, or there is no disc to write";
    for (const auto& [error, text] : texts)
        if (signedCode(error) == code)
            return text;
    return "the drive reported an unknown error";
}

} // namespace quarner
