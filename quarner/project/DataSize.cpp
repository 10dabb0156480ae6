// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/project/DataSize.h"

#include <utility>

#include "quarner/data/RootFolder.h"
#include "quarner/platform/Platform.h"

namespace quarner {
namespace {

/// The blocks of a disc with these files; 0 if none can be made.
std::uint64_t blocksOf(const ContentList::Snapshot& items) {
    if (items.empty())
        return 0;
    const auto track = currentPlatform()->recording->trackForRootFolder(rootFolderOf(items, ""));
    return track ? track->estimateLength() : 0;
}

} // namespace

void DataSize::setItems(const ContentList::Snapshot& items) {
    _items = items;
    ++_generation;
    _blocks.reset();
    if (!_isBusy)
        determine();
}

void DataSize::determine() {
    _isBusy = true;
    const auto dispatch = currentPlatform()->dispatch;
    dispatch->asyncGlobal(
        [weak = weak_from_this(), dispatch, items = *_items, generation = _generation] {
            dispatch->asyncMain([weak, generation, blocks = blocksOf(items)] {
                if (const auto size = weak.lock())
                    size->take(generation, blocks);
            });
        });
}

void DataSize::take(std::uint64_t generation, std::uint64_t blocks) {
    _isBusy = false;
    if (generation != _generation) {
        determine();
        return;
    }
    _blocks = blocks;
    _didChange();
}

} // namespace quarner
