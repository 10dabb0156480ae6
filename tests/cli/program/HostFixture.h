// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/cli/program/HostProgram.h"
#include "tests/support/AudioFixtures.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/optical/OpticalBed.h"

namespace quarner::testing {

/// For a test of the whole program: a folder of its own, with songs in it, and a machine whose only
/// drives are those of the test.
class HostFixture : public ::testing::Test {
protected:
    HostFixture() { chmod(machineRoot().c_str(), 0755); } // for a program run by another user

    /// The folder in which the machine has its /dev and /sys.
    static std::filesystem::path machineRoot() { return std::getenv("UMOCKDEV_DIR"); }

    /// A file that plays for a number of seconds, under a name in the folder.
    std::string song(const std::string& name, unsigned seconds = 10) const {
        AudioRecipe recipe = name.ends_with("m4a") ? aacRecipe() : mp3Recipe();
        recipe.samples = 44100ULL * seconds;
        const std::string path = folder.file(name);
        std::filesystem::copy_file(audioFixture(recipe), path);
        return path;
    }

    /// An M4A file of an exact size that takes hardly any space: the rest is a free atom.
    void paddedSong(const std::string& name, std::uint32_t bytes) const {
        const std::string path = song(name);
        const auto rest = bytes - static_cast<std::uint32_t>(std::filesystem::file_size(path));
        std::ofstream out(path, std::ios::binary | std::ios::app);
        for (const unsigned shift : {24U, 16U, 8U, 0U})
            out.put(static_cast<char>(rest >> shift));
        out << "free";
        out.close();
        std::filesystem::resize_file(path, bytes);
    }

    /// The program's end, run in the folder.
    HostEnd run(const std::vector<std::string>& arguments, HostSettings settings = {}) const {
        settings.folder = folder.path().string();
        return runHost(arguments, settings);
    }

    HostSettings here() const {
        HostSettings settings;
        settings.folder = folder.path().string();
        return settings;
    }

    /// The names in a folder below this one, hidden ones included, sorted.
    std::vector<std::string> names(const std::string& below) const {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path() / below))
            found.push_back(entry.path().filename().string());
        std::sort(found.begin(), found.end());
        return found;
    }

    /// A folder below this one.
    std::string makeFolder(const std::string& name) const {
        std::filesystem::create_directory(folder.path() / name);
        return folder.file(name);
    }

    static std::vector<std::string> lines(const std::string& text) {
        std::vector<std::string> found;
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line);)
            found.push_back(line);
        return found;
    }

    OpticalBed machine;
    const TemporaryFolder folder;
};

} // namespace quarner::testing
