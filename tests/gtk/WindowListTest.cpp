// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/gtk/WindowFixture.h"

namespace quarner::testing {
namespace {

class WindowList : public WindowTest {};

TEST_F(WindowList, SaysWhatToDoWhileItIsEmpty) {
    start();
    EXPECT_TRUE(find("Drop music here").isVisible());
    EXPECT_FALSE(find("Burn", "push button").isSensitive());
}

TEST_F(WindowList, OpensFilesFoldersAndPlaylistsThatTheProgramIsGiven) {
    song("a.mp3");
    const std::string below = makeFolder("folder");
    song("folder/b.mp3");
    song("c.mp3");
    std::ofstream(folder.file("list.m3u")) << "c.mp3\n";
    start({"a.mp3", "folder", "list.m3u"});
    waitForRows({"a.mp3", "b.mp3", "c.mp3"});
}

TEST_F(WindowList, TakesFilesThatAreDroppedWhereTheyAreDropped) {
    song("a.mp3");
    song("b.mp3");
    start();
    dropFiles({song("x.mp3"), song("y.mp3")}, find("Drop music here"));
    waitForRows({"x.mp3", "y.mp3"});
    dropFiles({folder.file("a.mp3"), folder.file("b.mp3")}, row("x.mp3"));
    waitUntil([&] { return rows().size() == 4; }, "4 rows");
    EXPECT_EQ(rows().back(), "y.mp3");
}

TEST_F(WindowList, IsReorderedByDragging) {
    start({song("a.mp3"), song("b.mp3"), song("c.mp3")});
    waitForRows({"a.mp3", "b.mp3", "c.mp3"});
    dragRow("a.mp3", "c.mp3", true);
    waitForRows({"b.mp3", "c.mp3", "a.mp3"});
    dragRow("a.mp3", "b.mp3", false);
    waitForRows({"a.mp3", "b.mp3", "c.mp3"});
}

TEST_F(WindowList, IsEditedByKeysAndEachEditIsUndoneAndRedone) {
    start({song("a.mp3"), song("b.mp3"), song("c.mp3")});
    waitForRows({"a.mp3", "b.mp3", "c.mp3"});
    click(row("a.mp3"), title);
    press("alt+Down");
    waitForRows({"b.mp3", "a.mp3", "c.mp3"});
    press("Delete");
    waitForRows({"b.mp3", "c.mp3"});
    press("ctrl+z");
    waitForRows({"b.mp3", "a.mp3", "c.mp3"});
    press("ctrl+z");
    waitForRows({"a.mp3", "b.mp3", "c.mp3"});
    press("ctrl+shift+z");
    waitForRows({"b.mp3", "a.mp3", "c.mp3"});
    click("Undo", "push button");
    waitForRows({"a.mp3", "b.mp3", "c.mp3"});
    press("ctrl+z");
    find("Drop music here");
}

TEST_F(WindowList, SelectsTheNextRowWhenOneIsRemoved) {
    start({song("a.mp3"), song("b.mp3"), song("c.mp3")});
    waitForRows({"a.mp3", "b.mp3", "c.mp3"});
    click(row("a.mp3"), title);
    press("Delete");
    waitForRows({"b.mp3", "c.mp3"});
    press("Delete");
    waitForRows({"c.mp3"});
}

TEST_F(WindowList, KeysMeanInTheTitleWhatTheyMeanInAText) {
    start({song("a.mp3")});
    waitForRows({"a.mp3"});
    click("Title of the disc", "text");
    type("Mix");
    waitUntil([&] { return find("Title of the disc", "text").text() == "Mix"; },
              "title: " + find("Title of the disc", "text").text());
    press("Home");
    press("Delete");
    waitUntil([&] { return find("Title of the disc", "text").text() == "ix"; }, "shorter title");
    EXPECT_EQ(rows().size(), 1U);
}

TEST_F(WindowList, SaysInTheWindowWhichFilesWereNotAdded) {
    std::ofstream(folder.file("text.txt")) << "words";
    start({song("a.mp3"), "text.txt", "missing.mp3"});
    waitForRows({"a.mp3"});
    find("2 files were not added");
    click("2 files were not added");
    waitUntil(
        [&] {
            return program()
                .find([](const SeenWidget& one) {
                    return one.text().find("missing.mp3\" does not exist") != std::string::npos &&
                           one.isVisible();
                })
                .has_value();
        },
        "reason");
    // Higher than one reason of two lines, and no higher than it needs to be.
    const SeenWidget bar = find("Files that were not added, and why", "text");
    waitUntil([&] { return bar.place().height > 70 && bar.place().height < 100; }, "room");
    click("Close the list of files that were not added");
    EXPECT_FALSE(program().find([](const SeenWidget& one) { return one.role() == "dialog"; }));
}

TEST_F(WindowList, SaysInOneTextWhichOfManyFilesWereNotAdded) {
    constexpr int files = 500;
    std::vector<std::string> names;
    for (int i = 0; i < files; ++i) {
        names.push_back(std::to_string(i) + ".mp3");
        writeContent(folder.file(names.back()), "");
    }
    start(names);
    click("500 files were not added");
    const SeenWidget reasons = find("Files that were not added, and why", "text");
    EXPECT_THAT(lines(reasons.text()), ::testing::SizeIs(files));
    EXPECT_THAT(reasons.text(), ::testing::HasSubstr("/499.mp3"));
    int widgets = 0;
    program().visit([&](const SeenWidget&) { ++widgets; });
    EXPECT_LT(widgets, files);
}

TEST_F(WindowList, IsKeptWhenTheKindOfDiscIsChanged) {
    start({song("a.mp3"), song("b.m4a")});
    waitForRows({"a.mp3", "b.m4a"});
    click("Data CD", "push button");
    waitUntil([&] { return row("a.mp3").name().ends_with("B"); }, "sizes");
    waitForRows({"a.mp3", "b.m4a"});
}

} // namespace
} // namespace quarner::testing
