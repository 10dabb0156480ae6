// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <quarner/scripted.h>

#include <cctype>

#include "quarner/platform/DRErrors.h"
#include "quarner/platform/Texts.h"
#include "quarner/project/BurnTexts.h"
#include "quarner/project/RefusalTexts.h"

namespace quarner::testing {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;

TEST(ProjectTexts, ValuesReplaceTheNamesInBraces) {
    EXPECT_EQ(text("{a} and {b}, {a}", {{"a", "1"}, {"b", "{a}"}}), "1 and {a}, 1");
    EXPECT_EQ(text("{unknown} {", {{"a", "1"}}), "{unknown} {");
}

TEST(ProjectTexts, ACountChoosesItsMessage) {
    EXPECT_EQ(textForCount("One {a}", "{count} {a}s", 1, {{"a", "file"}}), "One file");
    EXPECT_EQ(textForCount("One {a}", "{count} {a}s", 12, {{"a", "file"}}), "12 files");
}

/// Every code there is.
constexpr DRError codes[] = {
    DRError::UserCanceled,       DRError::DeviceBusy,       DRError::DeviceVanished,
    DRError::MediaNotPresent,    DRError::MediaNotWritable, DRError::MediaTooSmall,
    DRError::WrongMedia,         DRError::EmptyLayout,      DRError::TooManyTracks,
    DRError::DeviceNotPermitted, DRError::SourceMissing,    DRError::SourceChanged,
    DRError::SourceUnreadable,   DRError::NoSpace,          DRError::PermissionDenied,
    DRError::WriteFailed,        DRError::ReadBackFailed,   DRError::VerifyFailed,
    DRError::FolderMissing,      DRError::DeviceHanging,    DRError::Internal};

TEST(ProjectTexts, TheSentenceOfACodeSaysWhatItsShortTextSays) {
    for (const DRError code : codes) {
        std::string sentence(textForBurnErrorCode(signedCode(code)));
        sentence.front() = static_cast<char>(std::toupper(sentence.front()));
        EXPECT_EQ(textForBurnError(code), sentence + ".");
    }
}

TEST(ProjectTexts, AdviceIsASentenceOrNothing) {
    for (const DRError code : codes) {
        const std::string advice = adviceForBurnError(code, 700ULL << 20U);
        if (!advice.empty()) {
            EXPECT_THAT(advice, EndsWith("."));
        }
    }
    EXPECT_THAT(adviceForBurnError(DRError::NoSpace, 700ULL << 20U), HasSubstr("takes 700 MB:"));
    EXPECT_EQ(adviceForBurnError(DRError::Internal, 0), "");
}

TEST(ProjectTexts, ARefusalNamesTheFileAndSaysWhatToDo) {
    for (int i = 0; i <= static_cast<int>(RefusalReason::AlreadyInList); ++i) {
        const std::string text =
            textForRefusal({"/music/one.mp3", static_cast<RefusalReason>(i), "why"});
        EXPECT_THAT(text, HasSubstr("\"/music/one.mp3\" ")) << i;
        EXPECT_THAT(text, EndsWith(".")) << i;
    }
    EXPECT_EQ(textForRefusal({"a.mp3", RefusalReason::Unreadable, "Permission denied"}),
              "\"a.mp3\" cannot be read (Permission denied). Check its permissions and its disk.");
    EXPECT_EQ(textForRefusal({"a.mp3", RefusalReason::Damaged, ""}),
              "\"a.mp3\" is damaged. Leave it out, or replace it.");
}

TEST(ProjectTexts, AStepNamesItsTrackOnlyWhereThereAreSeveral) {
    DiscBurnProgress progress;
    progress.phase = DiscBurnProgress::Phase::Writing;
    progress.track = 2;
    progress.trackCount = 9;
    EXPECT_EQ(textForBurnStep(progress), "Writing track 2 of 9");
    progress.track = progress.trackCount = 1;
    EXPECT_EQ(textForBurnStep(progress), "Writing");
}

} // namespace
} // namespace quarner::testing
