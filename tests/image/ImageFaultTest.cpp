// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/mount.h>
#include <unistd.h>

#include <fstream>

#include "adapters/engine/BurnFailure.h"
#include "tests/image/ForwardingFiles.h"
#include "tests/image/ImageTest.h"

namespace quarner {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class ImageFault : public ImageTest {
protected:
    /// Burns an image that the faults below must not harm.
    DRLayout burnOldImage() {
        DRLayout layout = makeLayout({1000, 588 * 400});
        EXPECT_TRUE(burn(layout).isDone);
        takeNewBlank();
        return layout;
    }
    void expectOldImage(const DRLayout& old) {
        EXPECT_TRUE(stage->tracksOnDisc() == tracksOf(old)) << "the old image is kept";
        EXPECT_THAT(filesInFolder(), ElementsAre("mix.bin", "mix.cue"));
    }
};

/// Changes one byte of a file as soon as it has reached the disk.
class FlippedByte : public ForwardingFiles {
public:
    FlippedByte(std::string ending, std::int64_t offset)
        : _ending(std::move(ending)), _offset(offset) {}

    std::unique_ptr<ImageFile> create(const std::string& path) override {
        auto file = ForwardingFiles::create(path);
        if (!path.ends_with(_ending))
            return file;
        return std::make_unique<File>(std::move(file), path, _offset);
    }

private:
    class File : public ForwardingFile {
    public:
        File(std::unique_ptr<ImageFile> file, std::string path, std::int64_t offset)
            : ForwardingFile(std::move(file)), _path(std::move(path)), _offset(offset) {}
        void sync() override {
            ForwardingFile::sync();
            std::fstream file(_path, std::ios::binary | std::ios::in | std::ios::out);
            const auto way = _offset < 0 ? std::ios::end : std::ios::beg;
            file.seekg(_offset, way);
            const char byte = static_cast<char>(file.peek() ^ 1);
            file.seekp(_offset, way);
            file.put(byte);
        }

    private:
        const std::string _path;
        const std::int64_t _offset;
    };

    const std::string _ending;
    const std::int64_t _offset;
};

class FlippedByteTest : public ImageFault,
                        public testing::WithParamInterface<std::pair<const char*, std::int64_t>> {};

TEST_P(FlippedByteTest, FailsTheVerificationAndKeepsTheOldImage) {
    const auto [ending, offset] = GetParam();
    const DRLayout old = burnOldImage();
    const std::string cue = stage->cue();
    const auto flaw = std::make_shared<FlippedByte>(ending, offset);
    const auto loops = std::make_shared<StepLoops>();
    ImageRecorder flawed(loops, stage->sound, {.files = flaw});
    const auto burn = flawed.burnForDevice(flawed.add({.path = cue}));
    BurnLog log(flawed.currentRunLoopCenter(), burn.get());
    burn->writeLayout(makeLayout({588 * 2000 + 3, 588 * 400}));
    ASSERT_TRUE(loops->runUntil([&] { return log.isOver(); }));
    EXPECT_EQ(log.code(), codeOf(DRError::VerifyFailed)) << log.info();
    expectOldImage(old);
}

INSTANTIATE_TEST_SUITE_P(InBin, FlippedByteTest,
                         testing::Values(std::pair(".bin.part", 0),
                                         std::pair(".bin.part", 2352 * 1024),
                                         std::pair(".bin.part", 2352 * 2001 - 1),
                                         std::pair(".bin.part", 2352 * 2100),
                                         std::pair(".bin.part", -1)));
INSTANTIATE_TEST_SUITE_P(InCue, FlippedByteTest,
                         testing::Values(std::pair("cue.part", 6), std::pair("cue.part", -2),
                                         std::pair("cue.last.part", 7)));

TEST_F(ImageFault, ABinThatWasCutOffFailsTheVerification) {
    class CutOff : public ForwardingFiles {
        std::unique_ptr<ImageFile> create(const std::string& path) override {
            class File : public ForwardingFile {
            public:
                File(std::unique_ptr<ImageFile> file, std::string name)
                    : ForwardingFile(std::move(file)), _name(std::move(name)) {}
                void sync() override {
                    ForwardingFile::sync();
                    if (_name.ends_with(".bin.part"))
                        std::filesystem::resize_file(_name, 2352 * 200);
                }

            private:
                const std::string _name;
            };
            return std::make_unique<File>(ForwardingFiles::create(path), path);
        }
    };
    useParts({.files = std::make_shared<CutOff>()});
    const Outcome outcome = burn(makeLayout({588 * 400}));
    EXPECT_EQ(outcome.code, codeOf(DRError::VerifyFailed)) << outcome.info;
    EXPECT_THAT(filesInFolder(), IsEmpty());
}

TEST_F(ImageFault, ACancelWhileAnImageIsReplacedKeepsIt) {
    const DRLayout old = burnOldImage();
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

TEST_F(ImageFault, AFailureToPublishKeepsTheOldImage) {
    class NoSheet : public ForwardingFiles {
    public:
        std::string cue;
        void rename(const std::string& from, const std::string& to) override {
            if (to == cue)
                throw BurnFailure(DRError::WriteFailed, "renaming failed");
            ForwardingFiles::rename(from, to);
        }
    };
    const DRLayout old = burnOldImage();
    const auto files = std::make_shared<NoSheet>();
    files->cue = stage->cue();
    const auto loops = std::make_shared<StepLoops>();
    ImageRecorder recorder(loops, stage->sound, {.files = files});
    const auto burn = recorder.burnForDevice(recorder.add({.path = stage->cue()}));
    BurnLog log(recorder.currentRunLoopCenter(), burn.get());
    burn->writeLayout(makeLayout({2000}));
    ASSERT_TRUE(loops->runUntil([&] { return log.isOver(); }));
    EXPECT_EQ(log.code(), codeOf(DRError::WriteFailed));
    expectOldImage(old);
}

/// A file system of one megabyte at a folder, for the length of a test.
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

TEST_F(ImageFault, AFullDiskIsToldBeforeAnythingIsRead) {
    const SmallDisk disk(stage->folder.path());
    if (!disk.isMounted())
        GTEST_SKIP() << "a file system can be mounted by root only";
    stage->sound->setReadHook([](const std::string&, std::uint64_t) { ADD_FAILURE() << "read"; });
    const Outcome outcome = burn(makeLayout({588 * 600}));
    EXPECT_EQ(outcome.code, codeOf(DRError::NoSpace)) << outcome.info;
    EXPECT_THAT(filesInFolder(), IsEmpty());
}

TEST_F(ImageFault, ADiskThatFillsUpInMidBurnFailsIt) {
    class NothingReserved : public ForwardingFiles {
        std::unique_ptr<ImageFile> create(const std::string& path) override {
            class File : public ForwardingFile {
            public:
                using ForwardingFile::ForwardingFile;
                void reserve(std::uint64_t) override {}
            };
            return std::make_unique<File>(ForwardingFiles::create(path));
        }
    };
    useParts({.files = std::make_shared<NothingReserved>()});
    const SmallDisk disk(stage->folder.path());
    if (!disk.isMounted())
        GTEST_SKIP() << "a file system can be mounted by root only";
    const Outcome outcome = burn(makeLayout({588 * 1500}));
    EXPECT_EQ(outcome.code, codeOf(DRError::NoSpace)) << outcome.info;
    EXPECT_THAT(outcome.states, testing::Contains("TrackWrite 1/1"));
    EXPECT_THAT(filesInFolder(), IsEmpty());
    EXPECT_TRUE(burn(makeLayout({1000})).isDone) << "what fits is burnt";
}

/// Acts as an ordinary user for the length of a scope. Files are made by root in most containers.
class OrdinaryUser {
public:
    OrdinaryUser() : _before(geteuid()) {
        constexpr uid_t nobody = 65534;
        if (_before == 0)
            _isSet = seteuid(nobody) == 0;
    }
    ~OrdinaryUser() {
        if (_before == 0 && seteuid(_before) != 0)
            std::abort();
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
    bool isSet() const { return _isSet; }

private:
    const uid_t _before;
    bool _isSet = true;
};

TEST_F(ImageFault, AFolderWithoutPermissionFailsTheBurn) {
    const DRLayout layout = makeLayout({1000});
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

TEST_F(ImageFault, ASourceWithoutPermissionFailsTheBurn) {
    const DRLayout layout = makeLayout({1000});
    std::filesystem::permissions(stage->sources.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(stage->folder.path(), std::filesystem::perms(0777));
    std::filesystem::permissions(layout[0]->path, std::filesystem::perms(0));
    const OrdinaryUser user;
    ASSERT_TRUE(user.isSet());
    const Outcome outcome = burn(layout);
    EXPECT_EQ(outcome.code, codeOf(DRError::SourceMissing)) << outcome.info;
    EXPECT_THAT(outcome.info, HasSubstr(layout[0]->path));
}

TEST_F(ImageFault, AFolderThatIsNotThereFailsTheBurn) {
    const auto drive = stage->recorder()->add({.path = stage->folder.file("no/mix.cue")});
    const Outcome outcome = burn(makeLayout({1000}), drive);
    EXPECT_EQ(outcome.code, codeOf(DRError::WriteFailed)) << outcome.info;
}

TEST_F(ImageFault, WhatIsNoFileIsNotReplaced) {
    std::filesystem::create_directory(stage->cue());
    EXPECT_EQ(burn(makeLayout({1000})).code, codeOf(DRError::WriteFailed));
    EXPECT_THAT(filesInFolder(), ElementsAre("mix.cue"));
}

class SourceFault : public ImageFault {
protected:
    /// Burns two tracks and does something to the second one's file when it is being read.
    Outcome burnAndDisturb(const std::function<void(const std::string&)>& disturb) {
        const DRLayout layout = makeLayout({588 * 400, 588 * 2000});
        path = layout[1]->path;
        stage->sound->setReadHook([&](const std::string& read, std::uint64_t pairs) {
            if (read == path && pairs > 0)
                disturb(path);
        });
        return burn(layout);
    }
    std::string path;
};

TEST_F(SourceFault, ASourceThatVanishesInMidBurnFailsIt) {
    const DRLayout old = burnOldImage();
    const Outcome outcome =
        burnAndDisturb([](const std::string& file) { std::filesystem::remove(file); });
    EXPECT_EQ(outcome.code, codeOf(DRError::SourceMissing)) << outcome.info;
    EXPECT_THAT(outcome.info, HasSubstr(path));
    expectOldImage(old);
}

TEST_F(SourceFault, ASourceThatShrinksInMidBurnFailsIt) {
    const Outcome outcome = burnAndDisturb(
        [](const std::string& file) { std::filesystem::resize_file(file, 588 * 1000 * 4); });
    EXPECT_EQ(outcome.code, codeOf(DRError::SourceChanged)) << outcome.info;
    EXPECT_THAT(outcome.info, HasSubstr(path));
    EXPECT_THAT(filesInFolder(), IsEmpty());
}

TEST_F(SourceFault, ASourceThatIsWrittenAnewInMidBurnFailsIt) {
    const Outcome outcome = burnAndDisturb([](const std::string& file) {
        std::filesystem::last_write_time(file, std::filesystem::file_time_type::clock::now());
    });
    EXPECT_EQ(outcome.code, codeOf(DRError::SourceChanged)) << outcome.info;
    EXPECT_THAT(outcome.info, HasSubstr(path));
}

TEST_F(SourceFault, ASourceThatDeliversLessThanItPromisedFailsTheBurn) {
    const DRLayout layout = makeLayout({588 * 400});
    const auto track = makeTrack(1000);
    track->sampleCount = 1001;
    const Outcome outcome = burn({layout[0], track});
    EXPECT_EQ(outcome.code, codeOf(DRError::SourceUnreadable)) << outcome.info;
    EXPECT_THAT(outcome.info, HasSubstr(track->path));
}

TEST_F(SourceFault, ASourceThatDeliversMoreThanItPromisedFailsTheBurn) {
    const auto track = makeTrack(1000);
    track->sampleCount = 999;
    const Outcome outcome = burn({track});
    EXPECT_EQ(outcome.code, codeOf(DRError::SourceChanged)) << outcome.info;
}

} // namespace
} // namespace quarner
