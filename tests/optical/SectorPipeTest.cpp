// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/drive/SectorPipe.h"

#include <gtest/gtest.h>

#include <atomic>
#include <numeric>
#include <thread>
#include <vector>

namespace quarner {
namespace {

bool always() { return true; }

std::vector<std::byte> count(std::size_t size) {
    std::vector<std::byte> bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = std::byte(i * 31 >> 3);
    return bytes;
}

TEST(SectorPipe, HandsOverEveryByteInOrderWhateverTheSizes) {
    SectorPipe pipe;
    const std::vector<std::byte> sent = count(100'000);
    std::vector<std::byte> received(sent.size());
    std::jthread taker([&] {
        for (std::size_t at = 0; at < received.size(); at += 2'000)
            EXPECT_EQ(pipe.take(std::span(received).subspan(at, 2'000)), 2'000U);
    });
    for (std::size_t at = 0, size = 1; at < sent.size(); at += size, size = size * 2 % 7'001)
        EXPECT_TRUE(
            pipe.give(std::span(sent).subspan(at, std::min(size, sent.size() - at)), {}, always));
    taker.join();
    EXPECT_EQ(received, sent);
}

TEST(SectorPipe, ReturnsToTheGiverOnlyWhenAllIsTaken) {
    SectorPipe pipe;
    std::atomic<bool> hasReturned = false;
    std::atomic<int> checks = 0; // one for each interval in which it waits
    std::jthread giver([&] {
        EXPECT_TRUE(pipe.give(count(10), {}, [&] { return ++checks > 0; }));
        hasReturned = true;
    });
    std::vector<std::byte> buffer(9);
    EXPECT_EQ(pipe.take(buffer), 9U);
    const int checksSoFar = checks;
    while (checks == checksSoFar && !hasReturned)
        std::this_thread::yield();
    EXPECT_FALSE(hasReturned);
    EXPECT_EQ(pipe.take(std::span(buffer).first(1)), 1U);
    giver.join();
    EXPECT_TRUE(hasReturned);
}

TEST(SectorPipe, StopsGivingWhenAskedTo) {
    SectorPipe pipe;
    std::stop_source stop;
    std::jthread stopper([&] { stop.request_stop(); });
    EXPECT_FALSE(pipe.give(count(10), stop.get_token(), always));
}

TEST(SectorPipe, StopsGivingWhenNobodyTakesAnyMore) {
    SectorPipe pipe;
    int looks = 0;
    EXPECT_FALSE(pipe.give(count(10), {}, [&] { return ++looks < 3; }));
    EXPECT_EQ(looks, 3);
}

TEST(SectorPipe, KeepsNothingOfWhatWasNotTaken) {
    SectorPipe pipe;
    EXPECT_FALSE(pipe.give(count(10), {}, [] { return false; }));
    const std::vector<std::byte> next(4, std::byte(7));
    std::jthread giver([&] { EXPECT_TRUE(pipe.give(next, {}, always)); });
    std::vector<std::byte> buffer(4);
    EXPECT_EQ(pipe.take(buffer), 4U);
    EXPECT_EQ(buffer, next);
}

TEST(SectorPipe, WakesBothSidesUpWhenItIsClosed) {
    SectorPipe pipe;
    std::vector<std::byte> buffer(4);
    std::jthread taker([&] { EXPECT_EQ(pipe.take(buffer), 0U); });
    pipe.close();
    taker.join();
    EXPECT_FALSE(pipe.give(buffer, {}, always));
}

} // namespace
} // namespace quarner
