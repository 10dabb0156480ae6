// SPDX-License-Identifier: LGPL-2.1-or-later
#include <algorithm>
#include <ctime>

#include "tests/support/BurnerFixture.h"

namespace quarner::testing {
namespace {

template <typename Burner>
class BothScale : public BurnerTest<Burner> {
protected:
    /// How long the processor takes to add so many files to a new burner, to ask for its capacity,
    /// and to edit its list.
    double secondsFor(int files) {
        std::vector<std::string> paths;
        for (int i = 0; i < files; ++i)
            paths.push_back("/song " + std::to_string(i) + ".mp3");
        this->putSongs(paths);
        this->burner = std::make_shared<Burner>();
        const std::clock_t start = std::clock();
        EXPECT_TRUE(this->burner->addFiles(paths));
        EXPECT_TRUE(this->platform.runUntilIdle());
        this->burner->usedCapacity();
        this->burner->moveBurnItem({0, 2, 4}, files / 2);
        this->burner->removeItem(this->burner->child(0, nullptr));
        this->burner->removeItems({this->burner->child(7, nullptr)});
        EXPECT_EQ(this->count(), static_cast<std::uint64_t>(files) - 2);
        return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    }

    /// The best of three: others use the machine too.
    double leastSecondsFor(int files) {
        return std::min({secondsFor(files), secondsFor(files), secondsFor(files)});
    }
};

TYPED_TEST_SUITE(BothScale, Burners, BurnerNames);

TYPED_TEST(BothScale, FourTimesTheFilesTakeAboutFourTimesAsLong) {
    const double few = this->leastSecondsFor(500);
    const double ratio = this->leastSecondsFor(2000) / few;
    this->RecordProperty("ratio", std::to_string(ratio));
    EXPECT_LT(ratio, 10.0) << "16 would be the square";
}

} // namespace
} // namespace quarner::testing
