// SPDX-License-Identifier: LGPL-2.1-or-later
#include <algorithm>
#include <random>
#include <set>
#include <tuple>

#include "tests/core/DiscProjectFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Strings = std::vector<std::string>;
using Rows = std::set<std::size_t>;

class DiscProjectList : public DiscProjectTest {};

INSTANTIATE_TEST_SUITE_P(, DiscProjectList,
                         ::testing::Values(DiscProject::Kind::Audio, DiscProject::Kind::Data),
                         kindName);

TEST_P(DiscProjectList, KeepsTheGivenOrder) {
    compile({"c.mp3", "a.mp3", "b.mp3"});
    EXPECT_THAT(names(), ElementsAre("c.mp3", "a.mp3", "b.mp3"));
    EXPECT_EQ(observer->names(), names());
    EXPECT_EQ(observer->events.back(), "adding ended");
}

TEST_P(DiscProjectList, SortsOnlyWhenAskedTo) {
    project->addSorted(songs({"c.mp3", "a.mp3", "b.mp3"}));
    settle();
    EXPECT_THAT(observer->names(), ElementsAre("a.mp3", "b.mp3", "c.mp3"));
}

TEST_P(DiscProjectList, InsertsAtARow) {
    compile({"a.mp3", "b.mp3"});
    project->add(songs({"x.mp3", "y.mp3"}), 1);
    settle();
    EXPECT_THAT(observer->names(), ElementsAre("a.mp3", "x.mp3", "y.mp3", "b.mp3"));
    project->add(songs({"first.mp3"}), 0);
    project->add(songs({"last.mp3"}), 99);
    settle();
    EXPECT_THAT(observer->names(),
                ElementsAre("first.mp3", "a.mp3", "x.mp3", "y.mp3", "b.mp3", "last.mp3"));
}

TEST_P(DiscProjectList, InsertsAtARowWhileOtherFilesAreBeingAdded) {
    compile({"a.mp3", "b.mp3"});
    platform.backgroundQueue().hold();
    project->add(songs({"z.mp3"}));
    project->add(songs({"x.mp3", "y.mp3"}), 1);
    project->remove(Rows{0});
    platform.backgroundQueue().releaseOne(1); // the later call first
    settle();
    platform.backgroundQueue().release();
    settle();
    EXPECT_THAT(observer->names(), ElementsAre("x.mp3", "y.mp3", "b.mp3", "z.mp3"));
}

TEST_P(DiscProjectList, ARowTellsWhatTheFileIsLike) {
    platform.putSong("/music/one.mp3",
                     {.seconds = 205.5, .tags = {"Prelude", "Somebody", "Works", 7}},
                     {.size = 4'299'161, .displayName = "One", .icon = {{"audio-mpeg"}}});
    project->add({"/music/one.mp3"});
    settle();
    const DiscItem& row = *project->items()->front();
    EXPECT_EQ(row.path, "/music/one.mp3");
    EXPECT_EQ(row.displayName, "One");
    EXPECT_THAT(row.iconNames, ElementsAre("audio-mpeg"));
    EXPECT_EQ(row.seconds, 205);
    EXPECT_EQ(row.duration, "00:03:25");
    EXPECT_EQ(row.bytes, 4'299'161);
    EXPECT_EQ(row.size, "4.1 MB");
    EXPECT_EQ(row.title, "Prelude");
    EXPECT_EQ(row.artist, "Somebody");
    EXPECT_EQ(row.album, "Works");
    EXPECT_EQ(row.trackNumber, 7U);
    EXPECT_TRUE(row.item);
}

TEST_P(DiscProjectList, ARefusedFileIsReportedWithItsReasonAndAText) {
    using Reason = RefusalReason;
    const bool isAudio = GetParam() == DiscProject::Kind::Audio;
    compile({"a.mp3"});
    platform.putFile("/music/text.txt");
    platform.putFile("/music/bought.m4p");
    platform.putFile("/music/folder.mp3",
                     {.problem = FileProblem{FileProblem::Kind::NotAFile, "a folder"}});
    platform.putFile("/music/silent.mp3");
    platform.putSong("/music/short.mp3", {.seconds = 0.5});
    platform.putSong("/music/damaged.mp3",
                     {.isPlayable = false, .problem = {{MovieProblem::Kind::Damaged, "holes"}}});
    platform.putSong("/music/bad.mp3",
                     {.isPlayable = false, .problem = {{MovieProblem::Kind::Unreadable, "EIO"}}});
    const std::vector<std::tuple<std::string, Reason, std::string>> all = {
        {"a.mp3", Reason::AlreadyInList, " is already in the list."},
        {"text.txt", Reason::UnsupportedType,
         " is of a type that cannot be added. Convert it to MP3 or M4A."},
        {"bought.m4p", isAudio ? Reason::Protected : Reason::UnsupportedType,
         isAudio ? " is copy-protected. Add it to a data CD, or get it without protection."
                 : " is of a type that cannot be added. Convert it to MP3 or M4A."},
        {"gone.mp3", Reason::Missing,
         " does not exist. Check its name, or whether its disk is connected."},
        {"folder.mp3", Reason::NotAFile, " is not a file. Add the files in it instead."},
        {"silent.mp3", Reason::NoSound,
         " holds no sound that can be played. Leave it out, or replace it."},
        {"short.mp3", Reason::TooShort, " is shorter than a second. Leave it out."},
        {"damaged.mp3", Reason::Damaged, " is damaged (holes). Leave it out, or replace it."},
        {"bad.mp3", Reason::Unreadable,
         " cannot be read (EIO). Check its permissions and its disk."}};
    for (const auto& [name, reason, text] : all) {
        observer->refused.clear();
        const std::string path = "/music/" + name;
        project->add({path});
        settle();
        EXPECT_THAT(observer->refused,
                    ElementsAre(::testing::FieldsAre(path, reason, "\"" + path + "\"" + text)));
        EXPECT_EQ(observer->events.back(), "adding ended");
    }
}

TEST_P(DiscProjectList, RemovesRowsInRunsFromTheEndOn) {
    compile({"a.mp3", "b.mp3", "c.mp3", "d.mp3", "e.mp3"});
    observer->events.clear();
    project->remove(Rows{0, 2, 3, 17});
    EXPECT_THAT(observer->events, ElementsAre("removed 2+2", "removed 0+1"));
    EXPECT_THAT(observer->names(), ElementsAre("b.mp3", "e.mp3"));
    EXPECT_EQ(observer->names(), names());
}

TEST_P(DiscProjectList, RemovingNoRowReportsNothing) {
    compile({"a.mp3"});
    observer->events.clear();
    project->remove({});
    project->remove(Rows{1});
    EXPECT_THAT(observer->events, IsEmpty());
}

TEST_P(DiscProjectList, MovesRowsInTheirOrder) {
    compile({"a.mp3", "b.mp3", "c.mp3", "d.mp3", "e.mp3"});
    project->move(Rows{0, 3}, 2);
    EXPECT_THAT(observer->names(), ElementsAre("b.mp3", "a.mp3", "d.mp3", "c.mp3", "e.mp3"));
    project->move(Rows{3, 4}, 0);
    EXPECT_THAT(observer->names(), ElementsAre("c.mp3", "e.mp3", "b.mp3", "a.mp3", "d.mp3"));
    project->move(Rows{0}, 99);
    EXPECT_THAT(observer->names(), ElementsAre("e.mp3", "b.mp3", "a.mp3", "d.mp3", "c.mp3"));
    EXPECT_EQ(observer->names(), names());
}

TEST_P(DiscProjectList, MovesNothingForARowThatIsNotThere) {
    compile({"a.mp3", "b.mp3"});
    observer->events.clear();
    project->move(Rows{0, 2}, 0);
    project->move({}, 0);
    EXPECT_THAT(observer->events, IsEmpty());
}

TEST_P(DiscProjectList, IsEmptyAfterClear) {
    compile({"a.mp3", "b.mp3"});
    project->clear();
    EXPECT_THAT(*project->items(), IsEmpty());
    EXPECT_EQ(observer->events.back(), "removed 0+2");
}

TEST_P(DiscProjectList, ASnapshotIsSharedUntilTheListChanges) {
    compile({"a.mp3"});
    const auto before = project->items();
    EXPECT_EQ(project->items(), before);
    compile({"b.mp3"});
    EXPECT_EQ(before->size(), 1U);
    EXPECT_EQ(project->items()->size(), 2U);
}

TEST_P(DiscProjectList, AnObserverThatEditsIsNotCalledInsideItsOwnCall) {
    bool hasEdited = false;
    observer->onCall = [&] {
        if (!std::exchange(hasEdited, true)) {
            project->add(songs({"b.mp3"}));
            project->clear();
        }
    };
    compile({"a.mp3"});
    EXPECT_EQ(observer->names(), names());
}

TEST_P(DiscProjectList, AnObserverThatEditsInsideTheFirstOfSeveralEventsKeepsItsCopy) {
    compile({"a.mp3", "b.mp3", "c.mp3", "d.mp3", "e.mp3", "f.mp3"});
    bool hasEdited = false;
    observer->onCall = [&] {
        if (!std::exchange(hasEdited, true))
            project->remove(Rows{0});
    };
    observer->events.clear();
    project->remove(Rows{1, 3, 5});
    EXPECT_THAT(observer->events,
                ElementsAre("removed 5+1", "removed 3+1", "removed 1+1", "removed 0+1"));
    EXPECT_THAT(names(), ElementsAre("c.mp3", "e.mp3"));
    EXPECT_EQ(observer->names(), names());
}

TEST_P(DiscProjectList, AnObserverMayAskForTheListBetweenTheEventsOfAChange) {
    compile({"a.mp3", "b.mp3", "c.mp3", "d.mp3", "e.mp3"});
    observer->onCall = [&] { EXPECT_EQ(project->items()->size(), 2U) << "all rows are removed"; };
    project->remove(Rows{0, 2, 4});
    EXPECT_THAT(names(), ElementsAre("b.mp3", "d.mp3"));
    EXPECT_EQ(observer->names(), names());
}

TEST_P(DiscProjectList, AProjectThatAnObserverDestroysReportsNothingMore) {
    observer->onCall = [&] { project.reset(); };
    project->add(songs({"a.mp3", "b.mp3"}));
    settle();
    EXPECT_EQ(observer->events.size() + observer->progressOfAdding.size(), 1U);
}

TEST_P(DiscProjectList, ADestroyedProjectReportsNothing) {
    project->add(songs({"a.mp3", "b.mp3"}));
    project.reset();
    settle();
    EXPECT_THAT(observer->events, IsEmpty());
}

TEST_P(DiscProjectList, AnObserverThatIsGoneIsNotCalled) {
    const std::weak_ptr<ProjectObserver> gone = observer;
    observer.reset();
    EXPECT_TRUE(gone.expired());
    observer = std::make_shared<ProjectObserver>();
    project->addObserver(observer);
    compile({"a.mp3"});
    EXPECT_THAT(observer->names(), ElementsAre("a.mp3"));
}

TEST_P(DiscProjectList, TellsTheProgressOfAllCallsTogether) {
    platform.backgroundQueue().hold();
    project->add(songs({"a.mp3", "b.mp3"}));
    project->add(songs({"c.mp3"}));
    EXPECT_TRUE(project->isAdding());
    platform.backgroundQueue().releaseOne();
    settle();
    EXPECT_TRUE(project->isAdding());
    platform.backgroundQueue().release();
    settle();
    EXPECT_FALSE(project->isAdding());
    using Progress = std::tuple<std::string, std::size_t, std::size_t>;
    EXPECT_THAT(
        observer->progressOfAdding,
        ElementsAre(Progress("a.mp3", 1, 2), Progress("b.mp3", 2, 2), Progress("c.mp3", 3, 3)));
    EXPECT_EQ(std::count(observer->events.begin(), observer->events.end(), "adding ended"), 1);
}

TEST_P(DiscProjectList, AddingEndsAlsoIfNoFileIsAccepted) {
    project->add({"/music/picture.png"});
    EXPECT_TRUE(project->isAdding());
    EXPECT_THAT(observer->events, IsEmpty()) << "not inside the call";
    settle();
    EXPECT_THAT(observer->events, ElementsAre("adding ended"));
    EXPECT_FALSE(project->isAdding());
}

TEST_P(DiscProjectList, CancellingKeepsWhatWasAdded) {
    platform.onCall(ServiceCall::DisplayName, [&](const std::string& path) {
        if (path == "/music/b.mp3")
            project->cancelAdding();
    });
    compile({"a.mp3", "b.mp3", "c.mp3", "d.mp3"});
    EXPECT_EQ(observer->events.back(), "adding canceled");
    EXPECT_EQ(observer->names().front(), "a.mp3");
    EXPECT_LT(observer->names().size(), 4U);
    EXPECT_FALSE(project->isAdding());
    compile({"e.mp3"});
    EXPECT_EQ(observer->events.back(), "adding ended");
}

TEST_P(DiscProjectList, FilesOfALaterCallDoNotReviveTheOnesThatWereCancelled) {
    platform.backgroundQueue().hold();
    project->add(songs({"a.mp3", "b.mp3"}));
    project->cancelAdding();
    project->add(songs({"c.mp3"}));
    project->addSorted(songs({"e.mp3", "d.mp3"}));
    platform.backgroundQueue().release();
    settle();
    EXPECT_THAT(names(), ElementsAre("c.mp3", "d.mp3", "e.mp3"));
    EXPECT_EQ(observer->events.front(), "adding canceled");
    EXPECT_EQ(observer->events.back(), "adding ended");
    EXPECT_FALSE(project->isAdding());
}

TEST_P(DiscProjectList, CancellingAgainLeavesOutTheFilesOfALaterCallToo) {
    platform.backgroundQueue().hold();
    project->add(songs({"a.mp3", "b.mp3"}));
    project->cancelAdding();
    project->add(songs({"c.mp3"}));
    project->cancelAdding();
    platform.backgroundQueue().release();
    settle();
    EXPECT_THAT(names(), IsEmpty());
    EXPECT_THAT(observer->events, ElementsAre("adding canceled"));
}

TEST_P(DiscProjectList, CancellingWhenNothingIsAddedDelaysNoLaterCall) {
    project->cancelAdding();
    compile({"a.mp3"});
    EXPECT_THAT(names(), ElementsAre("a.mp3"));
}

TEST_P(DiscProjectList, ADestroyedProjectDoesNotAddTheFilesOfALaterCall) {
    platform.backgroundQueue().hold();
    project->add(songs({"a.mp3", "b.mp3"}));
    project->cancelAdding();
    project->add(songs({"c.mp3"}));
    observer->onCall = [&] {
        if (project && !project->isAdding())
            project.reset();
    };
    platform.onCall(ServiceCall::DisplayName,
                    [&](const std::string& path) { EXPECT_NE(path, "/music/c.mp3"); });
    platform.backgroundQueue().release();
    settle();
    EXPECT_FALSE(project);
}

TEST(DiscProjectWithoutPlatform, DoesNothingAndDoesNotHang) {
    DiscProject project(DiscProject::Kind::Audio);
    project.add({"/a.mp3"});
    project.clear();
    EXPECT_TRUE(project.items()->empty());
}

TEST_P(DiscProjectList, ACopyThatFollowsTheEventsEqualsTheListAfterTenThousandEdits) {
    std::mt19937 random(7); // NOLINT(cert-msc51-cpp): the same edits in every run
    const auto upTo = [&](std::size_t most) {
        return std::uniform_int_distribution<std::size_t>(0, most)(random);
    };
    const auto someRows = [&] {
        Rows rows;
        const std::size_t size = project->items()->size();
        for (std::size_t i = upTo(4); size != 0 && i > 0; --i)
            rows.insert(upTo(size - 1));
        return rows;
    };
    Strings pool;
    for (int i = 0; i < 200; ++i)
        pool.push_back("song " + std::to_string(i) + ".mp3");
    pool = songs(pool);
    const auto some = [&] {
        const std::size_t first = upTo(pool.size() - 6);
        return Strings(pool.begin() + static_cast<std::ptrdiff_t>(first),
                       pool.begin() + static_cast<std::ptrdiff_t>(first + 1 + upTo(4)));
    };
    for (int i = 0; i < 10'000; ++i) {
        switch (upTo(5)) {
        case 0:
            project->add(some(), upTo(project->items()->size()));
            break;
        case 1:
            project->add(some());
            break;
        case 2:
            project->remove(someRows());
            break;
        case 3:
        case 4:
            project->move(someRows(), upTo(project->items()->size()));
            break;
        default:
            for (std::size_t turns = upTo(8); turns > 0; --turns)
                platform.runOnce();
        }
        ASSERT_EQ(observer->rows, *project->items()) << "after edit " << i;
    }
    settle();
    EXPECT_EQ(observer->rows, *project->items());
    EXPECT_FALSE(observer->rows.empty());
}

} // namespace
} // namespace quarner::testing
