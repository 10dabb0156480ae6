// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>

#include "tests/recorder/RecorderTest.h"

namespace quarner {
namespace {

using testing::ElementsAre;

TEST_P(Recorder, ABurnTellsOfEveryStepInOrderAndEndsDone) {
    const auto burn = makeBurn();
    const auto log = observe(burn);
    burn->writeLayout(makeLayout({588 * 400, 1000}));
    ASSERT_TRUE(runToEnd(*log));
    EXPECT_THAT(log->states(),
                ElementsAre("Preparing", "SessionOpen", "TrackOpen 1/2", "TrackWrite 1/2",
                            "TrackClose 1/2", "TrackOpen 2/2", "TrackWrite 2/2", "TrackClose 2/2",
                            "SessionClose", "Finishing", "Verifying", "Done"))
        << log->info();
    EXPECT_EQ(valueFor(log->records().back(), DRStatusPercentCompleteKey).asDouble(), 1.0);
}

} // namespace
} // namespace quarner
