// SPDX-License-Identifier: LGPL-2.1-or-later
#include <set>

#include "tests/gtk/WindowFixture.h"
#include "tests/support/Program.h"

namespace quarner::testing {
namespace {

class WindowLook : public WindowTest {
protected:
    void startIn(const std::vector<std::string>& language,
                 const std::vector<std::string>& arguments) {
        HostSettings settings = here();
        settings.environment = language;
        start(arguments, settings);
    }
    void startInGerman(const std::vector<std::string>& arguments) {
        title = "Disc brennen";
        startIn({"LC_ALL=C.UTF-8", "LANGUAGE=de"}, arguments);
    }

    static SeenWidget partOf(const SeenWidget& row, const std::string& text) {
        return row.find([&](const SeenWidget& one) { return one.name() == text; }).value();
    }

    /// The roles of widgets that a person uses.
    static bool isUsed(const SeenWidget& widget) {
        static const std::set<std::string> roles = {"push button", "text",      "list",
                                                    "list item",   "level bar", "progress bar"};
        return widget.isVisible() && roles.contains(widget.role());
    }
};

TEST_F(WindowLook, EverythingThatIsUsedHasANameThatIsSpoken) {
    std::ofstream(folder.file("text.txt")) << "words";
    start({song("a.mp3"), "text.txt"});
    find("1 file was not added");
    program().visit([](const SeenWidget& one) {
        if (isUsed(one)) {
            EXPECT_FALSE(one.name().empty()) << one.role();
            EXPECT_THAT(one.name(), ::testing::Not(::testing::HasSubstr("Gtk"))) << one.role();
        }
    });
}

TEST_F(WindowLook, EverythingThatIsUsedIsReachedByTheKeyboard) {
    start({song("a.mp3")});
    waitForRows({"a.mp3"});
    std::set<std::string> reached;
    const std::size_t mostWidgets = 20;
    for (std::size_t i = 0; i < mostWidgets; ++i) {
        press("Tab");
        if (const auto focused = program().find(
                [](const SeenWidget& one) { return one.isFocused() && one.isVisible(); }))
            reached.insert(focused->name());
    }
    for (const char* const name :
         {"Add Files…", "Undo", "Menu", "Drive: No drive", "Title of the disc", "a.mp3, 00:00:10"})
        EXPECT_TRUE(reached.contains(name)) << name << ::testing::PrintToString(reached);
}

TEST_F(WindowLook, FitsInto360PixelsAlsoInALanguageOfLongerWords) {
    startInGerman({song("a.mp3")});
    EXPECT_LE(resize(360, 640), 360);
}

TEST_F(WindowLook, SpeaksGerman) {
    startInGerman({});
    EXPECT_FALSE(isThere("Burn", "push button"));
    EXPECT_TRUE(isThere("Brennen", "push button"));
}

TEST_F(WindowLook, KeepsRightToLeftTextsWithinItsRows) {
    const std::string name = "שיר ארוך מאוד שאין לו סוף ועוד קצת ועוד קצת ועוד קצת.mp3";
    start({song(name)});
    waitUntil([&] { return !rows().empty(); }, "row");
    const SeenWidget item = row(name);
    EXPECT_LE(item.place().x + item.place().width, program().children()[0].place().width);
}

TEST_F(WindowLook, IsMirroredWhereTextsRunFromRightToLeft) {
    // Only in an English locale does GTK use a language that the program has no texts in.
    startIn({"LOCPATH=" TEST_LOCALES, "LC_ALL=en_US.UTF-8", "LANGUAGE=he"},
            {song("a.mp3"), song("b.mp3"), song("c.mp3")});
    waitForRows({"a.mp3", "b.mp3", "c.mp3"});
    EXPECT_GT(find("Audio CD", "push button").place().x, find("Data CD", "push button").place().x);
    EXPECT_GT(find("Title of the disc", "text").place().x, find("Burn", "push button").place().x);
    EXPECT_GT(partOf(row("a.mp3"), "a.mp3").place().x, partOf(row("a.mp3"), "00:00:10").place().x);
    dragRow("a.mp3", "c.mp3", true);
    waitForRows({"b.mp3", "c.mp3", "a.mp3"});
}

TEST_F(WindowLook, TheDesktopAcceptsWhatTheProgramTellsIt) {
    const std::string folderOfData = SOURCE_FOLDER "/tools/quarner-gtk/desktop/";
    const ProgramResult entry =
        runProgram({"desktop-file-validate", folderOfData + "org.quarner.Quarner.desktop"});
    EXPECT_EQ(entry.status, 0) << entry.output;
    const ProgramResult info = runProgram({"appstreamcli", "validate", "--no-net",
                                           folderOfData + "org.quarner.Quarner.metainfo.xml"});
    EXPECT_EQ(info.status, 0) << info.output;
}

} // namespace
} // namespace quarner::testing
