// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "tools/quarner/view/PeopleView.h"

namespace quarner::cli {
namespace {

class PeopleViewOnAPipe : public testing::Test {
protected:
    std::ostringstream out;
    std::ostringstream err;
    Console console{out, err, {}};
    PeopleView view{console};
};

DiscBurnProgress progress(const std::string& text, double fraction,
                          const std::string& timeLeft = {}) {
    DiscBurnProgress progress;
    progress.text = text;
    progress.fraction = fraction;
    progress.timeLeftText = timeLeft;
    return progress;
}

TEST_F(PeopleViewOnAPipe, TellsEachStepOnceAndEachTenthOfTheBurnOnce) {
    view.burnProgress(progress("Preparing", 0));
    view.burnProgress(progress("Preparing", 0));
    for (const double fraction : {0.05, 0.11, 0.15, 0.19, 0.31})
        view.burnProgress(progress("Writing", fraction, "0:07"));
    view.burnProgress(progress("Verifying", 0.31));
    view.burnProgress(progress("Verifying", 1.0, "0:00"));
    EXPECT_EQ(out.str(), "Preparing\n"
                         "Writing\n"
                         "Writing: 10%, 0:07 left\n"
                         "Writing: 30%, 0:07 left\n"
                         "Verifying\n"
                         "Verifying: 100%, 0:00 left\n");
}

TEST_F(PeopleViewOnAPipe, AFailureGoesToTheErrorStream) {
    view.didEnd(ExitStatus::Failed, "it failed");
    EXPECT_EQ(out.str(), "");
    EXPECT_EQ(err.str(), "quarner: it failed\n");
}

TEST(PeopleViewOnATerminal, ShowsOneBarOfTheWholeBurn) {
    std::ostringstream out;
    std::ostringstream err;
    Console console(out, err, {true, false, [] { return std::size_t{80}; }});
    PeopleView view(console);
    view.burnProgress(progress("Verifying", 0.68, "1:30"));
    EXPECT_EQ(out.str(), "\rVerifying [####################----------]  68%   1:30 left\x1b[K");
}

} // namespace
} // namespace quarner::cli
