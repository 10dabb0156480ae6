// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include "adapters/joliet/JolietNames.h"

namespace quarner {
namespace {

using Names = std::vector<std::string>;

TEST(JolietNames, ALegalNameUnlikeAllOthersIsNotChanged) {
    const Names names = {"Song 1.mp3", "Größe.m4a", "曲.mp3", ".hidden", "trailing ", "no dot"};
    EXPECT_EQ(jolietNames(names), names);
}

TEST(JolietNames, ForbiddenAndControlCharactersBecomeUnderscores) {
    EXPECT_EQ(jolietNames({"a*b:c;d?e\\f\n\x7F.mp3"}), Names{"a_b_c_d_e_f__.mp3"});
}

TEST(JolietNames, EveryByteThatIsNotUtf8BecomesAnUnderscore) {
    EXPECT_EQ(jolietNames({"caf\xE9 \xFF\xFE.mp3"}), Names{"caf_ __.mp3"});
    EXPECT_EQ(jolietNames({"\xED\xA0\x80.mp3"}), Names{"___.mp3"}); // a lone surrogate
}

TEST(JolietNames, ALongNameLosesTheEndOfItsStemAndKeepsItsExtension) {
    const std::string name = jolietNames({std::string(200, 'x') + ".mp3"}).front();
    EXPECT_EQ(name, std::string(60, 'x') + ".mp3");
    EXPECT_EQ(jolietNames({std::string(60, 'x') + ".mp3"}).front(), name) << "64 fit";
}

TEST(JolietNames, AnExtensionThatIsNoneIsCutLikeTheStem) {
    const std::string name = "a." + std::string(100, 'b');
    EXPECT_EQ(jolietNames({name}).front(), name.substr(0, 64));
}

TEST(JolietNames, ACharacterOutsideUcs2CountsAsTwoAndIsNeverSplit) {
    const std::string emoji = "\xF0\x9F\x8E\xB5";
    EXPECT_EQ(jolietNames({emoji + ".mp3"}), Names{emoji + ".mp3"});
    const std::string longName = std::string(59, 'x') + emoji + ".mp3"; // 59 + 2 + 4 units
    EXPECT_EQ(jolietNames({longName}).front(), std::string(59, 'x') + ".mp3");
}

TEST(JolietNames, NamesThatDifferOnlyInCaseAreNumbered) {
    EXPECT_EQ(jolietNames({"song.mp3", "SONG.mp3", "Song.MP3"}),
              (Names{"song.mp3", "SONG (2).mp3", "Song (3).MP3"}));
    EXPECT_EQ(jolietNames({"straße.mp3", "STRASSE.mp3"}).back(), "STRASSE (2).mp3");
    EXPECT_EQ(jolietNames({"e\xCC\x81.mp3", "\xC3\xA9.mp3"}).back(), "\xC3\xA9 (2).mp3");
}

TEST(JolietNames, NamesAlikeAfterCuttingAreNumberedWithinTheLimit) {
    const std::string stem(70, 'x');
    const Names names = jolietNames({stem + "1.mp3", stem + "2.mp3"});
    EXPECT_EQ(names.front(), std::string(60, 'x') + ".mp3");
    EXPECT_EQ(names.back(), std::string(56, 'x') + " (2).mp3");
}

TEST(JolietNames, ANumberNeverTakesTheNameOfAnotherFile) {
    EXPECT_EQ(jolietNames({"a.mp3", "a.mp3", "a (2).mp3"}),
              (Names{"a.mp3", "a (3).mp3", "a (2).mp3"}));
}

TEST(JolietNames, ThousandsOfFilesOfOneNameAreToldApart) {
    const Names names = jolietNames(Names(5000, "track.mp3"));
    EXPECT_EQ(names.front(), "track.mp3");
    EXPECT_EQ(names.back(), "track (5000).mp3");
}

TEST(VolumeName, IsValidUtf8WithoutControlCharacters) {
    EXPECT_EQ(volumeName("Müßiggang: Volume 1"), "Müßiggang: Volume 1");
    EXPECT_EQ(volumeName(""), "");
    EXPECT_EQ(volumeName("a\nb\xFF"), "a_b_");
}

} // namespace
} // namespace quarner
