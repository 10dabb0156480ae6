// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <future>

#include "tests/image/ImageTest.h"

namespace quarner {
namespace {

class TwoBurns : public AnyImageTest {
protected:
    /// A burn on another drive.
    void prepareSecond(const std::string& image) {
        second = stage->service()->burnForDevice(stage->drives().add({.path = image}));
        secondLog =
            std::make_unique<BurnLog>(stage->service()->currentRunLoopCenter(), second.get());
    }
    bool runSecondToEnd() {
        return stage->loops().runUntil([&] { return secondLog->isOver(); });
    }

    const Paths sources = makeSources({588 * 1000, 588 * 500});
    const Paths otherSources = makeSources({588 * 1400});
    std::shared_ptr<DRBurn> second;
    std::unique_ptr<BurnLog> secondLog;
};

TEST_P(TwoBurns, OnTwoDrivesGoOnAtTheSameTime) {
    prepareSecond(stage->imageNamed("other"));
    second->writeLayout(stage->layoutOf(otherSources));
    const Outcome outcome = burn(sources);
    EXPECT_TRUE(outcome.isDone) << outcome.info;
    ASSERT_TRUE(runSecondToEnd());
    EXPECT_TRUE(secondLog->isDone()) << secondLog->info();
    EXPECT_TRUE(imageHolds(sources));
    EXPECT_TRUE(stage->contentsOf(stage->imageNamed("other")) ==
                stage->expectedContentsOf(otherSources));
}

TEST_P(TwoBurns, ToOneImageAtTheSameTimeEndInARefusalOfTheSecond) {
    prepareSecond(stage->image());
    const DRLayout otherLayout = stage->layoutOf(otherSources);
    std::promise<void> secondEnd;
    const std::shared_future<void> secondHasEnded = secondEnd.get_future();
    stage->whileReading(sources.front(), // the first burn goes on when the second is over
                        [=] { secondHasEnded.wait_for(std::chrono::seconds(10)); });
    secondLog->onRecord = [&](const Dictionary&) {
        if (secondLog->isOver())
            secondEnd.set_value();
    };
    const Outcome outcome =
        burn(stage->layoutOf(sources), stage->drive(), [&](const Dictionary& record) {
            if (BurnLog::stateOf(record) == DRStatusStateSessionOpen)
                second->writeLayout(otherLayout);
        });
    ASSERT_TRUE(runSecondToEnd());
    EXPECT_TRUE(outcome.isDone) << outcome.info;
    EXPECT_EQ(secondLog->code(), codeOf(DRError::DeviceBusy)) << secondLog->info();
    EXPECT_TRUE(imageHolds(sources));
    EXPECT_EQ(filesInFolder(), stage->filesOfImage());
}

INSTANTIATE_IMAGE_SUITE(TwoBurns);

} // namespace
} // namespace quarner
