// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/BurnRun.h"

#include <gmock/gmock.h>

#include <condition_variable>
#include <future>
#include <latch>
#include <set>
#include <thread>

#include "quarner/platform/DRKeys.h"
#include "quarner/platform/Platform.h"
#include "tests/engine/MemoryDisc.h"
#include "tests/support/BurnLog.h"
#include "tests/support/KeptLog.h"

namespace quarner {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Le;
using testing::Not;

class BurnRunTest : public testing::Test {
protected:
    static constexpr std::uint32_t sectorSize = 16;

    BurnRunTest() { installPlatform({.log = diagnostics}); }
    ~BurnRunTest() override { installPlatform({}); }

    DiscContent makeContent() const {
        DiscContent content;
        content.plan = plan;
        unsigned number = 1;
        for (std::size_t i = 0; i < plan.tracks.size(); ++i) {
            auto source = std::make_unique<CountingSource>(number++);
            source->onCheck = onCheck;
            content.sources.push_back(std::move(source));
        }
        return content;
    }

    void perform(const ContentMaker& maker) {
        BurnRun(disc, stop, StatusReporter(center, disc), clock, settings).perform(maker);
        while (center->deliverOne()) {
        }
    }
    void perform() {
        perform([this] { return makeContent(); });
    }

    /// The sectors that the plan stands for: pre-gaps of silence, and the tracks.
    std::vector<std::byte> expectedBytes() const {
        std::vector<std::byte> bytes;
        const DiscContent content = makeContent();
        for (std::size_t i = 0; i < plan.tracks.size(); ++i) {
            bytes.resize(bytes.size() + std::size_t(plan.tracks[i].preGap) * sectorSize);
            std::vector<std::byte> track(std::size_t(plan.tracks[i].length) * sectorSize);
            content.sources[i]->read(track);
            bytes.insert(bytes.end(), track.begin(), track.end());
        }
        return bytes;
    }

    /// The state, fraction and speed of every record that has a fraction.
    std::vector<std::tuple<std::string, double, double>> progress() const {
        std::vector<std::tuple<std::string, double, double>> found;
        for (const Dictionary& record : log.records())
            if (!valueFor(record, DRStatusPercentCompleteKey).isNull())
                found.emplace_back(BurnLog::stateOf(record),
                                   valueFor(record, DRStatusPercentCompleteKey).asDouble(),
                                   valueFor(record, DRStatusCurrentSpeedKey).asDouble());
        return found;
    }

    std::shared_ptr<KeptLog> diagnostics = std::make_shared<KeptLog>();
    std::shared_ptr<RunLoopCenter> center = std::make_shared<RunLoopCenter>([] {});
    BurnLog log{center, nullptr};
    std::shared_ptr<MemoryDisc> disc = std::make_shared<MemoryDisc>();
    std::shared_ptr<StopSignal> stop = std::make_shared<StopSignal>();
    std::chrono::steady_clock::time_point now{};
    std::chrono::milliseconds step{0}; ///< by which the time goes on at each question
    Clock clock = [this] { return now += step; };
    BurnSettings settings;
    DiscPlan plan{.sectorSize = sectorSize,
                  .tracks = {{.length = 300}, {.preGap = 769, .length = 1}, {.length = 400}}};
    std::function<void()> onCheck;
};

TEST_F(BurnRunTest, ThePreGapsAndTracksReachTheDiscInOrder) {
    perform();
    EXPECT_TRUE(log.isDone()) << log.info();
    EXPECT_TRUE(disc->bytes == expectedBytes());
    EXPECT_THAT(disc->writes, Each(AllOf(Le(ReadAhead::sectorsPerBuffer * sectorSize), Not(0U))));
    EXPECT_EQ(disc->released, 1470U);
}

TEST_F(BurnRunTest, TheDiscIsWrittenReadBackAndMadeValidInThisOrder) {
    perform();
    EXPECT_THAT(disc->calls,
                ElementsAre("claim", "openSession", "write", "closeSession", "finish",
                            "beginVerification", "readBack", "commit", "end", "release"));
    EXPECT_THAT(disc->readBacks,
                ElementsAre(MemoryDisc::ReadBack(0, 1024 * sectorSize),
                            MemoryDisc::ReadBack(1024, (1470 - 1024) * sectorSize)));
}

TEST_F(BurnRunTest, EveryStepIsTold) {
    perform();
    EXPECT_THAT(log.states(),
                ElementsAre("Preparing", "SessionOpen", "TrackOpen 1/3", "TrackWrite 1/3",
                            "TrackClose 1/3", "TrackOpen 2/3", "TrackWrite 2/3", "TrackClose 2/3",
                            "TrackOpen 3/3", "TrackWrite 3/3", "TrackClose 3/3", "SessionClose",
                            "Finishing", "Verifying", "Done"));
    EXPECT_THAT(diagnostics->lines(), IsEmpty());
}

TEST_F(BurnRunTest, ADiscThatIsNotVerifiedIsNotReadBack) {
    settings.verify = false;
    perform();
    EXPECT_TRUE(log.isDone());
    EXPECT_FALSE(disc->settings.verify);
    EXPECT_THAT(disc->calls, ElementsAre("claim", "openSession", "write", "closeSession", "finish",
                                         "commit", "end", "release"));
    EXPECT_EQ(log.count(DRStatusStateVerifying), 0U);
}

TEST_F(BurnRunTest, WhileTheClockStandsOnlyTheStartAndTheEndOfAPhaseHaveAFraction) {
    perform();
    EXPECT_THAT(progress(), ElementsAre(std::tuple(DRStatusStateTrackWrite, 0.0, 0.0),
                                        std::tuple(DRStatusStateTrackWrite, 1.0, 0.0),
                                        std::tuple(DRStatusStateVerifying, 0.0, 0.0),
                                        std::tuple(DRStatusStateVerifying, 1.0, 0.0)));
}

TEST_F(BurnRunTest, EachChunkTellsTheFractionAndTheSpeedWhenTheyTakeLong) {
    plan.tracks = {{.preGap = 256, .length = 512}};
    step = 500ms;
    perform();
    const double speed = 512.0; // 256 blocks in half a second
    EXPECT_THAT(progress(), ElementsAre(std::tuple(DRStatusStateTrackWrite, 0.0, 0.0),
                                        std::tuple(DRStatusStateTrackWrite, 1.0 / 3, speed),
                                        std::tuple(DRStatusStateTrackWrite, 2.0 / 3, speed),
                                        std::tuple(DRStatusStateTrackWrite, 1.0, speed),
                                        std::tuple(DRStatusStateVerifying, 0.0, 0.0),
                                        std::tuple(DRStatusStateVerifying, 1.0, 768 / 0.5)));
    EXPECT_THAT(disc->speeds, ElementsAre(0.0, speed, speed, speed, 0.0, 768 / 0.5));
}

TEST_F(BurnRunTest, AFailureOfAnyStepEndsTheBurnAndIsTold) {
    for (const std::string failing : {"claim", "openSession", "write", "closeSession", "finish",
                                      "beginVerification", "readBack", "commit"}) {
        disc = std::make_shared<MemoryDisc>();
        disc->onCall = [&](const std::string& name) {
            if (name == failing)
                throw BurnFailure(DRError::WriteFailed, failing + " failed");
        };
        perform();
        EXPECT_EQ(log.code(), codeOf(DRError::WriteFailed)) << failing;
        EXPECT_EQ(log.info(), failing + " failed");
        EXPECT_EQ(diagnostics->lines().back(), "burn failed: " + failing + " failed");
        EXPECT_EQ(disc->released, std::nullopt);
        if (failing != "claim") {
            const std::size_t count = disc->calls.size();
            EXPECT_EQ(disc->calls[count - 3], failing) << "nothing is done any more";
            EXPECT_EQ(disc->calls[count - 2], "end");
            EXPECT_EQ(disc->calls[count - 1], "release");
        }
    }
}

TEST_F(BurnRunTest, AStopTakesEffectAtTheNextStepUntilTheDiscIsMadeValid) {
    for (const std::string last : {"claim", "openSession", "write", "closeSession", "finish",
                                   "beginVerification", "readBack"}) {
        disc = std::make_shared<MemoryDisc>();
        stop = std::make_shared<StopSignal>();
        disc->onCall = [&](const std::string& name) {
            if (name == last)
                stop->request(DRError::UserCanceled);
        };
        perform();
        EXPECT_EQ(log.code(), codeOf(DRError::UserCanceled)) << last;
        EXPECT_THAT(disc->calls, Not(Contains("commit"))) << last;
        EXPECT_EQ(disc->calls[disc->calls.size() - 3], last == "claim" ? "openSession" : last);
        EXPECT_EQ(disc->released, std::nullopt);
    }
    EXPECT_THAT(diagnostics->lines(), IsEmpty()) << "a cancellation is no failure";
}

TEST_F(BurnRunTest, AStopDuringAPreGapEndsItBeforeTheNextChunk) {
    plan.tracks = {{.preGap = 2000, .length = 300}};
    disc->onCall = [&](const std::string& name) {
        if (name == "write")
            stop->request(DRError::DeviceVanished);
    };
    perform();
    EXPECT_EQ(log.code(), codeOf(DRError::DeviceVanished));
    EXPECT_EQ(disc->writes.size(), 1U);
}

TEST_F(BurnRunTest, AStopWhileTheLastSectorsAreReportedLeavesTheSessionOpen) {
    step = 1s;
    disc->onSpeed = [this] {
        if (disc->bytes.size() == expectedBytes().size())
            stop->request(DRError::UserCanceled);
    };
    perform();
    EXPECT_EQ(log.code(), codeOf(DRError::UserCanceled));
    EXPECT_THAT(disc->calls, ElementsAre("claim", "openSession", "write", "end", "release"));
}

TEST_F(BurnRunTest, AStopWhileAnUnverifiedDiscIsFinishedStillCounts) {
    settings.verify = false;
    disc->onCall = [&](const std::string& name) {
        if (name == "finish")
            stop->request(DRError::UserCanceled);
    };
    perform();
    EXPECT_EQ(log.code(), codeOf(DRError::UserCanceled));
    EXPECT_THAT(disc->calls, Not(Contains("commit")));
}

TEST_F(BurnRunTest, AStopComesTooLateWhileTheDiscIsMadeValid) {
    disc->onCall = [&](const std::string& name) {
        if (name == "commit")
            stop->request(DRError::UserCanceled);
    };
    perform();
    EXPECT_TRUE(log.isDone());
    EXPECT_EQ(disc->released, 1470U);
}

TEST_F(BurnRunTest, EverySourceIsCheckedBeforeTheSessionIsOpened) {
    int checks = 0;
    onCheck = [&] {
        if (++checks == 3)
            throw BurnFailure(DRError::SourceMissing, "gone");
    };
    perform();
    EXPECT_EQ(log.code(), codeOf(DRError::SourceMissing));
    EXPECT_THAT(disc->calls, ElementsAre("claim", "end", "release"));
}

TEST_F(BurnRunTest, ContentThatCannotBeMadeLeavesTheDriveAlone) {
    perform([]() -> DiscContent { throw BurnFailure(DRError::EmptyLayout, "no track"); });
    EXPECT_EQ(log.code(), codeOf(DRError::EmptyLayout));
    EXPECT_THAT(log.states(), ElementsAre("Preparing", "Failed"));
    EXPECT_THAT(disc->calls, IsEmpty());
}

TEST_F(BurnRunTest, AnyOtherExceptionIsAnInternalError) {
    disc->onCall = [](const std::string& name) {
        if (name == "finish")
            throw std::runtime_error("out of luck");
    };
    perform();
    EXPECT_EQ(log.code(), codeOf(DRError::Internal));
    EXPECT_EQ(log.info(), "out of luck");
}

TEST_F(BurnRunTest, ADiscThatDiffersFailsWithTheTrackThatDoes) {
    disc->onCall = [this](const std::string& name) {
        if (name == "beginVerification")
            disc->bytes[1100 * sectorSize] ^= std::byte(1);
    };
    perform();
    EXPECT_EQ(log.code(), codeOf(DRError::VerifyFailed));
    EXPECT_THAT(log.info(), HasSubstr("sectors from 1024 on (track 2)"));
    EXPECT_EQ(log.sector(), 1024U);
    EXPECT_EQ(log.path(), "");
    EXPECT_THAT(disc->calls, Not(Contains("commit")));
}

TEST_F(BurnRunTest, EachOfSeveralReadersReadsOtherBlocks) {
    plan.tracks = {{.length = 1024 * 20 + 1}};
    disc->readers = 4;
    perform();
    EXPECT_TRUE(log.isDone()) << log.info();
    std::sort(disc->readBacks.begin(), disc->readBacks.end());
    ASSERT_EQ(disc->readBacks.size(), 21U);
    for (std::size_t i = 0; i < 20; ++i)
        EXPECT_EQ(disc->readBacks[i], MemoryDisc::ReadBack(i * 1024, 1024 * sectorSize));
    EXPECT_EQ(disc->readBacks[20], MemoryDisc::ReadBack(20 * 1024, sectorSize));
}

TEST_F(BurnRunTest, AsManyReadersReadAtOnceAsTheDiscAllows) {
    plan.tracks = {{.length = 1024 * 4}};
    disc->readers = 4;
    std::mutex mutex;
    std::condition_variable changed;
    unsigned reading = 0;
    disc->onCall = [&](const std::string& name) {
        if (name != "readBack")
            return;
        std::unique_lock lock(mutex);
        ++reading;
        changed.notify_all();
        if (!changed.wait_for(lock, 10s, [&] { return reading == 4; }))
            throw BurnFailure(DRError::ReadBackFailed, "nobody else reads");
    };
    perform();
    EXPECT_TRUE(log.isDone()) << log.info();
}

TEST_F(BurnRunTest, ADiscForOneReaderIsReadOnTheThreadOfTheBurnAlone) {
    plan.tracks = {{.length = 1024 * 4}};
    std::set<std::thread::id> threads;
    std::mutex mutex;
    disc->onCall = [&](const std::string& name) {
        if (name != "readBack")
            return;
        {
            const std::lock_guard lock(mutex);
            threads.insert(std::this_thread::get_id());
        }
        // Only gives a second reader the time to come; without one, the test passes at any speed.
        std::this_thread::sleep_for(5ms);
    };
    perform();
    EXPECT_THAT(threads, ElementsAre(std::this_thread::get_id()));
}

TEST_F(BurnRunTest, AFailureOfTheLastReaderCountsAlsoWhenTheOthersAreDone) {
    plan.tracks = {{.length = 1024 * 2}};
    disc->readers = 2;
    step = 1s;
    std::latch bothRead(2);
    std::promise<void> oneIsDone;
    const auto burnThread = std::this_thread::get_id();
    disc->onCall = [&](const std::string& name) {
        if (name != "readBack")
            return;
        bothRead.arrive_and_wait();
        if (std::this_thread::get_id() == burnThread)
            return;
        oneIsDone.get_future().wait();
        // Mostly the other one asks for more now and finds none; either order must pass.
        std::this_thread::sleep_for(10ms);
        throw BurnFailure(DRError::ReadBackFailed, "unreadable");
    };
    disc->onSpeed = [&] {
        if (disc->readBacks.size() == 1)
            oneIsDone.set_value();
    };
    perform();
    EXPECT_EQ(log.code(), codeOf(DRError::ReadBackFailed));
}

TEST_F(BurnRunTest, AFailureOfOneReaderEndsTheOthers) {
    plan.tracks = {{.length = 1024 * 200}};
    disc->readers = 2;
    disc->onCall = [](const std::string& name) {
        if (name == "readBack")
            throw BurnFailure(DRError::ReadBackFailed, "unreadable");
    };
    perform();
    EXPECT_EQ(log.code(), codeOf(DRError::ReadBackFailed));
    EXPECT_THAT(disc->readBacks, IsEmpty());
}

} // namespace
} // namespace quarner
