// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <set>
#include <thread>

#include "adapters/engine/BurnFailure.h"
#include "adapters/engine/ReadAhead.h"

namespace quarner {
namespace {

using namespace std::chrono_literals;

/// A track whose bytes all are its number, and which counts what was read of it.
class NumberSource : public TrackSource {
public:
    explicit NumberSource(std::uint8_t number) : _number(number) {}
    void check() override {
        if (failsAtTheEnd)
            throw BurnFailure(DRError::SourceChanged, "changed");
    }
    void read(std::span<std::byte> buffer) override {
        while (waitsFor != nullptr && waitsFor->bytesRead < waitsForBytes && !isReleased)
            std::this_thread::sleep_for(1ms);
        isRead = true;
        isHeld.wait(true);
        std::fill(buffer.begin(), buffer.end(), std::byte(_number));
        bytesRead += buffer.size();
    }
    void close() override {}

    bool failsAtTheEnd = false;
    const NumberSource* waitsFor = nullptr; ///< nothing is read before so much of it was
    std::uint64_t waitsForBytes = 1;
    std::atomic<bool> isReleased = false; ///< waits no longer
    std::atomic<bool> isHeld = false;     ///< nothing is read until this is false again
    std::atomic<bool> isRead = false;     ///< the first reading has begun
    std::atomic<std::uint64_t> bytesRead = 0;

    void letGo() {
        isHeld = false;
        isHeld.notify_all();
    }

private:
    const std::uint8_t _number;
};

class ReadAheadTest : public testing::Test {
protected:
    static constexpr std::uint32_t sectorSize = 16;
    static constexpr std::uint64_t bufferSize = ReadAhead::sectorsPerBuffer * sectorSize;

    void makeTracks(std::initializer_list<std::uint32_t> lengths) {
        plan.sectorSize = sectorSize;
        for (const std::uint32_t length : lengths) {
            plan.tracks.push_back({.length = length});
            sources.push_back(std::make_unique<NumberSource>(std::uint8_t(sources.size() + 1)));
        }
    }
    NumberSource& source(std::size_t index) { return dynamic_cast<NumberSource&>(*sources[index]); }
    std::uint64_t bytesRead() {
        std::uint64_t sum = 0;
        for (std::size_t i = 0; i < sources.size(); ++i)
            sum += source(i).bytesRead;
        return sum;
    }

    /// What was read of all tracks once no more is.
    std::uint64_t settledBytes() {
        std::uint64_t before = 0;
        do {
            before = bytesRead();
            std::this_thread::sleep_for(50ms);
        } while (bytesRead() != before);
        return before;
    }

    DiscPlan plan;
    TrackSources sources;
    std::stop_source stop;
};

TEST_F(ReadAheadTest, GivesEveryTrackInOrderAndWhole) {
    makeTracks({1000, 0, 70000, 1, 256, 20000});
    ReadAhead ahead(plan, sources, 3, stop.get_token());
    for (std::size_t i = 0; i < plan.tracks.size(); ++i) {
        std::uint64_t bytes = 0;
        for (auto piece = ahead.next(); !piece.empty(); piece = ahead.next()) {
            EXPECT_EQ(piece.front(), std::byte(i + 1));
            EXPECT_EQ(piece.back(), std::byte(i + 1));
            bytes += piece.size();
        }
        EXPECT_EQ(bytes, std::uint64_t(plan.tracks[i].length) * sectorSize);
    }
}

TEST_F(ReadAheadTest, ReadsASecondTrackMeanwhileAndNoFurtherThanItsMemory) {
    makeTracks({100'000, 100'000, 100'000});
    source(0).waitsFor = &source(1);
    ReadAhead ahead(plan, sources, 2, stop.get_token());
    EXPECT_FALSE(ahead.next().empty());
    EXPECT_LE(settledBytes(), ReadAhead::buffers * bufferSize);
}

TEST_F(ReadAheadTest, AnEighthOfTheMemoryIsLeftToTheTrackThatIsBeingWritten) {
    makeTracks({100'000, 100'000});
    source(0).isHeld = true;
    ReadAhead ahead(plan, sources, 2, stop.get_token());
    while (source(1).bytesRead == 0)
        std::this_thread::sleep_for(1ms);
    constexpr std::size_t held = 1; // by the first track, which waits with it
    EXPECT_EQ(settledBytes(), (ReadAhead::buffers - ReadAhead::buffers / 8 - held) * bufferSize);
    source(0).letGo();
    while (!ahead.next().empty()) {
    }
    EXPECT_EQ(source(0).bytesRead, 100'000U * sectorSize);
}

TEST_F(ReadAheadTest, OneThreadReadsOneTrackAtATimeAndUsesAllTheMemory) {
    makeTracks({1, 100'000, 1});
    source(0).isHeld = true;
    ReadAhead ahead(plan, sources, 1, stop.get_token());
    EXPECT_EQ(settledBytes(), 0U);
    source(0).letGo();
    while (source(1).bytesRead == 0)
        std::this_thread::sleep_for(1ms);
    EXPECT_EQ(settledBytes(), sectorSize + (ReadAhead::buffers - 1) * bufferSize);
}

TEST_F(ReadAheadTest, TheTrackThatIsBeingWrittenMayUseAllTheMemory) {
    makeTracks({100'000});
    const ReadAhead ahead(plan, sources, 2, stop.get_token());
    while (bytesRead() == 0)
        std::this_thread::sleep_for(1ms);
    EXPECT_EQ(settledBytes(), ReadAhead::buffers * bufferSize);
}

TEST_F(ReadAheadTest, TheSameMemoryIsUsedAgain) {
    makeTracks({100'000});
    ReadAhead ahead(plan, sources, 2, stop.get_token());
    std::set<const std::byte*> places;
    for (auto piece = ahead.next(); !piece.empty(); piece = ahead.next())
        places.insert(piece.data());
    EXPECT_LE(places.size(), ReadAhead::buffers);
}

TEST_F(ReadAheadTest, AfterAStopOnlyThePieceUnderWayIsRead) {
    makeTracks({100'000});
    source(0).isHeld = true;
    {
        const ReadAhead ahead(plan, sources, 1, stop.get_token());
        while (!source(0).isRead)
            std::this_thread::sleep_for(1ms);
        stop.request_stop();
        source(0).letGo();
    }
    EXPECT_EQ(source(0).bytesRead, bufferSize);
}

/// Without the reserve, the second track takes each buffer that the writer returns.
TEST_F(ReadAheadTest, TheTrackBeingWrittenGetsMemoryHoweverFarTheNextOneIsReadAhead) {
    makeTracks({15'000, 15'000, 15'000});
    source(0).waitsFor = &source(1);
    source(0).waitsForBytes = (ReadAhead::buffers - ReadAhead::buffers / 8 - 1) * bufferSize;
    ReadAhead ahead(plan, sources, 2, stop.get_token());
    const std::jthread watchdog([this](const std::stop_token& isOver) {
        std::mutex mutex;
        std::unique_lock lock(mutex);
        std::condition_variable_any().wait_for(lock, isOver, 1s, [] { return false; });
        source(0).isReleased = true;
        stop.request_stop();
    });
    std::uint64_t bytes = 0;
    for (auto piece = ahead.next(); !piece.empty(); piece = ahead.next())
        bytes += piece.size();
    EXPECT_EQ(bytes, 15'000U * sectorSize) << "the first track waits for memory";
}

TEST_F(ReadAheadTest, AFailureComesOutAfterWhatWasRead) {
    makeTracks({1000, 1000});
    source(1).failsAtTheEnd = true;
    ReadAhead ahead(plan, sources, 2, stop.get_token());
    while (!ahead.next().empty()) {
    }
    std::uint64_t bytes = 0;
    EXPECT_THROW(
        {
            for (auto piece = ahead.next(); !piece.empty(); piece = ahead.next())
                bytes += piece.size();
        },
        BurnFailure);
    EXPECT_EQ(bytes, 1000U * sectorSize);
}

TEST_F(ReadAheadTest, AStopEndsItOnEveryThread) {
    makeTracks({100'000, 100'000});
    ReadAhead ahead(plan, sources, 2, stop.get_token());
    EXPECT_FALSE(ahead.next().empty());
    stop.request_stop();
    EXPECT_TRUE(ahead.next().empty());
}

} // namespace
} // namespace quarner
