// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/cli/TestHost.h"

namespace quarner::cli {

/// Runs `watch` and lets things happen one after another, each when the one before was dealt with.
class WatchFixture : public testing::Test {
protected:
    int watch(std::vector<std::string> arguments, std::vector<std::function<void()>> happenings) {
        arguments.insert(arguments.begin(), "watch");
        happenings.push_back([this] { host.interrupt(); });
        auto next = happenings.begin();
        host.atEachTurn = [&] {
            if (next != happenings.end())
                (*next++)();
        };
        return host.run(arguments);
    }

    TestHost host;
};

} // namespace quarner::cli
