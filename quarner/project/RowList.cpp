// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/project/RowList.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "quarner/front/BurnItemKeys.h"
#include "quarner/platform/MediaService.h"

namespace quarner {
namespace {

/// Rows that lie side by side.
struct Run {
    std::size_t first = 0;
    std::size_t count = 0;
    std::size_t end() const { return first + count; }
};

/// The rows, which ascend, as runs.
std::vector<Run> runsOf(const std::vector<std::uint64_t>& rows) {
    std::vector<Run> runs;
    for (const std::uint64_t row : rows) {
        if (!runs.empty() && runs.back().end() == row)
            ++runs.back().count;
        else
            runs.push_back({static_cast<std::size_t>(row), 1});
    }
    return runs;
}

DiscItems::iterator at(DiscItems& rows, std::size_t row) {
    return rows.begin() + static_cast<std::ptrdiff_t>(row);
}

/// Takes the rows with these numbers, which ascend, out of a list in one pass.
DiscItems take(DiscItems& rows, const std::vector<std::uint64_t>& numbers) {
    DiscItems taken;
    auto kept = static_cast<std::size_t>(numbers.front());
    for (std::size_t row = kept; row < rows.size(); ++row) {
        if (taken.size() < numbers.size() && numbers[taken.size()] == row)
            taken.push_back(std::move(rows[row]));
        else
            rows[kept++] = std::move(rows[row]);
    }
    rows.resize(kept);
    return taken;
}

std::string textUnder(const Dictionary& properties, const char* key) {
    const std::string* const text = valueFor(properties, key).asString();
    return text == nullptr ? std::string() : *text;
}

} // namespace

std::shared_ptr<const DiscItems> RowList::snapshot() const {
    if (!_snapshot)
        _snapshot = std::make_shared<const DiscItems>(_rows);
    return _snapshot;
}

BurnItemList RowList::itemsIn(const std::set<std::size_t>& rows) const {
    BurnItemList items;
    for (const std::size_t row : rows)
        if (row < _rows.size())
            items.push_back(_rows[row]->item);
    return items;
}

std::vector<ObserverList::Event> RowList::apply(const std::vector<ListChange>& changes) {
    _snapshot.reset();
    Events events;
    for (const ListChange& change : changes) {
        switch (change.kind) {
        case ListChange::Kind::Inserted:
            insert(change, events);
            break;
        case ListChange::Kind::Removed:
            remove(change, events);
            break;
        case ListChange::Kind::Moved:
            move(change, events);
            break;
        }
    }
    return events;
}

void RowList::insert(const ListChange& change, Events& events) {
    const auto tail = at(_rows, static_cast<std::size_t>(change.rows.front()));
    DiscItems later(std::make_move_iterator(tail), std::make_move_iterator(_rows.end()));
    _rows.erase(tail, _rows.end());
    auto nextLater = later.begin();
    auto nextItem = change.items.begin();
    for (const Run run : runsOf(change.rows)) {
        for (; _rows.size() < run.first; ++nextLater)
            _rows.push_back(std::move(*nextLater));
        for (; _rows.size() < run.end(); ++nextItem)
            _rows.push_back(makeRow(*nextItem));
        events.push_back(
            [first = run.first, items = DiscItems(at(_rows, run.first), _rows.end())](
                DiscProjectObserver& observer) { observer.rowsInserted(first, items); });
    }
    _rows.insert(_rows.end(), std::make_move_iterator(nextLater),
                 std::make_move_iterator(later.end()));
}

/// The events are from the end on, so that the rows before keep their numbers.
void RowList::remove(const ListChange& change, Events& events) {
    take(_rows, change.rows);
    std::vector<Run> runs = runsOf(change.rows);
    std::reverse(runs.begin(), runs.end());
    for (const Run run : runs)
        events.push_back(
            [run](DiscProjectObserver& observer) { observer.rowsRemoved(run.first, run.count); });
}

/// The events gather the runs one after another at their destination. The runs before it are moved
/// in ascending order to its end, which each of them moves forward; the later ones follow.
void RowList::move(const ListChange& change, Events& events) {
    const DiscItems moved = take(_rows, change.rows);
    _rows.insert(at(_rows, static_cast<std::size_t>(change.to)), moved.begin(), moved.end());
    const std::vector<Run> runs = runsOf(change.rows);
    // The destination before the move: behind as many other rows as are before it afterwards.
    auto to = static_cast<std::size_t>(change.to);
    for (const Run run : runs)
        if (run.first < to)
            to += run.count;
    std::size_t movedForward = 0; // rows of runs that were before the destination
    for (Run run : runs) {
        const bool isBefore = run.first < to;
        if (isBefore)
            run.first -= movedForward;
        const bool isInPlace = isBefore ? run.end() == to : run.first == to;
        if (!isInPlace)
            events.push_back([run, to](DiscProjectObserver& observer) {
                observer.rowsMoved(run.first, run.count, to);
            });
        if (isBefore)
            movedForward += run.count;
        else
            to += run.count;
    }
}

DiscItemRef RowList::makeRow(const BurnItemRef& item) {
    const auto properties = item->properties();
    auto row = std::make_shared<DiscItem>();
    row->id = ++_lastId;
    row->item = item;
    row->path = textUnder(*properties, kQuarnItemFilePathKey);
    row->displayName = textUnder(*properties, kQuarnItemDisplayNameKey);
    if (const Icon* const icon = valueFor(*properties, kQuarnItemIconKey).asIcon())
        row->iconNames = icon->names;
    row->seconds = valueFor(*properties, kQuarnItemRealDurationKey).asInt64();
    row->duration = textUnder(*properties, kQuarnItemDurationKey);
    row->bytes = valueFor(*properties, kQuarnItemRealFileSizeKey).asInt64();
    row->size = textUnder(*properties, kQuarnItemFileSizeKey);
    if (const auto tags = item->tags()) {
        row->title = tags->title;
        row->artist = tags->artist;
        row->album = tags->album;
        row->trackNumber = tags->track;
    }
    return row;
}

} // namespace quarner
