// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/util/Paths.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/TemporaryFolder.h"

namespace quarner::testing {
namespace {

TEST(FileUri, KeepsEveryByteOfAPath) {
    EXPECT_EQ(Paths::fileUri("/m/a.mp3"), "file:///m/a.mp3");
    EXPECT_EQ(Paths::fileUri("/m/bad\xff\xfe.mp3"), "file:///m/bad%FF%FE.mp3");
    EXPECT_EQ(Paths::fileUri("/m/Größe 100%?#.mp3"),
              "file:///m/Gr%C3%B6%C3%9Fe%20100%25%3F%23.mp3");
    EXPECT_EQ(Paths::fileUri("/m/line\nbreak\\.mp3"), "file:///m/line%0Abreak%5C.mp3");
}

TEST(FileUri, IsAbsoluteForARelativePath) {
    EXPECT_EQ(Paths::fileUri("a.mp3"),
              "file://" + (std::filesystem::current_path() / "a.mp3").string());
}

TEST(FileUri, NamesTheSamePlaceAlsoBehindASymbolicLink) {
    const TemporaryFolder folder;
    const std::filesystem::path real = std::filesystem::canonical(folder.path());
    std::filesystem::create_directories(real / "far/away");
    std::filesystem::create_directory_symlink(real / "far/away", real / "link");
    EXPECT_EQ(Paths::fileUri((real / "link/../a.mp3").string()),
              "file://" + (real / "far/a.mp3").string());
}

} // namespace
} // namespace quarner::testing
