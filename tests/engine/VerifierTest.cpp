// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/Verifier.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "adapters/engine/BurnFailure.h"

namespace quarner {
namespace {

using testing::HasSubstr;

/// A disc of zeros, of which one sector is read back wrong.
class SpoiltDisc : public SectorWriter {
public:
    explicit SpoiltDisc(std::uint64_t spoilt) : _spoilt(spoilt) {}

    void openSession(const DiscPlan&) override {}
    void write(std::span<const std::byte>) override {}
    void closeSession() override {}
    void finish() override {}
    void beginVerification() override {}
    void commit() override {}
    void readBack(std::uint64_t firstSector, std::span<std::byte> buffer) override {
        std::fill(buffer.begin(), buffer.end(), std::byte(0));
        const std::uint64_t sectors = buffer.size() / audioSectorSize;
        if (_spoilt >= firstSector && _spoilt < firstSector + sectors)
            buffer[std::size_t((_spoilt - firstSector) * audioSectorSize)] = std::byte(1);
    }

private:
    const std::uint64_t _spoilt;
};

/// What is said of a disc of `sectors` sectors of which one is spoilt; empty if it passes.
std::string complaint(std::uint32_t sectors, std::uint64_t spoilt) {
    DiscPlan plan;
    plan.sectorSize = audioSectorSize;
    plan.tracks.push_back({.preGap = 0, .length = sectors});
    Checksums checksums(plan.sectorSize);
    checksums.add(std::vector<std::byte>(std::size_t(sectors) * audioSectorSize));
    checksums.finish();
    SpoiltDisc disc(spoilt);
    const StopSignal stop;
    try {
        Verifier(plan, checksums, disc, stop, [](std::uint64_t) {}).verify();
    } catch (const BurnFailure& failure) {
        return failure.info();
    }
    return {};
}

TEST(Verifier, NamesTheSectorsThatDifferAndNoneBeyondTheDisc) {
    EXPECT_THAT(complaint(360, 10), HasSubstr("the 360 sectors from 0 on (track 1)"));
    EXPECT_THAT(complaint(1500, 10), HasSubstr("the 1024 sectors from 0 on (track 1)"));
    EXPECT_THAT(complaint(1500, 1499), HasSubstr("the 476 sectors from 1024 on (track 1)"));
    EXPECT_EQ(complaint(360, 360), "");
}

} // namespace
} // namespace quarner
