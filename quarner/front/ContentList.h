// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <memory>
#include <mutex>

#include "quarner/platform/BurnItem.h"
#include "quarner/platform/Export.h"

namespace quarner {

/// The items of a compilation, published as an immutable snapshot: whoever reads sees a whole
/// list, and changes made at the same time on several threads follow one another without loss.
class QUARNER_EXPORT ContentList {
public:
    using Snapshot = std::shared_ptr<const BurnItemList>;

    /// The list as it is now; never null. It stays as it is while it is held.
    Snapshot snapshot() const;

    void append(BurnItemRef item);

    /// Replaces the list by a changed copy. The change runs while other changes wait, so it must
    /// not call back into this list.
    void change(const std::function<void(BurnItemList&)>& change);

private:
    mutable std::mutex _mutex;
    Snapshot _items = std::make_shared<const BurnItemList>();
};

} // namespace quarner
