// SPDX-License-Identifier: LGPL-2.1-or-later
#include <algorithm>
#include <span>

#include "adapters/worker/DriveProtocol.h"
#include "adapters/worker/Message.h"
#include "fuzz/Input.h"
#include "fuzz/Target.h"

namespace quarner::fuzz {
namespace {

constexpr std::uint64_t mostBlocks = 0xFFFFFFFF;

bool survives(const Dictionary& fields, Dictionary (*again)(const Dictionary&)) {
    return encoded({"", fields}) == encoded({"", again(fields)});
}

void checkDisc(const Dictionary& fields) {
    const DiscFacts disc = discFactsOf(fields);
    require(disc.state >= DiscFacts::State::None && disc.state <= DiscFacts::State::Unsuitable,
            "a disc has a known state");
    require(disc.usedBlocks <= mostBlocks && disc.freeBlocks <= mostBlocks, "blocks have 32 bits");
    require(disc.speeds.size() <= 64, "a disc has some speeds");
    require(std::all_of(disc.speeds.begin(), disc.speeds.end(),
                        [](std::int64_t speed) { return speed > 0; }),
            "speeds are above 0");
    require(survives(fieldsOf(disc), [](auto& sent) { return fieldsOf(discFactsOf(sent)); }),
            "a checked disc survives");
}

void checkPlan(const Dictionary& fields) {
    try {
        const DiscPlan plan = discPlanOf(fields);
        require(!plan.tracks.empty() && plan.tracks.size() <= mostTracks, "1 to 99 tracks");
        require(plan.sectorSize == dataBlockSize || plan.sectorSize == audioSectorSize,
                "a sector is data or audio");
        require(plan.sectors() <= 2 * mostBlocks * mostTracks, "tracks are bounded");
        require(survives(fieldsOf(plan), [](auto& sent) { return fieldsOf(discPlanOf(sent)); }),
                "a checked plan survives");
    } catch (const BurnFailure& failure) {
        require(failure.error() == DRError::Internal, "an impossible plan is an internal error");
    }
}

void checkSettings(const Dictionary& fields) {
    const BurnSettings settings = burnSettingsOf(fields);
    require(!settings.requestedSpeed || *settings.requestedSpeed > 0.0, "a speed is above 0");
    require(driveRecordOf(fieldsOf(driveRecordOf(fields))) == driveRecordOf(fields),
            "a drive survives");
}

void checkFailure(const Dictionary& fields) {
    try {
        throwFailure(fields);
    } catch (const BurnFailure& failure) {
        require(errorFor(std::uint64_t(failure.error())) == failure.error(), "the code is known");
        require(failure.sector().value_or(0) <= mostBlocks, "the sector is one of a disc");
    }
}

} // namespace
} // namespace quarner::fuzz

/// A packet as it was received.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quarner;
    using namespace quarner::fuzz;
    const auto bytes = std::as_bytes(std::span(data, size));
    const std::optional<Message> message = decoded(bytes);
    if (!message)
        return 0;
    require(std::ranges::equal(encoded(*message), bytes), "there is one form of each message");
    checkDisc(message->fields);
    checkPlan(message->fields);
    checkSettings(message->fields);
    checkFailure(message->fields);
    return 0;
}
