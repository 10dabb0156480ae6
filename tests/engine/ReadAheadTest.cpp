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
    NumberSource(std::uint8_t number, std::atomic<std::uint64_t>& bytesReadOfAll)
        : _number(number), _bytesReadOfAll(bytesReadOfAll) {}
    void check() override {
        if (failsAtTheEnd)
            throw BurnFailure(DRError::SourceChanged, "changed");
    }
    void read(std::span<std::byte> buffer) override {
        while (waitsFor != nullptr && waitsFor->bytesRead < waitsForBytes && !isReleased)
            std::this_thread::sleep_for(1ms);
        reader = std::this_thread::get_id();
        isRead = true;
        isRead.notify_all();
        isHeld.wait(true);
        std::fill(buffer.begin(), buffer.end(), std::byte(_number));
        bytesRead += buffer.size();
        _bytesReadOfAll += buffer.size();
        _bytesReadOfAll.notify_all();
    }
    void close() override { isClosed = true; }

    bool failsAtTheEnd = false;
    const NumberSource* waitsFor = nullptr; ///< nothing is read before so much of it was
    std::uint64_t waitsForBytes = 1;
    std::atomic<bool> isClosed = false;
    std::atomic<bool> isReleased = false; ///< waits no longer
    std::atomic<bool> isHeld = false;     ///< nothing is read until this is false again
    std::atomic<bool> isRead = false;     ///< the first reading has begun
    std::atomic<std::thread::id> reader;  ///< the thread of the last reading
    std::atomic<std::uint64_t> bytesRead = 0;

    void letGo() {
        isHeld = false;
        isHeld.notify_all();
    }

private:
    const std::uint8_t _number;
    std::atomic<std::uint64_t>& _bytesReadOfAll;
};

class ReadAheadTest : public testing::Test {
protected:
    static constexpr std::uint32_t sectorSize = 16;
    static constexpr std::uint64_t bufferSize = ReadAhead::sectorsPerBuffer * sectorSize;

    void makeTracks(std::initializer_list<std::uint32_t> lengths) {
        plan.sectorSize = sectorSize;
        for (const std::uint32_t length : lengths) {
            plan.tracks.push_back({.length = length});
            sources.push_back(
                std::make_unique<NumberSource>(std::uint8_t(sources.size() + 1), bytesRead));
        }
    }
    NumberSource& source(std::size_t index) { return dynamic_cast<NumberSource&>(*sources[index]); }

    /// Waits until as many bytes of all tracks have been read, and expects that no more were.
    void expectRead(std::uint64_t bytes) {
        for (std::uint64_t read = bytesRead; read < bytes; read = bytesRead)
            bytesRead.wait(read);
        EXPECT_EQ(bytesRead, bytes);
    }

    /// Takes a first buffer, and expects that the readers fill all the memory and then read one
    /// buffer for each that is written. `bytes` are those that were read when it is full.
    void expectMemoryIsTheLimit(ReadAhead& ahead, std::uint64_t bytes) {
        EXPECT_FALSE(ahead.next().empty());
        expectRead(bytes);
        for (int i = 1; i <= 40; ++i) {
            EXPECT_FALSE(ahead.next().empty()); // the writer is done with the one before
            expectRead(bytes + std::uint64_t(i) * bufferSize);
        }
    }

    DiscPlan plan;
    TrackSources sources;
    std::atomic<std::uint64_t> bytesRead = 0; ///< of all tracks
    std::stop_source stop;
};

TEST_F(ReadAheadTest, AFileIsClosedOnceItsTrackHasBeenRead) {
    makeTracks({1, 1});
    ReadAhead readAhead(plan, sources, 1, stop.get_token());
    while (!readAhead.next().empty()) {
    }
    EXPECT_TRUE(source(0).isClosed);
}

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
    expectMemoryIsTheLimit(ahead, ReadAhead::buffers * bufferSize);
}

TEST_F(ReadAheadTest, AnEighthOfTheMemoryIsLeftToTheTrackThatIsBeingWritten) {
    makeTracks({100'000, 100'000});
    source(0).isHeld = true;
    ReadAhead ahead(plan, sources, 2, stop.get_token());
    constexpr std::size_t held = 1; // by the first track, which waits with it
    constexpr auto others = (ReadAhead::buffers - ReadAhead::buffers / 8 - held) * bufferSize;
    expectRead(others);
    source(0).letGo();
    expectRead(ReadAhead::buffers * bufferSize);
    EXPECT_EQ(source(1).bytesRead, others);
    while (!ahead.next().empty()) {
    }
    EXPECT_EQ(source(0).bytesRead, 100'000U * sectorSize);
}

TEST_F(ReadAheadTest, OneThreadReadsOneTrackAtATimeAndUsesAllTheMemory) {
    makeTracks({1, 100'000, 1});
    source(0).isHeld = true;
    ReadAhead ahead(plan, sources, 1, stop.get_token());
    source(0).isRead.wait(false);
    EXPECT_EQ(bytesRead, 0U);
    source(0).letGo();
    expectRead(sectorSize + (ReadAhead::buffers - 1) * bufferSize);
    EXPECT_EQ(source(0).reader, source(1).reader);
    EXPECT_FALSE(ahead.next().empty());
    EXPECT_TRUE(ahead.next().empty()) << "the end of the first track";
    expectMemoryIsTheLimit(ahead, sectorSize + ReadAhead::buffers * bufferSize);
}

TEST_F(ReadAheadTest, TheTrackThatIsBeingWrittenMayUseAllTheMemory) {
    makeTracks({100'000});
    ReadAhead ahead(plan, sources, 2, stop.get_token());
    expectMemoryIsTheLimit(ahead, ReadAhead::buffers * bufferSize);
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
        source(0).isRead.wait(false);
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
