// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>

#include <sys/stat.h>

#include <fstream>

#include "adapters/engine/BurnFailure.h"
#include "adapters/image/ImagePlace.h"
#include "tests/image/ImageTest.h"
#include "tests/support/OrdinaryUser.h"

namespace quarner {
namespace {

using testing::HasSubstr;

constexpr uid_t nobody = 65534;

/// Who may do what with an image, before and after it is replaced.
class ImageAccess : public AnyImageTest {
protected:
    ImageAccess() : _umaskBefore(umask(0022)) {}
    ~ImageAccess() override { umask(_umaskBefore); }

    static struct stat statusOf(const std::string& path) {
        struct stat found = {};
        EXPECT_EQ(stat(path.c_str(), &found), 0) << path;
        return found;
    }
    static unsigned modeOf(const std::string& path) { return statusOf(path).st_mode & 07777; }

    std::vector<std::string> imageFiles() const {
        std::vector<std::string> paths;
        for (const std::string& name : stage->filesOfImage())
            paths.push_back(stage->folder.file(name));
        return paths;
    }
    void burnOldImage(unsigned mode) {
        ASSERT_TRUE(burn(makeSources({1000})).isDone);
        for (const std::string& path : imageFiles())
            ASSERT_EQ(chmod(path.c_str(), mode), 0);
        takeNewBlank();
    }
    void expectModes(unsigned mode) const {
        for (const std::string& path : imageFiles())
            EXPECT_EQ(modeOf(path), mode) << path;
    }
    /// Lets every user read the sources and write to the folder.
    void openFolders() const {
        std::filesystem::permissions(stage->sources.path(), std::filesystem::perms(0755));
        std::filesystem::permissions(stage->folder.path(), std::filesystem::perms(0777));
    }

private:
    const mode_t _umaskBefore;
};

TEST_P(ImageAccess, ANewImageHasWhatTheUserLetsNewFilesHave) {
    ASSERT_TRUE(burn(makeSources({1000})).isDone);
    expectModes(0644);
}

TEST_P(ImageAccess, AReplacedImageKeepsItsPermissions) {
    for (const unsigned mode : {0600U, 0640U, 0666U}) {
        burnOldImage(mode);
        const Outcome outcome = burn(makeSources({2000}));
        EXPECT_TRUE(outcome.isDone) << outcome.info;
        expectModes(mode);
        takeNewBlank();
    }
}

TEST_P(ImageAccess, APrivateImageIsPrivateWhileItIsWritten) {
    burnOldImage(0600);
    unsigned parts = 0;
    stage->loops().setInStep(true);
    burn(makeLayout({588 * 700}), stage->drive(), [&](const Dictionary&) {
        for (const std::string& name : filesInFolder())
            if (name.ends_with(".part")) {
                EXPECT_EQ(modeOf(stage->folder.file(name)), 0600U) << name;
                ++parts;
            }
    });
    stage->loops().setInStep(false);
    EXPECT_GT(parts, 0U);
}

TEST_P(ImageAccess, AReplacedImageKeepsItsOwnerWhereTheUserMayGiveFilesAway) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root gives files away";
    burnOldImage(0600);
    for (const std::string& path : imageFiles())
        ASSERT_EQ(chown(path.c_str(), nobody, nobody), 0);
    EXPECT_TRUE(burn(makeSources({2000})).isDone);
    expectModes(0600);
    for (const std::string& path : imageFiles()) {
        EXPECT_EQ(statusOf(path).st_uid, nobody);
        EXPECT_EQ(statusOf(path).st_gid, nobody);
    }
}

TEST_P(ImageAccess, WhatAnotherGroupMightIsNotGivenToTheNewOwnersGroup) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root gives files away";
    burnOldImage(0276);
    for (const std::string& path : imageFiles())
        ASSERT_EQ(chown(path.c_str(), 0, nobody), 0);
    openFolders();
    const DRLayout layout = makeLayout({2000});
    const OrdinaryUser user; // still of the group of root, and of none of nobody's
    ASSERT_TRUE(user.isSet());
    const Outcome outcome = burn(layout);
    EXPECT_TRUE(outcome.isDone) << outcome.info;
    expectModes(0666);
}

TEST_P(ImageAccess, AnImageThatTheUserMayNotWriteToIsNotReplaced) {
    burnOldImage(0444);
    const auto oldContents = stage->contentsOnDisc();
    openFolders();
    const DRLayout layout = makeLayout({2000});
    const OrdinaryUser user;
    ASSERT_TRUE(user.isSet());
    const Outcome outcome = burn(layout);
    EXPECT_EQ(outcome.code, codeOf(DRError::PermissionDenied));
    EXPECT_THAT(outcome.info, HasSubstr("may not be written to and is not replaced"));
    EXPECT_THAT(outcome.info, HasSubstr(stage->folder.path().string() + "/mix."));
    EXPECT_TRUE(stage->contentsOnDisc() == oldContents);
    EXPECT_EQ(filesInFolder(), stage->filesOfImage());
    const std::optional<BurnFailure> problem = problemOfPlace(stage->image());
    ASSERT_TRUE(problem);
    EXPECT_EQ(problem->info(), outcome.info);
}

TEST_P(ImageAccess, OneOfTheFilesOfAnImageIsEnoughToRefuseIt) {
    for (std::size_t i = 0; i < imageFiles().size(); ++i) {
        burnOldImage(0666);
        ASSERT_EQ(chmod(imageFiles()[i].c_str(), 0444), 0);
        openFolders();
        const DRLayout layout = makeLayout({2000});
        {
            const OrdinaryUser user;
            EXPECT_THAT(burn(layout).info, HasSubstr(imageFiles()[i] + " may not be written to"));
        }
        // Whoever runs the tests replaces it in the next round.
        ASSERT_EQ(chmod(imageFiles()[i].c_str(), 0666), 0);
    }
}

TEST_P(ImageAccess, RootWritesToEveryFileAndSoReplacesEveryImage) {
    if (geteuid() != 0)
        GTEST_SKIP() << "for root only";
    burnOldImage(0444);
    EXPECT_FALSE(problemOfPlace(stage->image()));
    EXPECT_TRUE(burn(makeSources({2000})).isDone);
    expectModes(0444);
}

INSTANTIATE_IMAGE_SUITE(ImageAccess);

} // namespace
} // namespace quarner
