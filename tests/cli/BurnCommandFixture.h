// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "tests/cli/TestHost.h"

namespace quarner::cli {

/// A writer with a blank disc, three songs, and burns that go well.
class BurnCommandFixture : public testing::Test {
protected:
    BurnCommandFixture() {
        for (const char* const song : {"/m/a.mp3", "/m/b.m4a", "/m/c.mp3"})
            host.platform.putSong(song, {.seconds = 200.0});
        host.platform.playBurns();
    }

    /// What was told to a program.
    std::vector<nlohmann::json> objects() const {
        std::vector<nlohmann::json> all;
        for (const std::string& line : host.outLines())
            all.push_back(nlohmann::json::parse(line));
        return all;
    }

    std::vector<std::string> events() const {
        std::vector<std::string> names;
        for (const nlohmann::json& object : objects())
            names.push_back(object.at("event"));
        return names;
    }

    /// Does something once while a burn is played.
    void onceWhileBurning(std::function<void()> action) {
        host.atEachTurn = [this, action = std::move(action), isDone = false]() mutable {
            const auto burn = host.platform.lastBurn();
            if (burn && burn->isPlaying() && !std::exchange(isDone, true))
                action();
        };
    }

    TestHost host;
    const std::shared_ptr<ScriptedDrive> writer =
        host.platform.addDrive({.name = "Writer", .disc = DiscScript{}});
};

} // namespace quarner::cli
