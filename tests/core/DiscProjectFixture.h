// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <quarner/scripted.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "quarner/platform/DRErrors.h"
#include "quarner/project/DiscProject.h"
#include "tests/support/ProjectObserver.h"

namespace quarner::testing {

/// An observed project on a scripted platform with one drive that has a blank disc.
class DiscProjectTest : public ::testing::TestWithParam<DiscProject::Kind> {
protected:
    explicit DiscProjectTest(std::optional<DiscProject::Kind> kind = std::nullopt)
        : project(std::make_unique<DiscProject>(kind ? *kind : GetParam())) {
        project->addObserver(observer);
        settle();
    }

    void settle() { ASSERT_TRUE(platform.runUntilIdle()); }

    /// Puts songs at these paths.
    std::vector<std::string> songs(const std::vector<std::string>& names, double seconds = 10) {
        std::vector<std::string> paths;
        for (const std::string& name : names) {
            paths.push_back("/music/" + name);
            platform.putSong(paths.back(), {.seconds = seconds});
        }
        return paths;
    }
    void compile(const std::vector<std::string>& names, double seconds = 10) {
        project->add(songs(names, seconds));
        settle();
    }

    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const DiscItemRef& item : *project->items())
            names.push_back(item->displayName);
        return names;
    }
    /// The end of the only burn that has been reported; a neutral one if there is none.
    DiscBurnEnd burnEnd() {
        settle();
        EXPECT_THAT(observer->burnEnds, ::testing::SizeIs(1));
        EXPECT_FALSE(project->isBurning());
        return observer->burnEnds.empty() ? DiscBurnEnd() : observer->burnEnds.front();
    }
    std::vector<DRError> problemCodes() const {
        std::vector<DRError> codes;
        for (const DiscProblem& problem : project->problems(driveId()))
            codes.push_back(problem.code);
        return codes;
    }
    DiscDrive::Id driveId() const { return project->drives().front().id; }

    ScriptedPlatform platform;
    std::shared_ptr<ScriptedDrive> drive =
        platform.addDrive({.name = "Writer", .disc = DiscScript{}});
    std::shared_ptr<ProjectObserver> observer = std::make_shared<ProjectObserver>();
    std::unique_ptr<DiscProject> project;
};

class AudioProjectTest : public DiscProjectTest {
protected:
    AudioProjectTest() : DiscProjectTest(DiscProject::Kind::Audio) {}
};

class DataProjectTest : public DiscProjectTest {
protected:
    DataProjectTest() : DiscProjectTest(DiscProject::Kind::Data) {}
};

inline std::string kindName(const ::testing::TestParamInfo<DiscProject::Kind>& kind) {
    return kind.param == DiscProject::Kind::Audio ? "Audio" : "Data";
}

} // namespace quarner::testing
