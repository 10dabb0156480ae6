// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "tests/support/BurnerFixture.h"

namespace quarner::testing {

inline std::shared_ptr<ScriptedDrive> addWriter(ScriptedPlatform& platform) {
    return platform.addDrive({.name = "Writer", .disc = DiscScript{}});
}

/// A burner and a drive with a blank disc. A burn sends no records by itself.
template <typename Burner>
class BothBurnTest : public BurnerTest<Burner> {
protected:
    /// Appends an item called "Track 1" and so on. A track takes `blocks` blocks.
    void append(std::uint64_t blocks) {
        const auto item = this->makeItem("Track " + std::to_string(this->count() + 1));
        if (const auto track = std::dynamic_pointer_cast<DRTrack>(item)) {
            track->setLength(DRMSF::msfWithFrames(300));
            track->setEstimateLength(blocks);
        }
        this->burner->_content.append(item);
    }

    /// Starts a burn and returns its burn object. The calls so far are removed from the delegate.
    std::shared_ptr<ScriptedBurn> start(std::uint64_t blocks = 1000) {
        append(blocks);
        this->burner->burnWithDevice(QuarnerDevice("Writer"), "Disc");
        this->delegate.forget();
        return this->platform.lastBurn();
    }

    /// Sends a record of a burn and delivers it.
    void say(const std::shared_ptr<ScriptedBurn>& burn, const BurnRecord& record) {
        burn->post(record);
        this->finishRuns();
    }

    /// Starts a burn, sends a record, and returns the delegate's calls.
    std::vector<std::string> heardOf(const BurnRecord& record, std::uint64_t blocks = 1000) {
        say(start(blocks), record);
        return this->delegate.calls();
    }

    std::shared_ptr<ScriptedDrive> drive = addWriter(this->platform);
};

using BurnTest = BothBurnTest<OpenAudioCDBurner>;

} // namespace quarner::testing
