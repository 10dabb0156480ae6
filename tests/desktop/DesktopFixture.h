// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <glib.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <quarner/desktop.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "quarner/platform/Platform.h"
#include "quarner/quarner.h"
#include "tests/support/RecordingDelegate.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/optical/OpticalBed.h"

namespace quarner::testing {

/// A host with the desktop platform, on a machine whose only drives are the test's. This thread is
/// the main thread and runs the default loop.
class DesktopTest : public ::testing::Test {
protected:
    DesktopTest() {
        installDesktopPlatform();
        burner->setDelegate(&delegate);
    }
    ~DesktopTest() override {
        uninstallDesktopPlatform();
        std::filesystem::current_path(_directory);
    }

    /// Runs the loop until a condition is true. Returns false after a minute.
    static bool runUntil(const std::function<bool()>& condition) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > end)
                return false;
            if (!g_main_context_iteration(nullptr, FALSE))
                g_usleep(500);
        }
        return true;
    }

    /// Runs the loop until the delegate has received a call `times` times.
    bool runUntilCalled(const std::string& call, std::size_t times = 1) {
        return runUntil([&] { return delegate.count(call) >= times; });
    }

    /// Runs the loop until nothing more is queued for it.
    static void runPending() {
        while (g_main_context_iteration(nullptr, FALSE)) {
        }
    }

    /// Copies one of the generated songs into the folder under a name of its own.
    std::string put(const std::string& song, const std::string& name) const {
        std::filesystem::copy_file(TEST_SONGS + song, folder.file(name));
        return folder.file(name);
    }

    /// Adds files and runs the loop until the run has ended.
    void compile(const std::vector<std::string>& paths) {
        delegate.forget();
        ASSERT_TRUE(burner->addFiles(paths));
        ASSERT_TRUE(runUntilCalled("addFilesProgressDidEnd"));
    }

    /// Copies a song into the folder, makes that the working directory, and adds the song by its
    /// bare name.
    void compileInWorkingDirectory(const std::string& song, const std::string& name) {
        put(song, name);
        std::filesystem::current_path(folder.path());
        compile({name});
    }

    std::uint64_t count() const { return burner->numberOfChildrenOfBurnItem(nullptr); }

    /// The paths of the items, in order.
    std::vector<std::string> paths() const {
        std::vector<std::string> paths;
        for (std::uint64_t i = 0; i < count(); ++i)
            paths.push_back(*valueFor(*burner->propertyOfBurnItem(burner->child(i, nullptr)),
                                      kQuarnItemFilePathKey)
                                 .asString());
        return paths;
    }

    // Before the machine, whose threads read the environment.
    const int languageResult = setenv("LC_ALL", "C", 1);
    OpticalBed machine; // before the platform, which lists its drives
    const TemporaryFolder folder;
    RecordingDelegate delegate;
    std::shared_ptr<Quarner> burner = Quarner::audioCDBurner();

private:
    const std::filesystem::path _directory = std::filesystem::current_path();
};

} // namespace quarner::testing
