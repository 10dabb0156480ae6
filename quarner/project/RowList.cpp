// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/project/RowList.h"

#include <algorithm>

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

/// Moves a run to before the row `to`, which is outside of it.
void moveRun(DiscItems& rows, Run run, std::size_t to) {
    if (to < run.first)
        std::rotate(at(rows, to), at(rows, run.first), at(rows, run.end()));
    else
        std::rotate(at(rows, run.first), at(rows, run.end()), at(rows, to));
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

void RowList::apply(const ListChange& change, ObserverList& observers) {
    _snapshot.reset();
    switch (change.kind) {
    case ListChange::Kind::Inserted:
        return insert(change, observers);
    case ListChange::Kind::Removed:
        return remove(change, observers);
    case ListChange::Kind::Moved:
        return move(change, observers);
    }
}

void RowList::insert(const ListChange& change, ObserverList& observers) {
    std::size_t next = 0;
    for (const Run run : runsOf(change.rows)) {
        DiscItems items;
        for (std::size_t i = 0; i < run.count; ++i)
            items.push_back(makeRow(change.items[next++]));
        _rows.insert(at(_rows, run.first), items.begin(), items.end());
        observers.send([first = run.first, items](DiscProjectObserver& observer) {
            observer.rowsInserted(first, items);
        });
    }
}

/// From the end on, so that the rows before keep their numbers.
void RowList::remove(const ListChange& change, ObserverList& observers) {
    std::vector<Run> runs = runsOf(change.rows);
    std::reverse(runs.begin(), runs.end());
    for (const Run run : runs) {
        _rows.erase(at(_rows, run.first), at(_rows, run.end()));
        observers.send(
            [run](DiscProjectObserver& observer) { observer.rowsRemoved(run.first, run.count); });
    }
}

/// Gathers the runs one after another at their destination. The runs before it are moved in
/// ascending order to its end, which each of them moves forward; the later ones follow.
void RowList::move(const ListChange& change, ObserverList& observers) {
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
        if (!isInPlace) {
            moveRun(_rows, run, to);
            observers.send([run, to](DiscProjectObserver& observer) {
                observer.rowsMoved(run.first, run.count, to);
            });
        }
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
