// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <limits>

#include "quarner/quarner.h"

namespace quarner {
namespace {

TEST(Quarner, ABurnerThatIsNeitherAudioNorDataGivesNeutralAnswers) {
    const auto burner = std::make_shared<Quarner>();
    EXPECT_FALSE(burner->addFiles({"a.mp3"}));
    EXPECT_FALSE(burner->addFile("a.mp3"));
    EXPECT_EQ(burner->numberOfChildrenOfBurnItem(nullptr), 0U);
    EXPECT_EQ(burner->child(0, nullptr), nullptr);
    EXPECT_EQ(burner->propertyOfBurnItem(nullptr), nullptr);
    EXPECT_EQ(burner->usedCapacity(), std::numeric_limits<std::uint64_t>::max());
    EXPECT_TRUE(burner->isContentOverflowForDevice(QuarnerDevice("none")));
    EXPECT_TRUE(burner->isContentBlank());
    EXPECT_TRUE(burner->supportedFileTypes().empty());
    burner->stopBurn();
}

TEST(Quarner, TheFactoryFindsTheAudioBurnerByName) {
    ASSERT_NE(Quarner::audioCDBurner(), nullptr);
    EXPECT_EQ(Quarner::audioCDBurner()->supportedFileTypes(),
              (std::vector<std::string>{"mp3", "MP3", "m4a", "M4A"}));
}

} // namespace
} // namespace quarner
