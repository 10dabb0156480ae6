// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "quarner/platform/Export.h"
#include "quarner/platform/Value.h"

namespace quarner {

struct MediaTags;

/// One entry of a compilation: an object that carries a property dictionary. Items are compared
/// by identity. An item is filled before it enters a compilation and never changes afterwards,
/// so a host may read it on any thread.
class QUARNER_EXPORT BurnItem {
public:
    BurnItem() = default;
    virtual ~BurnItem();
    BurnItem(const BurnItem&) = delete;
    BurnItem& operator=(const BurnItem&) = delete;

    /// Returns the name of the object's own class, such as `DRTrack::drClassName`. The text is
    /// static.
    virtual std::string_view className() const = 0;
    /// Returns whether `name` is the object's own class or one that it is derived from.
    virtual bool isKindOfClass(std::string_view name) const = 0;

    /// The property dictionary; never null.
    std::shared_ptr<const Dictionary> properties() const { return _properties; }
    /// Replaces the whole dictionary. Only while the item is being filled: not safe while another
    /// thread reads it.
    void setProperties(Dictionary properties) {
        _properties = std::make_shared<const Dictionary>(std::move(properties));
    }

    /// The tags of the item's file, for display; null if they were not read (`Quarner::readTags`).
    std::shared_ptr<const MediaTags> tags() const { return _tags; }
    /// Sets the tags. Only while the item is being filled.
    void setTags(std::shared_ptr<const MediaTags> tags) { _tags = std::move(tags); }

private:
    std::shared_ptr<const MediaTags> _tags;
    std::shared_ptr<const Dictionary> _properties = std::make_shared<const Dictionary>();
};

/// A burn item as hosts and burners hold it.
using BurnItemRef = std::shared_ptr<const BurnItem>;
/// Burn items in the order of the list that they are from.
using BurnItemList = std::vector<BurnItemRef>;

} // namespace quarner
