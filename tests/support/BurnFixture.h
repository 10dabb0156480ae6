// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "tests/support/BurnerFixture.h"

namespace quarner::testing {

/// An audio burner and a drive with a blank disc. Burns stay silent until the test lets them speak.
class BurnTest : public AudioBurnerTest {
protected:
    /// Appends a track of so many blocks, named "Track 1" and so on.
    void append(std::uint64_t blocks) {
        auto track = trackOf(300, 150);
        track->setEstimateLength(blocks);
        const std::string name = "Track " + std::to_string(count() + 1);
        track->setProperties({{kQuarnItemDisplayNameKey, name}});
        burner->_content.append(track);
    }

    /// Starts a burn and gives its burn object; the delegate has forgotten the start.
    std::shared_ptr<ScriptedBurn> start(std::uint64_t blocks = 1000) {
        append(blocks);
        burner->burnWithDevice(QuarnerDevice("Writer"), "Disc");
        delegate.forget();
        return platform.lastBurn();
    }

    /// Lets a burn speak and delivers what it says.
    void say(const std::shared_ptr<ScriptedBurn>& burn, const BurnRecord& record) {
        burn->post(record);
        finishRuns();
    }

    /// Starts a burn and gives what the delegate hears of one record.
    std::vector<std::string> heardOf(const BurnRecord& record, std::uint64_t blocks = 1000) {
        say(start(blocks), record);
        return delegate.calls();
    }

    std::shared_ptr<ScriptedDrive> drive =
        platform.addDrive({.name = "Writer", .disc = DiscScript{}});
};

} // namespace quarner::testing
