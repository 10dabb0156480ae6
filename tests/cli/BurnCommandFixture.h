// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "quarner/platform/DRErrors.h"
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

    /// Those that are calls of the burner's delegate, or of the program's own.
    std::vector<nlohmann::json> delegateObjects() const {
        const std::set<std::string> ofTheProject = {"fileRefused", "burnProgress", "burnEnded",
                                                    "waitsFor"};
        std::vector<nlohmann::json> all = objects();
        std::erase_if(
            all, [&](const auto& object) { return ofTheProject.contains(object.at("event")); });
        return all;
    }

    /// The names of the latter.
    std::vector<std::string> events() const {
        std::vector<std::string> names;
        for (const nlohmann::json& object : delegateObjects())
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

/// Burns of every kind of disc.
class EveryKindOfBurn : public BurnCommandFixture, public testing::WithParamInterface<DiscKind> {
protected:
    /// Runs the command with a title and these arguments.
    int burn(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {commandFor(GetParam()), "--title", "T"});
        return host.run(arguments);
    }
    /// Lets a burn fail while it writes, with a text of the service's own.
    void failWhileBurning(DRError error, const std::string& info) {
        host.platform.playBurns({.progressReports = 2000});
        onceWhileBurning([=, this] {
            host.platform.lastBurn()->post(
                Dictionary{{DRStatusStateKey, DRStatusStateFailed},
                           {DRErrorStatusKey,
                            Dictionary{{DRErrorStatusErrorKey, static_cast<std::uint32_t>(error)},
                                       {DRErrorStatusErrorInfoKey, info}}}});
        });
    }
    /// What a second Ctrl-C does.
    void endAtOnce() { host.loop.endAtOnce(); }
    std::string image() const {
        return (std::filesystem::temp_directory_path() /
                (std::string("mix") + extensionFor(GetParam())))
            .string();
    }
};

inline std::string kindOfBurn(const testing::TestParamInfo<DiscKind>& suite) {
    return commandFor(suite.param);
}

} // namespace quarner::cli
