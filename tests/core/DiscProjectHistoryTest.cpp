// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/project/DiscProjectHistory.h"

#include <random>

#include "tests/core/DiscProjectFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Strings = std::vector<std::string>;

class DiscProjectHistoryTest : public DiscProjectTest {
protected:
    void add(const Strings& names, std::optional<std::size_t> row = std::nullopt) {
        history.add(songs(names), row);
        settle();
    }
    void undo() {
        history.undo();
        settle();
    }
    void redo() {
        history.redo();
        settle();
    }

    DiscProjectHistory history{*project};
};

INSTANTIATE_TEST_SUITE_P(, DiscProjectHistoryTest,
                         ::testing::Values(DiscProject::Kind::Audio, DiscProject::Kind::Data),
                         kindName);

TEST_P(DiscProjectHistoryTest, HasNothingToUndoAtFirst) {
    EXPECT_FALSE(history.canUndo());
    EXPECT_FALSE(history.canRedo());
    undo();
    redo();
    EXPECT_THAT(names(), IsEmpty());
}

TEST_P(DiscProjectHistoryTest, UndoesAndRedoesAnAddition) {
    add({"a.mp3"});
    add({"x.mp3", "y.mp3"}, 0);
    undo();
    EXPECT_THAT(observer->names(), ElementsAre("a.mp3"));
    redo();
    EXPECT_THAT(observer->names(), ElementsAre("x.mp3", "y.mp3", "a.mp3"));
    undo();
    undo();
    EXPECT_THAT(observer->names(), IsEmpty());
    EXPECT_FALSE(history.canUndo());
    EXPECT_TRUE(history.canRedo());
}

TEST_P(DiscProjectHistoryTest, PutsRemovedRowsBackWhereTheyWere) {
    add({"a.mp3", "b.mp3", "c.mp3", "d.mp3", "e.mp3"});
    history.remove({0, 2, 4});
    EXPECT_THAT(names(), ElementsAre("b.mp3", "d.mp3"));
    undo();
    EXPECT_THAT(observer->names(), ElementsAre("a.mp3", "b.mp3", "c.mp3", "d.mp3", "e.mp3"));
    redo();
    EXPECT_THAT(observer->names(), ElementsAre("b.mp3", "d.mp3"));
}

TEST_P(DiscProjectHistoryTest, UndoesAMoveByMovingAsFewRowsAsPossible) {
    add({"a.mp3", "b.mp3", "c.mp3", "d.mp3"});
    history.move({0}, 4);
    const auto moved = project->items()->back();
    observer->events.clear();
    undo();
    EXPECT_THAT(observer->names(), ElementsAre("a.mp3", "b.mp3", "c.mp3", "d.mp3"));
    EXPECT_THAT(observer->events, ElementsAre("moved 3+1 to 0"));
    EXPECT_EQ(project->items()->front(), moved);
    redo();
    EXPECT_THAT(observer->names(), ElementsAre("b.mp3", "c.mp3", "d.mp3", "a.mp3"));
}

TEST_P(DiscProjectHistoryTest, UndoesTheClearingOfTheList) {
    add({"a.mp3", "b.mp3"});
    history.clear();
    EXPECT_THAT(names(), IsEmpty());
    undo();
    EXPECT_THAT(observer->names(), ElementsAre("a.mp3", "b.mp3"));
}

TEST_P(DiscProjectHistoryTest, ANewEditForgetsWhatWasUndone) {
    add({"a.mp3"});
    undo();
    add({"b.mp3"});
    EXPECT_FALSE(history.canRedo());
    undo();
    EXPECT_THAT(observer->names(), IsEmpty());
}

TEST_P(DiscProjectHistoryTest, DoesNotCountEditsThatChangedNothing) {
    add({"a.mp3"});
    history.move({0}, 0);
    history.remove({7});
    history.add({"/music/missing.mp3"});
    settle();
    undo();
    EXPECT_THAT(observer->names(), IsEmpty());
    EXPECT_FALSE(history.canUndo());
}

TEST_P(DiscProjectHistoryTest, WaitsForFilesThatAreBeingAdded) {
    add({"a.mp3"});
    platform.backgroundQueue().hold();
    history.add(songs({"b.mp3"}));
    history.add(songs({"c.mp3"}));
    EXPECT_FALSE(history.canUndo());
    history.undo();
    platform.backgroundQueue().release();
    settle();
    EXPECT_EQ(observer->rows.size(), 3U);
    undo(); // both are one edit
    EXPECT_THAT(observer->names(), ElementsAre("a.mp3"));
}

TEST_P(DiscProjectHistoryTest, ReportsAFileThatIsGoneAndKeepsTheRest) {
    add({"a.mp3", "b.mp3", "c.mp3"});
    history.remove({0, 1});
    platform.removeFile("/music/a.mp3");
    undo();
    EXPECT_THAT(observer->names(), ElementsAre("b.mp3", "c.mp3"));
    ASSERT_EQ(observer->refused.size(), 1U);
    EXPECT_EQ(std::get<RefusalReason>(observer->refused[0]), RefusalReason::Missing);
}

TEST_P(DiscProjectHistoryTest, KeepsTheLastHundredEdits) {
    add({"a.mp3", "b.mp3"});
    for (std::size_t edit = 0; edit < DiscProjectHistory::mostEdits; ++edit)
        history.move({0}, 2);
    std::size_t undone = 0;
    for (; history.canUndo(); ++undone)
        history.undo();
    EXPECT_EQ(undone, DiscProjectHistory::mostEdits);
}

TEST_P(DiscProjectHistoryTest, AnySequenceOfEditsIsUndoneAndRedoneStepByStep) {
    std::mt19937 random(7);
    const auto below = [&](std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
    };
    std::vector<Strings> lists = {names()};
    for (int edit = 0; edit < 60; ++edit) {
        const std::size_t count = project->items()->size();
        if (count < 4 || below(3) == 0)
            add({"n" + std::to_string(edit) + ".mp3", "m" + std::to_string(edit) + ".mp3"},
                below(count + 1));
        else if (below(2) == 0)
            history.remove({below(count), below(count)});
        else
            history.move({below(count), below(count), below(count)}, below(count + 1));
        settle();
        if (names() != lists.back())
            lists.push_back(names());
    }
    for (std::size_t step = lists.size() - 1; step > 0; --step) {
        undo();
        ASSERT_EQ(names(), lists[step - 1]) << step;
    }
    for (std::size_t step = 1; step < lists.size(); ++step) {
        redo();
        ASSERT_EQ(names(), lists[step]) << step;
    }
    EXPECT_EQ(observer->names(), names());
}

} // namespace
} // namespace quarner::testing
