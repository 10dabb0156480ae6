// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/front/ContentList.h"

#include <utility>

namespace quarner {
namespace {

std::shared_ptr<BurnItemList> roomierCopy(const BurnItemList& items) {
    constexpr std::size_t leastRoom = 16;
    auto copy = std::make_shared<BurnItemList>();
    copy->reserve(2 * items.size() + leastRoom);
    copy->assign(items.begin(), items.end());
    return copy;
}

} // namespace

ContentList::Snapshot ContentList::snapshot() const {
    const std::lock_guard lock(_mutex);
    return Snapshot(_items);
}

void ContentList::append(BurnItemRef item) {
    std::shared_ptr<BurnItemList> previous;
    const std::lock_guard lock(_mutex);
    const bool isFull = _items->size() == _items->capacity();
    if (isFull)
        previous = std::exchange(_items, roomierCopy(*_items));
    _items->push_back(std::move(item));
}

void ContentList::change(const std::function<void(BurnItemList&)>& change) {
    // Released after the lock, with whatever items it alone still holds.
    std::shared_ptr<BurnItemList> previous;
    const std::lock_guard lock(_mutex);
    auto next = std::make_shared<BurnItemList>(*_items);
    change(*next);
    previous = std::exchange(_items, std::move(next));
}

} // namespace quarner
