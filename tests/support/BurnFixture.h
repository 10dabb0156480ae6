// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "tests/support/BurnerFixture.h"

namespace quarner::testing {

inline std::shared_ptr<ScriptedDrive> addWriter(ScriptedPlatform& platform) {
    return platform.addDrive({.name = "Writer", .disc = DiscScript{}});
}

/// A burner and a drive with a blank disc. Burns stay silent until the test lets them speak.
template <typename Burner>
class BothBurnTest : public BurnerTest<Burner> {
protected:
    /// Appends an item, named "Track 1" and so on; a track has so many blocks.
    void append(std::uint64_t blocks) {
        const auto item = this->makeItem("Track " + std::to_string(this->count() + 1));
        if (const auto track = std::dynamic_pointer_cast<DRTrack>(item)) {
            track->setLength(DRMSF::msfWithFrames(300));
            track->setEstimateLength(blocks);
        }
        this->burner->_content.append(item);
    }

    /// Starts a burn and gives its burn object; the delegate has forgotten the start.
    std::shared_ptr<ScriptedBurn> start(std::uint64_t blocks = 1000) {
        append(blocks);
        this->burner->burnWithDevice(QuarnerDevice("Writer"), "Disc");
        this->delegate.forget();
        return this->platform.lastBurn();
    }

    /// Lets a burn speak and delivers what it says.
    void say(const std::shared_ptr<ScriptedBurn>& burn, const BurnRecord& record) {
        burn->post(record);
        this->finishRuns();
    }

    /// Starts a burn and gives what the delegate hears of one record.
    std::vector<std::string> heardOf(const BurnRecord& record, std::uint64_t blocks = 1000) {
        say(start(blocks), record);
        return this->delegate.calls();
    }

    std::shared_ptr<ScriptedDrive> drive = addWriter(this->platform);
};

using BurnTest = BothBurnTest<OpenAudioCDBurner>;

} // namespace quarner::testing
