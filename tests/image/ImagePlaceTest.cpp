// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>

#include <fstream>

#include "adapters/image/ImagePlace.h"
#include "tests/image/ImageTest.h"
#include "tests/support/OrdinaryUser.h"

namespace quarner {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class ImagePlace : public AnyImageTest {
protected:
    std::string pathOf(const std::string& name) const { return stage->imageNamed(name); }

    /// Returns the failure of a burn to this path, as reported before the burn and, in the same
    /// words, by the burn.
    BurnFailure problemAt(const std::string& path) {
        const std::optional<BurnFailure> problem = problemOfPlace(path);
        const Outcome outcome = burn(_layout, stage->drives().add({.path = path}));
        EXPECT_TRUE(problem) << outcome.info;
        if (!problem)
            return {DRError::Internal, ""};
        EXPECT_EQ(outcome.code, codeOf(problem->error()));
        EXPECT_EQ(outcome.info, problem->info());
        return *problem;
    }

private:
    const DRLayout _layout = makeLayout({1000});
};

TEST_P(ImagePlace, AFolderThatMayBeWrittenToIsNoProblemAndStaysAsItIs) {
    EXPECT_FALSE(problemOfPlace(pathOf("mix")));
    EXPECT_THAT(filesInFolder(), IsEmpty());
    ASSERT_TRUE(burn(makeSources({1000})).isDone);
    EXPECT_FALSE(problemOfPlace(pathOf("mix"))) << "an image that is there is replaced";
}

TEST_P(ImagePlace, WhatIsNoFileIsToldBeforeTheBurn) {
    std::filesystem::create_directory(pathOf("mix"));
    EXPECT_THAT(problemAt(pathOf("mix")).info(), HasSubstr(pathOf("mix") + " is not a file"));
}

TEST_P(ImagePlace, AFolderThatMayNotBeWrittenToIsToldBeforeTheBurn) {
    std::filesystem::permissions(stage->sources.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(stage->folder.path(), std::filesystem::perms(0555));
    const OrdinaryUser user;
    ASSERT_TRUE(user.isSet());
    const BurnFailure problem = problemAt(pathOf("mix"));
    EXPECT_EQ(problem.error(), DRError::PermissionDenied);
    EXPECT_THAT(problem.info(), HasSubstr(stage->folder.path().string()));
}

TEST_P(ImagePlace, AFolderThatMayNotBeLookedIntoIsToldBeforeTheBurn) {
    std::filesystem::permissions(stage->sources.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(stage->folder.path(), std::filesystem::perms(0666));
    const OrdinaryUser user;
    ASSERT_TRUE(user.isSet());
    EXPECT_EQ(problemAt(pathOf("mix")).error(), DRError::PermissionDenied);
}

TEST_P(ImagePlace, AFolderThatIsMissingIsToldBeforeTheBurn) {
    const BurnFailure problem = problemAt(pathOf("no/mix"));
    EXPECT_EQ(problem.error(), DRError::FolderMissing);
    EXPECT_EQ(problem.info(), stage->folder.file("no") + " does not exist");
}

TEST_P(ImagePlace, ANameThatIsTooLongIsToldBeforeTheBurn) {
    const std::string name(300, 'x');
    EXPECT_THAT(problemAt(pathOf(name)).info(), HasSubstr("File name too long"));
}

TEST_P(ImagePlace, ALinkToItselfIsToldBeforeTheBurn) {
    std::filesystem::create_symlink(pathOf("mix"), pathOf("mix"));
    EXPECT_THAT(problemAt(pathOf("mix")).info(), HasSubstr("symbolic links"));
    EXPECT_TRUE(std::filesystem::is_symlink(pathOf("mix")));
}

TEST_P(ImagePlace, ALinkIntoAFolderThatIsNotThereIsToldBeforeTheBurn) {
    std::filesystem::create_symlink(pathOf("no/mix"), pathOf("mix"));
    EXPECT_THAT(problemAt(pathOf("mix")).info(), HasSubstr("/no does not exist"));
}

TEST_P(ImagePlace, AnyFileThereIsAWrittenDiscAndWhatCannotBeLookedAtIsNotBlankEither) {
    const auto load = [&] {
        return stage->drives().add({.path = pathOf("mix"), .loadExisting = true});
    };
    EXPECT_TRUE(load()->mediaIsBlank());
    std::ofstream(pathOf("mix")) << "neither a sheet nor whole blocks";
    const auto drive = load();
    EXPECT_FALSE(drive->mediaIsBlank());
    EXPECT_EQ(drive->mediaSpaceUsed()->totalFrames(), pathOf("mix").ends_with(".iso") ? 1U : 0U);
    std::filesystem::permissions(stage->folder.path(), std::filesystem::perms(0));
    const OrdinaryUser user;
    ASSERT_TRUE(user.isSet());
    EXPECT_FALSE(load()->mediaIsBlank());
}

INSTANTIATE_IMAGE_SUITE(ImagePlace);

using CuePlace = CueTest;

TEST_F(CuePlace, AFolderInThePlaceOfTheBinIsToldBeforeTheBurn) {
    std::filesystem::create_directory(bin());
    const std::optional<BurnFailure> problem = problemOfPlace(cue());
    ASSERT_TRUE(problem);
    EXPECT_EQ(problem->info(), burn(makeLayout({1000})).info);
    EXPECT_THAT(problem->info(), HasSubstr(bin() + " is not a file"));
}

TEST_F(CuePlace, WhatIsNoImageHasNoPlace) { EXPECT_FALSE(problemOfPlace("/dev/null")); }

} // namespace
} // namespace quarner
