// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/audio/AudioCDBurner.h"
#include "quarner/platform/DRTrack.h"

namespace quarner {

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
    _content.removeAll({items.begin(), items.end()});
    tell(&QuarnDelegate::burnItemsDidDelete, items);
}

void AudioCDBurner::moveBurnItem(const std::set<std::uint64_t>& indexes, std::int64_t to) {
    if (_content.snapshot().empty())
        return;
    if (_content.move(indexes, static_cast<std::uint64_t>(to)))
        tell(&QuarnDelegate::burnItemDidSorted);
}

void AudioCDBurner::moveItems(const BurnItemList& items, const BurnItemRef& behind) {
    if (_content.moveBehind({items.begin(), items.end()}, behind))
        tell(&QuarnDelegate::burnItemDidSorted);
}

} // namespace quarner
