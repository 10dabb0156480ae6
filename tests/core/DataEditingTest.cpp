// SPDX-License-Identifier: LGPL-2.1-or-later
#include <limits>

#include "tests/support/BurnerFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A file node of a class derived from the usual one.
class BundleFile : public DRFile {
public:
    using DRFile::DRFile;
    std::string_view className() const override { return "BundleFile"; }
    bool isKindOfClass(std::string_view name) const override {
        return name == className() || DRFile::isKindOfClass(name);
    }
};

class DataEditing : public DataBurnerTest {
protected:
    BurnItemRef append(std::shared_ptr<BurnItem> item, std::int64_t size) {
        item->setProperties({{kQuarnItemRealFileSizeKey, size}});
        burner->_content.append(item);
        return item;
    }
    BurnItemRef appendFile(std::int64_t size) {
        return append(std::make_shared<DRFile>("/song.mp3"), size);
    }
    bool overflows() { return burner->isContentOverflowForDevice(QuarnerDevice("Writer")); }

    std::shared_ptr<ScriptedDrive> drive =
        platform.addDrive({.name = "Writer", .disc = DiscScript{}});
};

TEST_F(DataEditing, AnEmptyCompilationTakesNothingAndFitsAnyDrive) {
    EXPECT_EQ(burner->usedCapacity(), 0U);
    EXPECT_TRUE(burner->isContentBlank());
    EXPECT_FALSE(overflows());
    drive->change([](DriveScript& script) { script.disc->blocksFree = 0; });
    EXPECT_FALSE(overflows());
}

TEST_F(DataEditing, TheCapacityIsThePlainSumOfTheSizes) {
    for (const std::int64_t size : {1, 2, 2049})
        appendFile(size);
    EXPECT_EQ(burner->usedCapacity(), 2052U);
    EXPECT_FALSE(burner->isContentBlank());
}

TEST_F(DataEditing, ASizeIsReadAsASignedWholeNumber) {
    const auto append = [this](const Value& size) {
        const auto file = std::make_shared<DRFile>("/song.mp3");
        file->setProperties({{kQuarnItemRealFileSizeKey, size}});
        burner->_content.append(file);
    };
    append(10.75);
    append(-1.5);
    EXPECT_EQ(burner->usedCapacity(), 9U);
    append("many");
    EXPECT_EQ(burner->usedCapacity(), 9U);
    append(1e19);
    EXPECT_EQ(burner->usedCapacity(), 9U + std::uint64_t(std::numeric_limits<std::int64_t>::max()));
}

TEST_F(DataEditing, OnlyAByteBeyondTheFreeSizeOverflows) {
    drive->change([](DriveScript& script) { script.disc->blocksFree = 2; });
    const BurnItemRef exact = appendFile(4096);
    EXPECT_FALSE(overflows());
    appendFile(1);
    EXPECT_TRUE(overflows());
    burner->removeItem(exact);
    EXPECT_FALSE(overflows());
}

TEST_F(DataEditing, FreeTimePlaysNoPart) {
    drive->change([](DriveScript& script) { script.disc->spaceFree = DRMSF::msf(); });
    appendFile(4096);
    EXPECT_FALSE(overflows());
}

TEST_F(DataEditing, WithoutADiscNothingOverflows) {
    drive->ejectMedia();
    appendFile(std::int64_t(1) << 40);
    EXPECT_FALSE(overflows());
}

TEST_F(DataEditing, ADiscOfWhichNothingIsKnownOverflows) {
    drive->change([](DriveScript& script) { script.disc->hasMediaInfo = false; });
    appendFile(1);
    EXPECT_TRUE(overflows());
}

TEST_F(DataEditing, RemovingAnItemReportsItAndFreesItsSize) {
    const BurnItemRef first = appendFile(100);
    appendFile(10);
    burner->removeItem(first);
    EXPECT_THAT(delegate.calls(), ElementsAre("burnItemDidDelete"));
    EXPECT_EQ(delegate.deleted().at(0), first);
    EXPECT_EQ(count(), 1U);
    EXPECT_EQ(burner->usedCapacity(), 10U);
    burner->removeItem(first);
    EXPECT_THAT(delegate.calls(), ElementsAre("burnItemDidDelete")) << "only once";
}

TEST_F(DataEditing, OnlyFileNodesAndWhatIsDerivedFromThemAreRemovedOneByOne) {
    const BurnItemRef track = append(std::make_shared<DRTrack>(), 1);
    const BurnItemRef folder = append(std::make_shared<DRFolder>("folder"), 1);
    const BurnItemRef bundle = append(std::make_shared<BundleFile>("/song.mp3"), 1);
    for (const BurnItemRef& item : {track, folder, bundle, BurnItemRef()})
        burner->removeItem(item);
    EXPECT_THAT(delegate.deleted(), ElementsAre(bundle));
    EXPECT_EQ(count(), 2U);
}

TEST_F(DataEditing, ANodeOfADerivedClassHasNoPropertiesAndCountsNothing) {
    const BurnItemRef bundle = append(std::make_shared<BundleFile>("/song.mp3"), 100);
    const BurnItemRef track = append(std::make_shared<DRTrack>(), 100);
    EXPECT_EQ(burner->propertyOfBurnItem(bundle), nullptr);
    EXPECT_EQ(burner->propertyOfBurnItem(track), nullptr);
    EXPECT_EQ(burner->propertyOfBurnItem(nullptr), nullptr);
    EXPECT_EQ(burner->usedCapacity(), 0U);
}

TEST_F(DataEditing, AMissingSizeCountsNothing) {
    const auto node = std::make_shared<DRFile>("/song.mp3");
    burner->_content.append(node);
    appendFile(7);
    EXPECT_EQ(burner->usedCapacity(), 7U);
}

TEST_F(DataEditing, RemovingAListReportsItInAnyCase) {
    const BurnItemRef track = append(std::make_shared<DRTrack>(), 1);
    const BurnItemRef file = appendFile(1);
    burner->removeItems({});
    burner->removeItems({track, file, appendFile(1)});
    EXPECT_THAT(delegate.calls(), ElementsAre("burnItemsDidDelete(0)", "burnItemsDidDelete(3)"));
    EXPECT_EQ(count(), 0U);
}

TEST_F(DataEditing, TheTypesAreFixedAndDoNotAskTheMediaService) {
    const std::vector<std::string> types = {"mp3", "MP3", "m4a", "M4A"};
    EXPECT_EQ(burner->supportedFileTypes(), types);
    EXPECT_EQ(burner->supportedFileTypes(), types);
    EXPECT_EQ(platform.calls(ServiceCall::MovieFileTypes), 0U);
}

} // namespace
} // namespace quarner::testing
