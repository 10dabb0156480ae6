// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include <quarner/scripted.h>

#include "quarner/util/MultiMedia.h"

namespace quarner::testing {
namespace {

constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kilo = 1024;

class MultiMediaTest : public ::testing::Test {
protected:
    static std::string duration(std::int64_t seconds) {
        return MultiMedia::stringWithDuration(seconds, false);
    }
    static std::string size(std::int64_t bytes) { return MultiMedia::stringWithFilesize(bytes); }

    ScriptedPlatform platform;
};

TEST_F(MultiMediaTest, DurationsAreHoursMinutesAndSeconds) {
    EXPECT_EQ(duration(0), "00:00:00");
    EXPECT_EQ(duration(59), "00:00:59");
    EXPECT_EQ(duration(60), "00:01:00");
    EXPECT_EQ(duration(754), "00:12:34");
    EXPECT_EQ(duration(3599), "00:59:59");
    EXPECT_EQ(duration(3661), "01:01:01");
}

TEST_F(MultiMediaTest, HoursAreNeitherWrappedNorCapped) {
    EXPECT_EQ(duration(86400), "24:00:00");
    EXPECT_EQ(duration(360'000), "100:00:00");
    EXPECT_EQ(duration(3600LL * 1'000'000'000 + 59), "1000000000:00:59");
}

TEST_F(MultiMediaTest, TheFieldOfTheFramesIsAlwaysZero) {
    for (const std::int64_t seconds :
         {std::int64_t(0), std::int64_t(3661), std::int64_t(-61), most})
        EXPECT_EQ(MultiMedia::stringWithDuration(seconds, true), duration(seconds) + ".00");
    EXPECT_EQ(MultiMedia::stringWithDuration(0, true), "00:00:00.00");
}

TEST_F(MultiMediaTest, EachFieldOfANegativeDurationBearsItsOwnSign) {
    EXPECT_EQ(duration(-61), "00:-1:-1");
    EXPECT_EQ(duration(-1), "00:00:-1");
    EXPECT_EQ(duration(-3661), "-1:-1:-1");
    EXPECT_EQ(duration(-36610), "-10:-10:-10");
}

TEST_F(MultiMediaTest, TheLongestDurationsGiveATextToo) {
    EXPECT_EQ(duration(most).substr(0, 20), "2562047788015215:30:");
    EXPECT_EQ(duration(least).substr(0, 22), "-2562047788015215:-30:");
}

TEST_F(MultiMediaTest, DurationsAreNotLocalised) {
    platform.setDecimalSeparator(",");
    EXPECT_EQ(MultiMedia::stringWithDuration(3661, true), "01:01:01.00");
    EXPECT_EQ(platform.calls(ServiceCall::LocalizedNumber), 0U);
    EXPECT_EQ(platform.calls(ServiceCall::LocalizedString), 0U);
}

TEST_F(MultiMediaTest, SizesChangeTheirUnitAtPowersOf1024) {
    EXPECT_EQ(size(1024), "1 KB");
    EXPECT_EQ(size(1'048'576), "1 MB");
    EXPECT_EQ(size(1'572'864), "1.5 MB");
    EXPECT_EQ(size(736'966'656), "702.8 MB");
    EXPECT_EQ(size(1'073'741'824), "1 GB");
    EXPECT_EQ(size(1'181'116'006), "1.1 GB");
    EXPECT_EQ(size(4'700'000'000), "4.38 GB");
    EXPECT_EQ(size(kilo * kilo * kilo * kilo), "1 TB");
    EXPECT_EQ(size(1'649'267'441'664), "1.5 TB");
}

TEST_F(MultiMediaTest, UpTo1023BytesRead4KB) {
    EXPECT_EQ(size(1), "4 KB");
    EXPECT_EQ(size(1023), "4 KB");
}

TEST_F(MultiMediaTest, JustBelowABoundaryTheSmallerUnitShowsTheLargerFigure) {
    EXPECT_EQ(size(1'048'575), "1024 KB");
    EXPECT_EQ(size(1'073'741'823), "1024 MB");
    EXPECT_EQ(size(kilo * kilo * kilo * kilo - 1), "1024 GB");
    EXPECT_EQ(size(kilo * kilo * kilo * kilo * kilo - 1), "1024 TB");
}

TEST_F(MultiMediaTest, OnlyZerosAfterTheSeparatorAreTrimmed) {
    EXPECT_EQ(size(1'127'428'915), "1.05 GB");
    EXPECT_EQ(size(11'010'048), "10.5 MB");
    EXPECT_EQ(size(10'485'760), "10 MB");
    EXPECT_EQ(size(2'147'483'648), "2 GB");
    EXPECT_EQ(size(100 * kilo * kilo), "100 MB");
    EXPECT_EQ(size(10 * kilo * kilo * kilo), "10 GB");
    EXPECT_EQ(size(20 * kilo * kilo * kilo * kilo), "20 TB");
}

TEST_F(MultiMediaTest, ZeroAndBelowAreACountOfKB) {
    EXPECT_EQ(size(0), "0 KB");
    EXPECT_EQ(size(-1), "-1 KB");
    EXPECT_EQ(size(-5000), "-5000 KB");
    EXPECT_EQ(size(least), "-9223372036854775808 KB");
}

TEST_F(MultiMediaTest, FromTheFifthPowerOnTheFigureIsZeroKB) {
    EXPECT_EQ(size(kilo * kilo * kilo * kilo * kilo), "0 KB");
    EXPECT_EQ(size(most), "0 KB");
}

TEST_F(MultiMediaTest, TheDecimalSeparatorIsTheUsers) {
    platform.setDecimalSeparator(",");
    EXPECT_EQ(size(1'572'864), "1,5 MB");
    EXPECT_EQ(size(2'147'483'648), "2 GB");
    EXPECT_EQ(size(1'127'428'915), "1,05 GB");
    EXPECT_EQ(size(10'485'760), "10 MB");
}

TEST_F(MultiMediaTest, ASeparatorOfSeveralBytesIsOneCharacter) {
    platform.setDecimalSeparator("\xD9\xAB"); // the Arabic decimal separator
    EXPECT_EQ(size(1'572'864), "1\xD9\xAB"
                               "5 MB");
    EXPECT_EQ(size(2'147'483'648), "2 GB");
    EXPECT_EQ(size(10'485'760), "10 MB");
}

TEST_F(MultiMediaTest, ATranslationChangesOnlyItsUnit) {
    platform.setText("%@ MB", "%@ Mo");
    EXPECT_EQ(size(1'572'864), "1.5 Mo");
    EXPECT_EQ(size(1024), "1 KB");
    EXPECT_EQ(size(1'181'116'006), "1.1 GB");
    platform.setText("%@ GB", "%@ Go");
    platform.setText("%@ TB", "To: %@");
    EXPECT_EQ(size(1'181'116'006), "1.1 Go");
    EXPECT_EQ(size(1'649'267'441'664), "To: 1.5");
}

TEST_F(MultiMediaTest, ATranslationOfKBServesAllItsThreeUses) {
    platform.setText("%.0f KB", "%.0f Ko");
    EXPECT_EQ(size(1), "4 Ko");
    EXPECT_EQ(size(2048), "2 Ko");
    EXPECT_EQ(size(0), "0 Ko");
    EXPECT_EQ(size(most), "0 Ko");
}

TEST_F(MultiMediaTest, ATranslationIsAFormatForItsArgument) {
    platform.setText("%.0f KB", "%.1f Ko");
    platform.setText("%@ MB", "%1$@ Mo");
    EXPECT_EQ(size(1536), "1.5 Ko");
    EXPECT_EQ(size(1), "4.0 Ko");
    EXPECT_EQ(size(1'572'864), "1.5 Mo");
    platform.setDecimalSeparator(",");
    EXPECT_EQ(size(1536), "1,5 Ko");
}

TEST_F(MultiMediaTest, ANumberHasFlagsAWidthAndAPrecision) {
    const auto kilobytes = [this](const char* format, std::int64_t bytes) {
        platform.setText("%.0f KB", format);
        return size(bytes);
    };
    EXPECT_EQ(kilobytes("[%f]", 2048), "[2.000000]");
    EXPECT_EQ(kilobytes("[%.f]", 2048), "[2]");
    EXPECT_EQ(kilobytes("[%6.1f]", 2048), "[   2.0]");
    EXPECT_EQ(kilobytes("[%-6.1f]", 2048), "[2.0   ]");
    EXPECT_EQ(kilobytes("[%06.1f]", -5), "[-005.0]");
    EXPECT_EQ(kilobytes("[%-06.1f]", 2048), "[2.0   ]");
    EXPECT_EQ(kilobytes("[%+.0f]", 2048), "[+2]");
    EXPECT_EQ(kilobytes("[% .0f]", 2048), "[ 2]");
    EXPECT_EQ(kilobytes("[%+ .0f]", -5), "[-5]");
    EXPECT_EQ(kilobytes("[%'#.0f]", 2048), "[2]");
    EXPECT_EQ(kilobytes("[%1$+5.0f]", 2048), "[   +2]");
    EXPECT_EQ(kilobytes("[%01$.0f]", 2048), "[2]");
}

TEST_F(MultiMediaTest, ATextHasAWidthAndAPrecisionInCharacters) {
    const auto megabytes = [this](const char* format) {
        platform.setText("%@ MB", format);
        return size(1'572'864);
    };
    EXPECT_EQ(megabytes("[%5@]"), "[  1.5]");
    EXPECT_EQ(megabytes("[%-5@]"), "[1.5  ]");
    EXPECT_EQ(megabytes("[%.1@]"), "[1]");
    EXPECT_EQ(megabytes("[%05@]"), "[  1.5]");
    platform.setDecimalSeparator("\xD9\xAB");
    EXPECT_EQ(megabytes("[%5@]"), "[  1\xD9\xAB"
                                  "5]");
    EXPECT_EQ(megabytes("[%.2@]"), "[1\xD9\xAB]");
}

TEST_F(MultiMediaTest, WithoutExactlyOneFittingConversionTheKeyIsTheFormat) {
    for (const char* format : {"",
                               "some",
                               "%",
                               "%%@",
                               "%@ of %@ MB",
                               "%.1f Mo",
                               "%s",
                               "%2$@",
                               "%0$@",
                               "%11$@",
                               "%$@",
                               "%*@",
                               "%100@",
                               "%.65@",
                               "%99999999999999999999@",
                               "%.99999999999999999999@",
                               "%1$",
                               "%-",
                               "%5",
                               "%.",
                               "%l@",
                               "% 1$@"}) {
        platform.setText("%@ MB", format);
        EXPECT_EQ(size(1'572'864), "1.5 MB") << format;
    }
    for (const char* format : {"", "Ko", "%@ Ko", "%d Ko", "%.0f%.0f", "%.0e", "%lf", "%.*f",
                               "%1$*2$f", "%100.0f", "%.65f", "%n", "%2$.0f", "%%.0f"}) {
        platform.setText("%.0f KB", format);
        EXPECT_EQ(size(1024), "1 KB") << format;
    }
}

TEST_F(MultiMediaTest, TheLargestWidthAndPrecisionStillFit) {
    platform.setText("%@ MB", "%99@");
    EXPECT_EQ(size(1'572'864), std::string(96, ' ') + "1.5");
    platform.setText("%.0f KB", "%.64f");
    EXPECT_EQ(size(1024), "1." + std::string(64, '0'));
    EXPECT_EQ(size(least).size(), 20U + 1 + 64);
}

TEST_F(MultiMediaTest, NothingElseOfATranslationIsAConversion) {
    platform.setText("%@ MB", "%s%n%d %@ 100%% %");
    platform.setText("%.0f KB", "%.0f %@ %s");
    EXPECT_EQ(size(1'572'864), "%s%n%d 1.5 100% %");
    EXPECT_EQ(size(1024), "1 %@ %s");
}

TEST_F(MultiMediaTest, APercentSignInTheNumberIsNotReadAgain) {
    platform.setDecimalSeparator("%@");
    EXPECT_EQ(size(1'572'864), "1%@5 MB");
}

} // namespace
} // namespace quarner::testing
