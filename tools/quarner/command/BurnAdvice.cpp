// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/command/BurnAdvice.h"

#include <array>
#include <string_view>
#include <utility>

#include "quarner/platform/DRErrors.h"
#include "quarner/util/MultiMedia.h"
#include "tools/quarner/text/SafeText.h"

namespace quarner::cli {
namespace {

constexpr std::array advice = {
    std::pair{DRError::DeviceBusy,
              std::string_view("Wait until the other burn or program has ended.")},
    std::pair{DRError::DeviceVanished, std::string_view("Plug it in, and take a new disc.")},
    std::pair{DRError::DeviceNotPermitted,
              std::string_view("An administrator can change that; then log in anew.")},
    std::pair{DRError::MediaNotPresent, std::string_view("Put a blank CD-R or CD-RW in.")},
    std::pair{DRError::MediaNotWritable, std::string_view("Put a blank CD-R or a CD-RW in.")},
    std::pair{DRError::WrongMedia, std::string_view("Put a blank CD-R or CD-RW in.")},
    std::pair{DRError::TooManyTracks, std::string_view("Burn the files to several discs.")},
    std::pair{DRError::SourceMissing, std::string_view("Put the file back, and try again.")},
    std::pair{DRError::SourceChanged, std::string_view("Try again with the file as it is now.")},
    std::pair{DRError::SourceUnreadable, std::string_view("Leave the file out, or replace it.")},
    std::pair{DRError::PermissionDenied,
              std::string_view("Choose a folder that you may write to with --image, or change "
                               "the folder's permissions.")},
    std::pair{DRError::VerifyFailed, std::string_view("Try again, at best with a new disc.")},
    std::pair{DRError::ReadBackFailed, std::string_view("Try again, at best with a new disc.")},
};

} // namespace

std::string adviceForFailedBurn(std::int64_t code, std::uint64_t imageBytes) {
    if (code == signedCode(DRError::NoSpace))
        return "The image takes " +
               MultiMedia::stringWithFilesize(static_cast<std::int64_t>(imageBytes)) +
               ": make room for it, or put it on another file system with --image.";
    for (const auto& [error, text] : advice)
        if (signedCode(error) == code)
            return std::string(text);
    return {};
}

std::string explainedFailure(std::int64_t code, const std::string& detail,
                             std::uint64_t imageBytes) {
    std::string text(textForBurnErrorCode(code));
    if (!detail.empty())
        text += " (" + safeText(detail) + ")";
    const std::string advice = adviceForFailedBurn(code, imageBytes);
    return advice.empty() ? text : text + "\n" + advice;
}

} // namespace quarner::cli
