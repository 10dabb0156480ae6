// SPDX-License-Identifier: LGPL-2.1-or-later
#include <functional>

#include "tests/support/BurnFixture.h"
#include "tests/support/ProcessorTime.h"

namespace quarner::testing {
namespace {

template <typename Burner>
class BothScale : public BurnerTest<Burner> {
protected:
    static constexpr int factor = 16;

    BothScale() {
        addWriter(this->platform);
        this->platform.playBurns();
    }

    static std::string nameOf(int number) { return "song " + std::to_string(number); }
    static std::vector<std::string> pathsOf(int files) {
        std::vector<std::string> paths;
        for (int i = 0; i < files; ++i)
            paths.push_back('/' + nameOf(i) + ".mp3");
        return paths;
    }

    /// Starts a new compilation of `files` items.
    void compileNew(int files) {
        this->burner = std::make_shared<Burner>();
        for (int i = 0; i < files; ++i) {
            const std::shared_ptr<BurnItem> item = this->makeItem(nameOf(i));
            item->setProperties({{kQuarnItemFilePathKey, '/' + nameOf(i) + ".mp3"}});
            this->burner->_content.append(item);
        }
    }

    /// Expects the time of `work` to grow in proportion from `files` to 16 times as many files.
    void expectLinear(int files, const std::function<void(int)>& work) {
        compileNew(files);
        const double ofFew = usualSecondsOf([&] { work(files); });
        compileNew(factor * files);
        const double ratio = usualSecondsOf([&] { work(factor * files); }) / ofFew;
        this->RecordProperty("ratio", std::to_string(ratio));
        EXPECT_LT(ratio, 64.0) << "16 would be the proportion, 256 the square";
    }
};

TYPED_TEST_SUITE(BothScale, Burners, BurnerNames);

TYPED_TEST(BothScale, AddingTakesTimeInProportionToTheFiles) {
    this->expectLinear(125, [this](int files) {
        const std::vector<std::string> paths = this->pathsOf(files);
        this->putSongs(paths);
        this->burner->clearAll();
        EXPECT_TRUE(this->burner->addFiles(paths));
        EXPECT_TRUE(this->platform.runUntilIdle());
        EXPECT_EQ(this->count(), static_cast<std::uint64_t>(files));
    });
}

TYPED_TEST(BothScale, FindingThemAllThereAlreadyToo) {
    this->expectLinear(
        250, [this](int files) { EXPECT_FALSE(this->burner->addFiles(this->pathsOf(files))); });
}

TYPED_TEST(BothScale, MovingAndRemovingManyToo) {
    this->expectLinear(250, [this](int files) {
        const ContentList::Snapshot before = this->burner->_content.snapshot();
        const BurnItemList all(before.begin(), before.end());
        std::set<std::uint64_t> everyOther;
        for (std::uint64_t i = 0; i < all.size(); i += 2)
            everyOther.insert(i);
        this->burner->moveBurnItem(everyOther, files / 2 + 1);
        this->burner->removeItem(all.back());
        this->burner->removeItems(all);
        EXPECT_EQ(this->count(), 0U);
        this->burner->_content.change([&](BurnItemList& items) { items = all; });
    });
}

TYPED_TEST(BothScale, MovingThemOneByOneToo) {
    this->expectLinear(1000, [this](int) {
        const ContentList::Snapshot before = this->burner->items();
        for (std::size_t i = 0; i < before.size(); i += 2)
            this->burner->moveItems({before[i]}, nullptr);
        EXPECT_EQ(this->burner->items()[0], before[before.size() - 2]);
    });
}

TYPED_TEST(BothScale, RemovingThemOneByOneToo) {
    this->expectLinear(1000, [this](int) {
        const ContentList::Snapshot before = this->burner->_content.snapshot();
        const BurnItemList all(before.begin(), before.end());
        for (std::size_t i = 0; i < all.size(); i += 2)
            this->burner->removeItem(all[i]);
        EXPECT_EQ(this->count(), all.size() / 2);
        this->burner->_content.change([&](BurnItemList& items) { items = all; });
    });
}

TYPED_TEST(BothScale, MeasuringAndBurningToo) {
    // Fewer files, because every track of an audio disc reports its steps.
    this->expectLinear(25, [this](int) {
        this->burner->usedCapacity();
        this->burner->burnWithDevice(QuarnerDevice("Writer"), "Disc");
        EXPECT_TRUE(this->platform.runUntilIdle());
    });
}

} // namespace
} // namespace quarner::testing
