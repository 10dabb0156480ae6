// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "tests/cli/BurnCommandFixture.h"
#include "tests/cli/InLanguage.h"
#include "tools/quarner/command/BurnQuestion.h"
#include "tools/quarner/text/Columns.h"
#include "tools/quarner/text/CompilationText.h"
#include "tools/words/Words.h"

namespace quarner::cli {
namespace {

using testing::HasSubstr;
using testing::SizeIs;

constexpr Label labels[] = {Label::None, Label::Drive, Label::Disc,  Label::Title,
                            Label::Used, Label::Free,  Label::Speeds};

/// With messages that are longer by half.
class LongTexts : public testing::Test {
protected:
    const InLanguage _language{"de_DE.UTF-8", LONG_CATALOGUES};
};

TEST_F(LongTexts, AreThere) {
    EXPECT_EQ(words::_("Drive:"), "Drive:ÜÜÜ");
    EXPECT_THAT(words::_("{time} left", {{"time", "0:07"}}), HasSubstr("0:07 leftÜ"));
    EXPECT_EQ(words::_(""), "");
}

TEST_F(LongTexts, WhatStandsBehindALabelBeginsInOneColumn) {
    std::set<std::size_t> columns;
    for (const Label label : labels) {
        const std::string line = labelled(label, "|");
        columns.insert(displayWidth(line.substr(0, line.find('|'))));
    }
    EXPECT_THAT(columns, SizeIs(1));
    EXPECT_EQ(*columns.begin(), displayWidth("Speeds:ÜÜÜÜ") + 2);
}

DiscBurnProgress progressAt(double fraction, const std::string& timeLeft) {
    DiscBurnProgress progress;
    progress.text = "Schreiben von Titel 99 von 99 nach längerer Vorbereitung";
    progress.fraction = fraction;
    progress.timeLeftText = timeLeft;
    return progress;
}

TEST_F(LongTexts, TheProgressLineNeverExceedsTheScreen) {
    for (std::size_t columns = 12; columns < 160; ++columns)
        for (const double fraction : {0.0, 0.5, 1.0})
            EXPECT_LE(displayWidth(progressLine(progressAt(fraction, "9:59:59"), columns, true)),
                      columns);
}

TEST_F(LongTexts, TheProgressLineKeepsItsWidthWhileFiguresGrow) {
    std::set<std::size_t> widths;
    for (const double fraction : {0.0, 0.07, 0.5, 1.0})
        for (const char* const timeLeft : {"", "0:07", "12:34"})
            widths.insert(displayWidth(progressLine(progressAt(fraction, timeLeft), 120, true)));
    EXPECT_THAT(widths, SizeIs(1));
}

TEST_F(LongTexts, TheUsageLineNeverExceedsTheScreen) {
    DiscCapacity capacity;
    capacity.isDiscKnown = true;
    capacity.used = 2400;
    capacity.total = 4800;
    capacity.usedText = capacity.totalText = "01:20:00";
    capacity.verdict = "weniger als eine Sekunde zu lang";
    for (std::size_t columns = 12; columns < 160; ++columns)
        EXPECT_LE(displayWidth(usageLine(capacity, columns, true)), columns);
}

TEST_F(LongTexts, TheTrackTableKeepsItsWidth) {
    DiscItem item;
    item.displayName = "Lied";
    item.duration = "00:03:25";
    item.size = "1023 KBÜÜÜÜ";
    DiscCapacity capacity;
    capacity.contentText = "99 Titel mit ihren ziemlich langen Pausen dazwischen";
    capacity.usedText = "01:19:57";
    capacity.fileBytesText = "702,8 MBÜÜÜ";
    const Compilation compilation = {
        DiscKind::Audio,
        std::make_shared<DiscItems>(DiscItems(3, std::make_shared<DiscItem>(item))), capacity};
    for (const std::size_t columns : {40U, 60U, 78U})
        for (const std::string& line : trackList(compilation, columns))
            EXPECT_EQ(displayWidth(line), columns) << line;
}

TEST(GermanTexts, AnAnswerMeansYesInTheLanguageOfTheQuestionAndInEnglish) {
    const InLanguage german("de_DE.UTF-8", CATALOGUES);
    for (const char* const answer : {"j", "ja", "J", "Ja ", "y", "yes"})
        EXPECT_TRUE(isYes(answer)) << answer;
    for (const char* const answer : {"", "n", "nein", "jein", "o", "oui"})
        EXPECT_FALSE(isYes(answer)) << answer;
}

TEST(GermanTexts, ACountChoosesItsMessage) {
    const InLanguage german("de_DE.UTF-8", CATALOGUES);
    EXPECT_EQ(words::counted("{count} file", "{count} files", 1), "1 Datei");
    EXPECT_EQ(words::counted("{count} file", "{count} files", 0), "0 Dateien");
}

TEST(FrenchTexts, ACountChoosesItsMessage) {
    const InLanguage french("fr_FR.UTF-8", CATALOGUES);
    EXPECT_EQ(words::counted("{count} file", "{count} files", 0), "0 fichier");
    EXPECT_EQ(words::counted("{count} file", "{count} files", 2), "2 fichiers");
}

TEST(EnglishTexts, AreTheMessagesThemselves) {
    const InLanguage none("C", CATALOGUES);
    EXPECT_EQ(words::counted("{count} file", "{count} files", 1), "1 file");
    EXPECT_EQ(words::_("Adding {index} of {count}: {name}", {{"name", "a\x1b[2J{index}"}}),
              "Adding {index} of {count}: a\uFFFD[2J{index}");
}

} // namespace
} // namespace quarner::cli
