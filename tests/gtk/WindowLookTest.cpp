// SPDX-License-Identifier: LGPL-2.1-or-later
#include <libintl.h>

#include <set>

#include "tests/cli/InLanguage.h"
#include "tests/gtk/DesktopServices.h"
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

    /// As on a desktop: the theme follows the settings.
    void startInThemeOfDesktop() {
        HostSettings settings = here();
        settings.environment.insert(settings.environment.begin(), "--unset=GTK_THEME");
        start({}, settings);
    }
    void waitUntilDark(bool isDark) const {
        constexpr double half = 0.5;
        waitUntil([&] { return (brightnessOf(find("Drop music here")) < half) == isDark; },
                  isDark ? "dark window" : "light window");
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
    waitForRows({"a.mp3"});
    EXPECT_LE(resize(360, 640), 360) << treeOf(program());
}

/// With texts that are longer by half than the English ones.
class WindowWithLongTexts : public WindowLook {
protected:
    void startWith(const std::vector<std::string>& arguments) {
        HostSettings settings = here();
        // The catalogue is in the tree of the tests: the name of a language may be a path.
        settings.environment = {"LOCPATH=" TEST_LOCALES, "LC_ALL=de_DE.UTF-8",
                                "LANGUAGE=../../tests/translations/long/de"};
        settings.preloads.emplace_back(FAILING_CALLS);
        settings.environment.emplace_back("QUARNER_FAULT=pwrite 1 held always a.long.name");
        settings.environment.push_back("QUARNER_FAULT_GATE=" + gate);
        title = text("Burn a Disc");
        imageDialogue = text("Burn to an Image");
        titleField = text("Title of the disc");
        start(arguments, settings);
    }
    static std::string text(const char* message) { return dgettext("quarner", message); }
    static std::string files(unsigned long count) {
        std::string text = dngettext("quarner", "{count} file was not added",
                                     "{count} files were not added", count);
        return text.replace(text.find("{count}"), 7, std::to_string(count));
    }
    void expectToBeNarrow(const char* state) const {
        EXPECT_LE(resize(360, 640), 360) << state << treeOf(program());
    }

private:
    const cli::InLanguage _language{"de_DE.UTF-8", LONG_CATALOGUES};
};

TEST_F(WindowWithLongTexts, FitsInto360PixelsWhateverItShows) {
    writeContent(gate, "");
    const std::string image = folder.file("a.long.name of an image for the whole family and "
                                          "all of their friends, summer 2024.cue");
    startWith({song("a.mp3", 11), "missing.mp3", "missing too.mp3"});
    expectToBeNarrow("a list");
    click(files(2));
    find(text("Files that were not added, and why"), "text");
    expectToBeNarrow("refusals");
    chooseImage(image);
    clickWhenReady(text("Burn"), "push button");
    find(text("Cancel"), "push button");
    expectToBeNarrow("a burn");
    std::filesystem::remove(gate);
    find(text("Burn Another Copy"), "push button");
    expectToBeNarrow("the end of the burn");
}

TEST_F(WindowLook, IsDarkOrLightAsTheDesktopPrefersAndFollowsIt) {
    using ColorScheme = DesktopServices::ColorScheme;
    DesktopServices desktop(ColorScheme::Dark);
    startInThemeOfDesktop();
    waitUntilDark(true);
    desktop.setColorScheme(ColorScheme::Light);
    waitUntilDark(false);
    desktop.setColorScheme(ColorScheme::Dark);
    waitUntilDark(true);
    desktop.setColorScheme(ColorScheme::NoPreference);
    waitUntilDark(false);
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

TEST_F(WindowLook, TheDesktopOffersTheProgramForEveryTypeOfItsFiles) {
    const std::string entry =
        contentOf(SOURCE_FOLDER "/tools/quarner-gtk/desktop/org.quarner.Quarner.desktop");
    std::set<std::string> extensions;
    for (const std::string& line : lines(contentOf("/usr/share/mime/globs2"))) {
        // 50:audio/mpeg:*.mp3
        const auto type = line.find(':') + 1;
        const auto glob = line.find(":*.", type);
        const std::string extension = glob == std::string::npos ? "" : line.substr(glob + 3);
        if (!std::set<std::string>{"mp3", "m4a", "m3u", "m3u8", "pls", "xspf"}.contains(extension))
            continue;
        extensions.insert(extension);
        EXPECT_THAT(entry, ::testing::HasSubstr(line.substr(type, glob - type) + ";"));
    }
    EXPECT_THAT(extensions, ::testing::SizeIs(6));
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
