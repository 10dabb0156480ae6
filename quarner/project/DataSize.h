// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "quarner/front/ContentList.h"

namespace quarner {

/// The size of the file system of a data CD. Determining it takes long for a long list, so it is
/// done in the background, once at a time, for the newest list. Main thread only.
class DataSize : public std::enable_shared_from_this<DataSize> {
public:
    /// `didChange` is called on the main loop once the size of the newest list is known.
    explicit DataSize(std::function<void()> didChange) : _didChange(std::move(didChange)) {}

    /// Takes a new list.
    void setItems(const ContentList::Snapshot& items);

    /// The blocks of 2048 bytes of the newest list; `std::nullopt` while they are being determined.
    std::optional<std::uint64_t> blocks() const { return _blocks; }

private:
    void determine();
    void take(std::uint64_t generation, std::uint64_t blocks);

    const std::function<void()> _didChange;
    std::optional<ContentList::Snapshot> _items;
    std::uint64_t _generation = 0; // of `_items`
    std::optional<std::uint64_t> _blocks = 0;
    bool _isBusy = false;
};

} // namespace quarner
