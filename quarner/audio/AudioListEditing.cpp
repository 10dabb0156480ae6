// SPDX-License-Identifier: LGPL-2.1-or-later
#include <algorithm>
#include <unordered_set>

#include "quarner/audio/AudioCDBurner.h"
#include "quarner/platform/DRTrack.h"

namespace quarner {
namespace {

/// Removes the items at these indexes, which are all in the list, and returns them in ascending
/// order.
BurnItemList takeItems(BurnItemList& items, const std::set<std::uint64_t>& indexes) {
    BurnItemList taken;
    BurnItemList kept;
    for (std::size_t i = 0; i < items.size(); ++i)
        (indexes.contains(i) ? taken : kept).push_back(items[i]);
    items = std::move(kept);
    return taken;
}

void moveItems(BurnItemList& items, const std::set<std::uint64_t>& indexes,
               std::uint64_t destination) {
    const bool isDroppedOntoItself = indexes.contains(destination);
    if (isDroppedOntoItself)
        return;
    // Rows removed before the destination move the row at the destination forward.
    const auto takenBefore = std::distance(indexes.begin(), indexes.lower_bound(destination));
    const bool isAtEnd = destination >= items.size();
    const BurnItemList moved = takeItems(items, indexes);
    const auto place = isAtEnd
                           ? items.end()
                           : items.begin() + static_cast<std::ptrdiff_t>(destination) - takenBefore;
    items.insert(place, moved.begin(), moved.end());
}

} // namespace

std::uint64_t AudioCDBurner::numberOfChildrenOfBurnItem(const BurnItemRef& item) const {
    return item ? 0 : _content.snapshot().size();
}

BurnItemRef AudioCDBurner::child(std::uint64_t index, const BurnItemRef& ofBurnItem) const {
    const ContentList::Snapshot items = _content.snapshot();
    return !ofBurnItem && index < items.size() ? items[std::size_t(index)] : nullptr;
}

std::shared_ptr<const Dictionary> AudioCDBurner::propertyOfBurnItem(const BurnItemRef& item) const {
    return item ? item->properties() : nullptr;
}

void AudioCDBurner::removeItem(const BurnItemRef& item) {
    removeItemOfClass(item, DRTrack::drClassName);
}

void AudioCDBurner::removeItemOfClass(const BurnItemRef& item, std::string_view className) {
    if (!item || !_content.contains(item) || !item->isKindOfClass(className))
        return;
    const bool wasThere = _content.remove(item);
    if (wasThere) // no other thread has removed it since
        tell(&QuarnDelegate::burnItemDidDelete, item);
}

void AudioCDBurner::removeItems(const BurnItemList& items) {
    const std::unordered_set<BurnItemRef> removed(items.begin(), items.end());
    _content.change([&](BurnItemList& content) {
        std::erase_if(content, [&](const BurnItemRef& item) { return removed.contains(item); });
    });
    tell(&QuarnDelegate::burnItemsDidDelete, items);
}

void AudioCDBurner::moveBurnItem(const std::set<std::uint64_t>& indexes, std::int64_t to) {
    bool isDone = false;
    _content.change([&](BurnItemList& items) {
        const bool isWithinList = indexes.empty() || *indexes.rbegin() < items.size();
        isDone = !items.empty() && isWithinList;
        if (isDone)
            moveItems(items, indexes, static_cast<std::uint64_t>(to));
    });
    if (isDone)
        tell(&QuarnDelegate::burnItemDidSorted);
}

} // namespace quarner
