// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/support/BurnFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// What a host may do from inside the calls of a burn.
template <typename Burner>
class BothBurnCallbacks : public BothBurnTest<Burner> {
protected:
    /// Lets something happen inside a call, once.
    void when(const std::string& call, const std::function<void()>& action) {
        this->delegate.whenCalled = [this, call, action](const std::string& now) {
            if (now != call)
                return;
            this->delegate.whenCalled = nullptr;
            action();
        };
    }
    void burn() { this->burner->burnWithDevice(QuarnerDevice("Writer"), "Disc"); }
};

TYPED_TEST_SUITE(BothBurnCallbacks, Burners, BurnerNames);

TYPED_TEST(BothBurnCallbacks, TheLastReferenceMayBeDroppedWhileTheBurnStarts) {
    this->append(1000);
    const std::weak_ptr<TypeParam> watched = this->burner;
    this->when("burnProgressDidStarted", [this] { this->burner.reset(); });
    this->burn();
    EXPECT_TRUE(watched.expired());
    EXPECT_TRUE(this->platform.lastBurn()->isStarted());
    this->say(this->platform.lastBurn(), {.state = DRStatusStateDone});
    EXPECT_THAT(this->delegate.calls(), ElementsAre("burnProgressDidStarted"));
}

TYPED_TEST(BothBurnCallbacks, ABurnCannotBeStoppedWhileItStarts) {
    this->append(1000);
    this->when("burnProgressDidStarted", [this] { this->burner->stopBurn(); });
    this->burn();
    EXPECT_FALSE(this->platform.lastBurn()->isAborted());
    this->burner->stopBurn();
    EXPECT_TRUE(this->platform.lastBurn()->isAborted());
}

TYPED_TEST(BothBurnCallbacks, ABurnThatIsStartedInTheLastCallIsReportedAndCannotBeStopped) {
    const auto first = this->start();
    this->when("burnProgressDidDone", [this] { this->burn(); });
    this->say(first, {.state = DRStatusStateDone});
    const auto second = this->platform.lastBurn();
    ASSERT_NE(second, first);
    this->burner->stopBurn();
    EXPECT_FALSE(second->isAborted());
    this->delegate.forget();
    this->say(second, {.state = DRStatusStateFinishing});
    this->say(second, {.state = DRStatusStateDone});
    EXPECT_THAT(this->delegate.calls(),
                ElementsAre("burnProgressIsFinishing", "burnProgressDidDone"));
}

TYPED_TEST(BothBurnCallbacks, ABurnerThatNoSharedPointerHoldsAddsNothingAndRefusesEveryBurn) {
    this->putSongs({"/one.mp3"});
    TypeParam alone;
    alone.setDelegate(&this->delegate);
    alone._content.append(this->makeItem());
    EXPECT_FALSE(alone.addFiles({"/one.mp3"}));
    this->finishRuns();
    EXPECT_THAT(this->delegate.calls(), IsEmpty());
    alone.burnWithDevice(QuarnerDevice("Writer"), "Disc");
    EXPECT_THAT(this->delegate.calls(),
                ElementsAre("burnProgressDidStarted", "burnProgressDidError(Quarn, 0)"));
    EXPECT_THAT(this->platform.burns(), IsEmpty());
}

} // namespace
} // namespace quarner::testing
