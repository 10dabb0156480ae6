// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <unistd.h>

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/cli/BurnCommandFixture.h"

namespace quarner::cli {

/// Burns to a drive, with somebody at the keyboard.
class DriveBurnFixture : public BurnCommandFixture {
protected:
    DriveBurnFixture() {
        if (pipe(_ends.data()) == 0)
            host.keyboard = _ends[0];
    }
    ~DriveBurnFixture() override {
        close(_ends[0]);
        endTyping();
    }

    void type(const std::string& text) {
        EXPECT_EQ(write(_ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    void endTyping() {
        if (_ends[1] >= 0)
            close(std::exchange(_ends[1], -1));
    }

    int burn(std::vector<std::string> arguments = {}) {
        arguments.insert(arguments.begin(), {"audio", "--title", "Summer mix", "/m/a.mp3"});
        return host.run(arguments);
    }

    /// A disc in the only drive.
    void insert(const DiscScript& disc) {
        writer->ejectMedia();
        writer->insert(disc);
        host.platform.runUntilIdle();
    }

    /// Keeps everybody from opening the only drive, which then seems to have no disc.
    void lock(const std::string& problem) {
        writer->change([&](DriveScript& script) {
            script.disc.reset();
            script.accessProblem = problem;
        });
    }

    std::size_t burns() { return host.platform.burns().size(); }

    std::size_t questions() const {
        const std::vector<std::string> lines = linesOf(host.err());
        return static_cast<std::size_t>(
            std::count_if(lines.begin(), lines.end(), [](const std::string& line) {
                return line.starts_with("Burn this disc?");
            }));
    }

    /// Does something once when the question was shown, and types one answer to it and another one
    /// when it is shown again.
    void whenAsked(std::function<void()> action, const std::string& answer,
                   const std::string& secondAnswer = "n\n") {
        host.atEachTurn = [=, this, asked = std::size_t{0}]() mutable {
            if (questions() == asked)
                return;
            if (++asked == 1) {
                action();
                while (host.platform.runOnce()) { // so that the drive has reported it
                }
            }
            type(asked == 1 ? answer : secondAnswer);
        };
    }

    /// Changes the disc, once, in the moment in which the drive is asked for it after the answer.
    void changeAfterAnswer(std::function<void(DriveScript&)> change) {
        type("y\n");
        host.platform.onCall(ServiceCall::DriveStatus,
                             [=, this, isDone = std::make_shared<bool>(false)](const auto&) {
                                 if (questions() == 1 && !std::exchange(*isDone, true)) {
                                     writer->change(change);
                                     type("n\n");
                                 }
                             });
    }

    /// Presses Ctrl-C, once, when a condition holds.
    void interruptWhen(std::function<bool()> condition) {
        host.atEachTurn = [this, condition = std::move(condition), isDone = false]() mutable {
            if (condition() && !std::exchange(isDone, true))
                host.interrupt();
        };
    }

private:
    std::array<int, 2> _ends = {-1, -1};
};

} // namespace quarner::cli
