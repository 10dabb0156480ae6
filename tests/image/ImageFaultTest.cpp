// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/mount.h>

#include <fstream>

#include "adapters/engine/BurnFailure.h"
#include "tests/image/ForwardingFiles.h"
#include "tests/image/ImageTest.h"
#include "tests/support/OrdinaryUser.h"

namespace quarner {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class ImageFault : public AnyImageTest {
protected:
    /// Burns an image that the following faults must not harm.
    Paths burnOldImage() {
        Paths paths = makeSources({1000, 588 * 400});
        EXPECT_TRUE(burn(paths).isDone);
        takeNewBlank();
        return paths;
    }
    void expectOldImage(const Paths& old) {
        EXPECT_TRUE(imageHolds(old)) << "the old image is kept";
        EXPECT_EQ(filesInFolder(), stage->filesOfImage());
    }
    /// Burns to a symbolic link to the stage's image.
    void expectBurntThroughALink() {
        const TemporaryFolder elsewhere;
        const std::string link =
            elsewhere.file(std::filesystem::path(stage->image()).filename().string());
        std::filesystem::create_symlink(stage->image(), link);
        const Paths fresh = makeSources({3000});
        const Outcome outcome = burn(stage->layoutOf(fresh), stage->drives().add({.path = link}));
        EXPECT_TRUE(outcome.isDone) << outcome.info;
        EXPECT_TRUE(std::filesystem::is_symlink(link));
        EXPECT_TRUE(imageHolds(fresh));
        EXPECT_EQ(filesInFolder(), stage->filesOfImage());
    }
};

TEST_P(ImageFault, AnImageThatWasCutOffFailsTheVerification) {
    class CutOff : public ForwardingFiles {
        std::unique_ptr<ImageFile> create(const std::string& path,
                                          const std::string& replaced) override {
            class File : public ForwardingFile {
            public:
                File(std::unique_ptr<ImageFile> file, std::string name)
                    : ForwardingFile(std::move(file)), _name(std::move(name)) {}
                void sync() override {
                    ForwardingFile::sync();
                    std::filesystem::resize_file(_name, std::filesystem::file_size(_name) / 2);
                }

            private:
                const std::string _name;
            };
            return std::make_unique<File>(ForwardingFiles::create(path, replaced), path);
        }
    };
    useFiles(std::make_shared<CutOff>());
    const Outcome outcome = burn(makeLayout({588 * 400}));
    EXPECT_EQ(outcome.code, codeOf(DRError::VerifyFailed)) << outcome.info;
    EXPECT_THAT(filesInFolder(), IsEmpty());
}

TEST_P(ImageFault, ACancelWhileAnImageIsReplacedKeepsIt) {
    const Paths old = burnOldImage();
    stage->loops().setInStep(true);
    const auto burn = stage->service()->burnForDevice(stage->drive());
    BurnLog log(stage->service()->currentRunLoopCenter(), burn.get());
    log.onRecord = [&](const Dictionary& record) {
        if (BurnLog::stateOf(record) == DRStatusStateVerifying)
            burn->abort();
    };
    burn->writeLayout(makeLayout({588 * 700}));
    ASSERT_TRUE(stage->loops().runUntil([&] { return log.isOver(); }));
    stage->loops().setInStep(false);
    EXPECT_EQ(log.code(), codeOf(DRError::UserCanceled));
    expectOldImage(old);
}

TEST_P(ImageFault, AFailureToPublishKeepsTheOldImage) {
    class NothingRenamed : public ForwardingFiles {
    public:
        std::string image;
        void rename(const std::string& from, const std::string& to) override {
            if (to == image)
                throw BurnFailure(DRError::WriteFailed, "renaming failed");
            ForwardingFiles::rename(from, to);
        }
    };
    const Paths old = burnOldImage();
    const auto files = std::make_shared<NothingRenamed>();
    files->image = stage->image();
    EXPECT_EQ(burnThrough(files, makeSources({2000})).code, codeOf(DRError::WriteFailed));
    expectOldImage(old);
}

/// A folder whose names cannot be synced after the image was renamed.
class NothingSyncedInTheEnd : public ForwardingFiles {
public:
    std::string image;
    int failures = 0;
    void rename(const std::string& from, const std::string& to) override {
        ForwardingFiles::rename(from, to);
        _isPublished = _isPublished || to == image;
    }
    void syncFolder(const std::string& folder) override {
        if (_isPublished) {
            ++failures;
            throw BurnFailure(DRError::WriteFailed, "syncing " + folder + " failed");
        }
        ForwardingFiles::syncFolder(folder);
    }

private:
    bool _isPublished = false;
};

TEST_P(ImageFault, AnImageThatIsInPlaceIsDoneWhateverHappensAfterwards) {
    burnOldImage();
    const auto files = std::make_shared<NothingSyncedInTheEnd>();
    files->image = stage->image();
    const Paths fresh = makeSources({2000, 588 * 300});
    EXPECT_EQ(burnThrough(files, fresh).code, 0U);
    EXPECT_EQ(files->failures, 1);
    EXPECT_TRUE(imageHolds(fresh));
    const Paths next = makeSources({3000});
    EXPECT_TRUE(burn(next).isDone) << "what was left is cleared away";
    EXPECT_TRUE(imageHolds(next));
    EXPECT_EQ(filesInFolder(), stage->filesOfImage());
}

TEST_P(ImageFault, AnImageIsReplacedInOneStepWhenTheBurnIsDone) {
    const Paths old = burnOldImage();
    const Paths fresh = makeSources({588 * 700, 2000});
    stage->loops().setInStep(true);
    const Outcome outcome =
        burn(stage->layoutOf(fresh), stage->drive(), [&](const Dictionary& record) {
            const bool isDone = BurnLog::stateOf(record) == DRStatusStateDone;
            EXPECT_TRUE(imageHolds(isDone ? fresh : old)) << BurnLog::stateOf(record);
        });
    stage->loops().setInStep(false);
    EXPECT_TRUE(outcome.isDone) << outcome.info;
}

TEST_P(ImageFault, AnImageAtASymbolicLinkIsReplacedWhereTheLinkLeads) {
    burnOldImage();
    expectBurntThroughALink();
}

TEST_P(ImageFault, AnImageIsMadeWhereASymbolicLinkLeadsThatHasNoTargetYet) {
    expectBurntThroughALink();
}

TEST_P(ImageFault, TheLongestNameThatAFileMayHaveIsGoodForAnImage) {
    for (const std::string& stem : {std::string(251, 'x'), '"' + std::string(242, 'y')}) {
        const std::string image = stage->imageNamed(stem);
        for (int i = 0; i < 3; ++i) {
            const Paths fresh = makeSources({3000});
            const auto drive = stage->drives().add({.path = image});
            const Outcome outcome = burn(stage->layoutOf(fresh), drive);
            ASSERT_TRUE(outcome.isDone) << outcome.info;
            EXPECT_TRUE(stage->contentsOf(image) == stage->expectedContentsOf(fresh));
        }
    }
    EXPECT_EQ(filesInFolder().size(), 2 * stage->filesOfImage().size());
}

/// A file system of one megabyte, mounted at a folder for the duration of a test.
class SmallDisk {
public:
    explicit SmallDisk(std::string folder) : _folder(std::move(folder)) {
        _isMounted = mount("quarner-test", _folder.c_str(), "tmpfs", 0, "size=1m") == 0;
    }
    ~SmallDisk() {
        if (_isMounted)
            umount2(_folder.c_str(), MNT_DETACH);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    bool isMounted() const { return _isMounted; }

private:
    const std::string _folder;
    bool _isMounted;
};

TEST_P(ImageFault, AFullDiskIsToldBeforeAnythingIsRead) {
    const SmallDisk disk(stage->folder.path());
    if (!disk.isMounted())
        GTEST_SKIP() << "a file system can be mounted by root only";
    stage->beforeReading([] { ADD_FAILURE() << "read"; });
    const Outcome outcome = burn(makeLayout({588 * 600}));
    EXPECT_EQ(outcome.code, codeOf(DRError::NoSpace)) << outcome.info;
    EXPECT_THAT(filesInFolder(), IsEmpty());
}

TEST_P(ImageFault, ADiskThatFillsUpInMidBurnFailsIt) {
    class NothingReserved : public ForwardingFiles {
        std::unique_ptr<ImageFile> create(const std::string& path,
                                          const std::string& replaced) override {
            class File : public ForwardingFile {
            public:
                using ForwardingFile::ForwardingFile;
                void reserve(std::uint64_t) override {}
            };
            return std::make_unique<File>(ForwardingFiles::create(path, replaced));
        }
    };
    useFiles(std::make_shared<NothingReserved>());
    const SmallDisk disk(stage->folder.path());
    if (!disk.isMounted())
        GTEST_SKIP() << "a file system can be mounted by root only";
    const Outcome outcome = burn(makeLayout({588 * 1500}));
    EXPECT_EQ(outcome.code, codeOf(DRError::NoSpace)) << outcome.info;
    EXPECT_THAT(outcome.states, testing::Contains("TrackWrite 1/1"));
    EXPECT_THAT(filesInFolder(), IsEmpty());
    EXPECT_TRUE(burn(makeLayout({1000})).isDone) << "what fits is burnt";
}

TEST_P(ImageFault, AFolderWithoutPermissionFailsTheBurn) {
    const Paths paths = makeSources({1000});
    const DRLayout layout = stage->layoutOf(paths);
    std::filesystem::permissions(stage->sources.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(stage->folder.path(), std::filesystem::perms(0555));
    Outcome outcome = {};
    {
        const OrdinaryUser user;
        ASSERT_TRUE(user.isSet());
        outcome = burn(layout);
    }
    std::filesystem::permissions(stage->folder.path(), std::filesystem::perms(0755));
    EXPECT_EQ(outcome.code, codeOf(DRError::PermissionDenied)) << outcome.info;
    EXPECT_THAT(outcome.info, HasSubstr(stage->folder.path().string()));
    EXPECT_THAT(filesInFolder(), IsEmpty());
}

TEST_P(ImageFault, ASourceWithoutPermissionFailsTheBurn) {
    const Paths paths = makeSources({1000});
    const DRLayout layout = stage->layoutOf(paths);
    std::filesystem::permissions(stage->sources.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(stage->folder.path(), std::filesystem::perms(0777));
    std::filesystem::permissions(paths[0], std::filesystem::perms(0));
    const OrdinaryUser user;
    ASSERT_TRUE(user.isSet());
    const Outcome outcome = burn(layout);
    EXPECT_EQ(outcome.code, codeOf(DRError::SourceMissing)) << outcome.info;
    EXPECT_THAT(outcome.info, HasSubstr(paths[0]));
}

TEST_P(ImageFault, OnlyASheetHasToBeReadableToBeReplaced) {
    const Paths paths = makeSources({1000});
    const DRLayout layout = stage->layoutOf(paths);
    std::filesystem::permissions(stage->sources.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(stage->folder.path(), std::filesystem::perms(0777));
    std::ofstream(stage->image()) << "old";
    std::filesystem::permissions(stage->image(), std::filesystem::perms(0222));
    const OrdinaryUser user;
    ASSERT_TRUE(user.isSet());
    const Outcome outcome = burn(layout);
    if (stage->image().ends_with(".iso"))
        EXPECT_TRUE(outcome.isDone) << outcome.info;
    else
        EXPECT_EQ(outcome.code, codeOf(DRError::PermissionDenied)) << outcome.info;
}

TEST_P(ImageFault, AFolderThatIsNotThereFailsTheBurn) {
    const auto drive = stage->drives().add({.path = stage->imageNamed("no/mix")});
    const Outcome outcome = burn(makeLayout({1000}), drive);
    EXPECT_EQ(outcome.code, codeOf(DRError::FolderMissing)) << outcome.info;
}

TEST_P(ImageFault, WhatIsNoFileIsNotReplaced) {
    std::filesystem::create_directory(stage->image());
    EXPECT_EQ(burn(makeLayout({1000})).code, codeOf(DRError::WriteFailed));
    EXPECT_EQ(stage->image(), stage->folder.file(filesInFolder().at(0)));
    EXPECT_EQ(filesInFolder().size(), 1U);
}

INSTANTIATE_IMAGE_SUITE(ImageFault);

} // namespace
} // namespace quarner
