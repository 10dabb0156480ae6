// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/front/ContentList.h"

#include <utility>

namespace quarner {

ContentList::Snapshot ContentList::snapshot() const {
    const std::lock_guard lock(_mutex);
    return _items;
}

void ContentList::append(BurnItemRef item) {
    change([&](BurnItemList& items) { items.push_back(std::move(item)); });
}

void ContentList::change(const std::function<void(BurnItemList&)>& change) {
    Snapshot previous; // released after the lock, with whatever items it alone still holds
    const std::lock_guard lock(_mutex);
    auto next = std::make_shared<BurnItemList>(*_items);
    change(*next);
    previous = std::exchange(_items, std::move(next));
}

} // namespace quarner
