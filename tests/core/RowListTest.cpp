// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/project/RowList.h"

#include <gtest/gtest.h>

#include <numeric>

#include "quarner/platform/DRFile.h"
#include "tests/support/ProcessorTime.h"

namespace quarner::testing {
namespace {

/// Every other row of a list with twice as many.
std::vector<std::uint64_t> everyOther(std::size_t count) {
    std::vector<std::uint64_t> rows(count);
    for (std::size_t i = 0; i < count; ++i)
        rows[i] = 2 * i;
    return rows;
}

/// The processor time of inserting, moving and removing `count` rows, none beside another.
double secondsOfEditing(std::size_t count) {
    const BurnItemList items(count, std::make_shared<DRFile>("/a.mp3"));
    std::vector<std::uint64_t> all(count);
    std::iota(all.begin(), all.end(), 0);
    const std::vector<std::uint64_t> rows = everyOther(count);
    return usualSecondsOf([&] {
        RowList list;
        list.apply({{ListChange::Kind::Inserted, all, items}});
        list.apply({{ListChange::Kind::Inserted, rows, items},
                    {ListChange::Kind::Moved, rows, items, count / 2},
                    {ListChange::Kind::Removed, rows, items}});
        EXPECT_EQ(list.size(), count);
    });
}

TEST(RowList, EditingManySeparateRowsTakesTimeInProportionToTheList) {
    constexpr std::size_t factor = 16;
    const double ratio = secondsOfEditing(250 * factor) / secondsOfEditing(250);
    RecordProperty("ratio", std::to_string(ratio));
    EXPECT_LT(ratio, 64) << "16 would be the proportion, 256 the square";
}

} // namespace
} // namespace quarner::testing
