// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/DRErrors.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <string>
#include <string_view>

#include "quarner/platform/DiscFormat.h"

namespace quarner::testing {
namespace {

constexpr std::string_view unknown = "the drive reported an unknown error";

constexpr DRError all[] = {
    DRError::UserCanceled,       DRError::DeviceBusy,       DRError::DeviceVanished,
    DRError::MediaNotPresent,    DRError::MediaNotWritable, DRError::MediaTooSmall,
    DRError::WrongMedia,         DRError::EmptyLayout,      DRError::TooManyTracks,
    DRError::DeviceNotPermitted, DRError::SourceMissing,    DRError::SourceChanged,
    DRError::SourceUnreadable,   DRError::NoSpace,          DRError::PermissionDenied,
    DRError::WriteFailed,        DRError::ReadBackFailed,   DRError::VerifyFailed,
    DRError::FolderMissing,      DRError::DeviceHanging,    DRError::Internal};

TEST(DRErrors, EveryCodeHasATextOfItsOwn) {
    std::set<std::string_view> texts = {"", unknown};
    EXPECT_TRUE(texts.insert(textForBurnErrorCode(0)).second);
    for (const DRError error : all)
        EXPECT_TRUE(texts.insert(textForBurnErrorCode(signedCode(error))).second)
            << textForBurnErrorCode(signedCode(error));
}

TEST(DRErrors, NoOtherCodeOfOursHasAText) {
    std::set<std::string_view> texts;
    for (std::uint32_t code = 0x80020000; code <= 0x8002FFFF; ++code)
        texts.insert(textForBurnErrorCode(signedCode(DRError(code))));
    EXPECT_EQ(texts.size(), std::size(all) + 1) << "a code is missing in this test's list";
}

TEST(DRErrors, TheTextNamesTheMostTracks) {
    const std::string_view text = textForBurnErrorCode(signedCode(DRError::TooManyTracks));
    EXPECT_NE(text.find(" " + std::to_string(mostTracks) + " tracks"), text.npos) << text;
}

TEST(DRErrors, ACodeThatIsNotInTheTableIsUnknown) {
    const auto unsignedCode = std::int64_t(std::uint32_t(DRError::NoSpace));
    for (const std::int64_t code :
         {std::int64_t(1), std::int64_t(-1), unsignedCode, std::numeric_limits<std::int64_t>::min(),
          std::numeric_limits<std::int64_t>::max()})
        EXPECT_EQ(textForBurnErrorCode(code), unknown) << code;
    EXPECT_NE(textForBurnErrorCode(0), unknown);
}

} // namespace
} // namespace quarner::testing
