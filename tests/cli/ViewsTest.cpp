// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tools/quarner/view/PeopleView.h"

namespace quarner::cli {
namespace {

using testing::HasSubstr;

class PlainViewTest : public testing::Test {
protected:
    std::ostringstream out;
    std::ostringstream err;
    Console console{out, err, {}};
    PlainView view{console};
};

TEST_F(PlainViewTest, TellsEachStepOnceAndEachTenthOnce) {
    view.burnProgressIsPreparing();
    view.burnProgressIsPreparing();
    view.burnProgressIsOpeningTrack(1, 2);
    for (const double fraction : {0.05, 0.11, 0.15, 0.19, 0.31}) {
        view.burnProgressDidChanaged(fraction, 7);
        view.burnProgressIsWriteingTrack(1, 2);
    }
    view.burnProgressDidCloseTrack(1, 2);
    EXPECT_EQ(out.str(), "Preparing\n"
                         "Writing track 1 of 2\n"
                         "Writing track 1 of 2: 10%, 0:07 left\n"
                         "Writing track 1 of 2: 30%, 0:07 left\n");
}

TEST_F(PlainViewTest, ANewStageBeginsItsProgressAnew) {
    view.burnProgressDidChanaged(1.0, 0);
    view.burnProgressIsWriteingTrack(1, 1);
    view.burnProgressIsVerifying();
    view.burnProgressDidChanaged(1.0, 0);
    view.burnProgressIsVerifying();
    EXPECT_EQ(out.str(), "Writing track 1 of 1: 100%, 0:00 left\n"
                         "Verifying\n"
                         "Verifying: 100%, 0:00 left\n");
}

TEST_F(PlainViewTest, AFailureGoesToTheErrorStream) {
    view.didEnd(ExitStatus::Failed, "it failed");
    EXPECT_EQ(out.str(), "");
    EXPECT_EQ(err.str(), "quarner: it failed\n");
}

TEST(TerminalView, VerifyingBeginsWithAnEmptyBar) {
    std::ostringstream out;
    std::ostringstream err;
    Console console(out, err, {true, false, [] { return std::size_t{80}; }});
    TerminalView view(console);
    view.burnProgressDidChanaged(1.0, 0);
    view.burnProgressIsWriteingTrack(1, 1);
    view.burnProgressIsVerifying();
    EXPECT_THAT(out.str(), HasSubstr("Verifying [------------------------------]   0%"));
}

TEST(TerminalView, ADiscThatIsClosedHasNoBar) {
    std::ostringstream out;
    std::ostringstream err;
    Console console(out, err, {true, false, [] { return std::size_t{80}; }});
    TerminalView view(console);
    view.burnProgressDidCloseSession();
    view.burnProgressIsFinishing();
    EXPECT_EQ(out.str(), "\rClosing the disc\x1b[K\rFinishing\x1b[K");
}

} // namespace
} // namespace quarner::cli
