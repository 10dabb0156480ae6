// SPDX-License-Identifier: LGPL-2.1-or-later
#include <random>
#include <thread>

#include "tests/desktop/OpticalDriveFixture.h"
#include "tests/support/ProjectObserver.h"

namespace quarner::testing {
namespace {

using ::testing::IsEmpty;

/// A project with real files, decoding, threads and drives.
class DesktopDiscProject : public OpticalDriveTest {
protected:
    void make(DiscProject::Kind kind = DiscProject::Kind::Audio) {
        project = std::make_unique<DiscProject>(kind);
        project->addObserver(observer);
    }
    bool runUntilAdded() {
        return runUntil([&] { return !project->isAdding(); });
    }
    /// The drive of this name, once it was examined.
    DiscDrive::Id examined(const std::string& driveName) {
        const auto isExamined = [&] {
            const auto id = project->driveNamed(driveName);
            return id && project->drive(*id)->isExamined;
        };
        EXPECT_TRUE(runUntil(isExamined));
        return project->driveNamed(driveName).value_or(0);
    }
    void burnOn(const std::string& driveName) {
        const DiscDrive::Id id = examined(driveName);
        EXPECT_THAT(project->problems(id), IsEmpty());
        EXPECT_TRUE(project->burn(id, "Mix"));
        ASSERT_TRUE(runUntil([&] { return !observer->burnEnds.empty(); }));
    }
    /// The fraction of the whole burn never falls, and the burn ends with 1.
    void expectWholeBurn() const {
        ASSERT_EQ(observer->burnEnds.size(), 1U);
        EXPECT_EQ(observer->burnEnds[0].outcome, DiscBurnEnd::Outcome::Done)
            << observer->burnEnds[0].text << observer->burnEnds[0].info.message;
        double last = 0;
        for (const DiscBurnProgress& progress : observer->burn) {
            EXPECT_GE(progress.fraction, last);
            last = progress.fraction;
        }
        EXPECT_EQ(last, 1);
    }

    /// Runs the loop up to a random moment of what is under way.
    void runToAnyMoment(const std::function<bool()>& isUnderWay, std::uint32_t mostTurns) {
        for (auto turns = random() % mostTurns; turns > 0 && isUnderWay(); --turns)
            g_main_context_iteration(nullptr, TRUE);
        for (auto yields = random() % 100; yields > 0; --yields)
            std::this_thread::yield();
    }
    void addAndBurn(const std::string& song, const std::string& driveName) {
        make();
        project->add({song});
        const DiscDrive::Id id = examined(driveName);
        ASSERT_TRUE(runUntilAdded());
        ASSERT_TRUE(runUntil([&] { return project->drive(id)->isBlank; }));
        ASSERT_TRUE(project->burn(id));
        runToAnyMoment([&] { return project->isBurning(); }, 30);
    }
    std::size_t reports() const {
        return observer->events.size() + observer->progressOfAdding.size() + observer->burn.size() +
               observer->burnEnds.size() + observer->refused.size();
    }
    /// Destroys the project and runs the loop until a condition is true. Nothing is reported.
    void destroyAndRunUntil(const std::function<bool()>& condition) {
        project.reset();
        const std::size_t before = reports();
        EXPECT_TRUE(runUntil(condition));
        runPending();
        ASSERT_EQ(reports(), before);
    }

    // The same moments in every run, unless GoogleTest shuffles, which repeats with other ones.
    std::mt19937 random{
        7U + static_cast<std::uint32_t>(::testing::UnitTest::GetInstance()->random_seed())};
    std::shared_ptr<ProjectObserver> observer = std::make_shared<ProjectObserver>();
    std::unique_ptr<DiscProject> project;
};

TEST_F(DesktopDiscProject, APlaylistOf99ArrivesInItsOrder) {
    const std::vector<std::string> files = {put("60.00.m4a", "long.m4a"), put("five.mp3", "1.mp3"),
                                            put("59.99.m4a", "other.m4a"), put("five.mp3", "2.mp3"),
                                            put("six.m4a", "six.m4a")};
    std::vector<std::string> playlist;
    while (playlist.size() < 99)
        playlist.push_back(files[random() % files.size()]);
    make();
    project->add(playlist);
    ASSERT_TRUE(runUntilAdded());
    std::vector<std::string> arrived;
    for (const DiscItemRef& row : observer->rows)
        arrived.push_back(row->path);
    EXPECT_EQ(arrived, playlist);
}

TEST_F(DesktopDiscProject, BurnsAnAudioCDToAnImageWithAFractionThatNeverFalls) {
    const std::string image = addImageDrive({.path = folder.file("mix.cue")});
    make();
    project->add({put("six.m4a", "two.m4a"), put("five.mp3", "one.mp3")});
    ASSERT_TRUE(runUntilAdded());
    burnOn(image);
    expectWholeBurn();
    EXPECT_TRUE(std::filesystem::exists(folder.file("mix.cue")));
    EXPECT_EQ(observer->names(), (std::vector<std::string>{"two.m4a", "one.mp3"}));
}

TEST_F(DesktopDiscProject, BurnsADataCDOnADriveWithAFractionThatNeverFalls) {
    const auto recorder = plug();
    make(DiscProject::Kind::Data);
    project->add({put("60.00.mp3", "one.mp3")});
    ASSERT_TRUE(runUntilAdded());
    ASSERT_TRUE(runUntil([&] { return project->capacity().isExact; }));
    EXPECT_GT(project->capacity().used, std::filesystem::file_size(folder.file("one.mp3")))
        << "the file system counts";
    burnOn(name);
    expectWholeBurn();
    EXPECT_TRUE(recorder->writtenDisc());
}

TEST_F(DesktopDiscProject, AFailureNamesTheFile) {
    const std::string image = addImageDrive({.path = folder.file("mix.cue")});
    make();
    const std::string song = put("five.mp3", "one.mp3");
    project->add({song});
    ASSERT_TRUE(runUntilAdded());
    std::filesystem::remove(song);
    burnOn(image);
    EXPECT_EQ(observer->burnEnds[0].code, DRError::SourceMissing);
    EXPECT_EQ(observer->burnEnds[0].info.path, song);
    EXPECT_EQ(observer->burnEnds[0].advice, "Restore the file and try again.");
}

TEST_F(DesktopDiscProject, ReadsTheTagsOfAFile) {
    make();
    project->add({put("tagged.mp3", "one.mp3")});
    ASSERT_TRUE(runUntilAdded());
    ASSERT_EQ(observer->rows.size(), 1U);
    EXPECT_EQ(observer->rows[0]->title, "Prélude");
    EXPECT_EQ(observer->rows[0]->artist, "Somebody");
    EXPECT_EQ(observer->rows[0]->album, "Works");
    EXPECT_EQ(observer->rows[0]->trackNumber, 7U);
}

TEST_F(DesktopDiscProject, ReportsNothingOnceItWasDestroyedWhileFilesAreAdded) {
    const std::vector<std::string> files = {put("five.mp3", "1.mp3"), put("six.m4a", "2.m4a"),
                                            put("60.00.mp3", "3.mp3"), put("five.mp3", "4.mp3")};
    for (int i = 0; i < 50; ++i) {
        make();
        project->add(files);
        runToAnyMoment([&] { return project->isAdding(); }, 12);
        destroyAndRunUntil([] { return true; });
    }
}

TEST_F(DesktopDiscProject, ReportsNothingOnceItWasDestroyedWhileItBurnsAnImage) {
    const std::string song = put("five.mp3", "one.mp3");
    for (int i = 0; i < 20; ++i) {
        const std::string image = addImageDrive({.path = folder.file("mix.cue")});
        addAndBurn(song, image);
        destroyAndRunUntil([&] { return removeImageDrive(image); });
    }
}

TEST_F(DesktopDiscProject, ReportsNothingOnceItWasDestroyedWhileItBurnsOnADrive) {
    const auto recorder = plug();
    const std::string song = put("five.mp3", "one.mp3");
    for (int i = 0; i < 5; ++i) {
        recorder->insert(Medium::blankCDR());
        addAndBurn(song, name);
        destroyAndRunUntil([&] { return recorder->openCount() == 0; });
        EXPECT_FALSE(recorder->isTrayLocked());
    }
}

} // namespace
} // namespace quarner::testing
