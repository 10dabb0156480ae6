// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/project/DiscProjectHistory.h"

#include <algorithm>
#include <deque>
#include <iterator>
#include <unordered_map>
#include <utility>

namespace quarner {
namespace {

bool isSameList(const DiscItems& a, const DiscItems& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const DiscItemRef& left, const DiscItemRef& right) {
                          return left == right || left->path == right->path;
                      });
}

/// For each wanted row the number of the present row that is it: the row itself if it is still in
/// the list, otherwise one with the same file. `std::nullopt` for a row to be added.
using Matches = std::vector<std::optional<std::size_t>>;

Matches match(const DiscItems& wanted, const DiscItems& present) {
    std::unordered_map<std::uint64_t, std::size_t> rows;
    for (std::size_t row = 0; row < present.size(); ++row)
        rows.emplace(present[row]->id, row);
    Matches matches(wanted.size());
    std::set<std::size_t> taken;
    for (std::size_t i = 0; i < wanted.size(); ++i)
        if (const auto found = rows.find(wanted[i]->id); found != rows.end())
            taken.insert(*(matches[i] = found->second));
    std::unordered_map<std::string, std::deque<std::size_t>> others;
    for (std::size_t row = 0; row < present.size(); ++row)
        if (!taken.contains(row))
            others[present[row]->path].push_back(row);
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        const auto found = matches[i] ? others.end() : others.find(wanted[i]->path);
        if (found == others.end() || found->second.empty())
            continue;
        matches[i] = found->second.front();
        found->second.pop_front();
    }
    return matches;
}

/// The longest ascending part of a permutation: what can stay in place while the rest is moved.
std::set<std::size_t> longestAscent(const std::vector<std::size_t>& order) {
    std::vector<std::size_t> ends;                           // the index of the end of each length
    std::vector<std::size_t> before(order.size(), SIZE_MAX); // the index before this one
    for (std::size_t i = 0; i < order.size(); ++i) {
        const auto place =
            std::lower_bound(ends.begin(), ends.end(), order[i],
                             [&](std::size_t end, std::size_t row) { return order[end] < row; });
        if (place != ends.begin())
            before[i] = *std::prev(place);
        if (place == ends.end())
            ends.push_back(i);
        else
            *place = i;
    }
    std::set<std::size_t> ascent;
    for (std::size_t i = ends.empty() ? SIZE_MAX : ends.back(); i != SIZE_MAX; i = before[i])
        ascent.insert(order[i]);
    return ascent;
}

/// Brings the rows of a project into an order, which is given by their present numbers.
void arrange(DiscProject& project, const std::vector<std::size_t>& order) {
    const std::set<std::size_t> staying = longestAscent(order);
    std::vector<std::size_t> now(order.size());
    for (std::size_t row = 0; row < now.size(); ++row)
        now[row] = row;
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (staying.contains(order[i]))
            continue;
        const auto from = std::find(now.begin(), now.end(), order[i]);
        const auto to =
            i == 0 ? now.begin() : std::next(std::find(now.begin(), now.end(), order[i - 1]));
        project.move({static_cast<std::size_t>(from - now.begin())},
                     static_cast<std::size_t>(to - now.begin()));
        if (from < to)
            std::rotate(from, std::next(from), to);
        else
            std::rotate(to, from, std::next(from));
    }
}

/// Adds the wanted rows that have no match. The others are in the list already, in their order.
void addMissing(DiscProject& project, const DiscItems& wanted, const Matches& matches) {
    std::size_t row = 0;
    std::vector<std::string> paths;
    const auto addRun = [&] {
        if (!paths.empty())
            project.add(std::exchange(paths, {}), row);
    };
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        if (!matches[i]) {
            paths.push_back(wanted[i]->path);
            continue;
        }
        addRun();
        ++row;
    }
    addRun();
}

} // namespace

DiscProjectHistory::DiscProjectHistory(DiscProject& project) : _project(project) {}

void DiscProjectHistory::beginEdit() {
    _undone.clear();
    if (_project.isAdding())
        return;
    _done.push_back(_project.items());
    if (_done.size() > mostEdits)
        _done.erase(_done.begin());
}

void DiscProjectHistory::add(const std::vector<std::string>& paths,
                             std::optional<std::size_t> row) {
    beginEdit();
    if (row)
        _project.add(paths, *row);
    else
        _project.add(paths);
}

void DiscProjectHistory::remove(const std::set<std::size_t>& rows) {
    beginEdit();
    _project.remove(rows);
}

void DiscProjectHistory::move(const std::set<std::size_t>& rows, std::size_t to) {
    beginEdit();
    _project.move(rows, to);
}

void DiscProjectHistory::clear() {
    beginEdit();
    _project.clear();
}

/// An edit may have changed nothing: files that were refused, rows that were dropped where they
/// were.
const DiscProjectHistory::List*
DiscProjectHistory::lastOtherThanNow(const std::vector<List>& lists) const {
    if (_project.isAdding())
        return nullptr;
    const List now = _project.items();
    const auto found = std::find_if(lists.rbegin(), lists.rend(),
                                    [&](const List& list) { return !isSameList(*list, *now); });
    return found == lists.rend() ? nullptr : &*found;
}

bool DiscProjectHistory::canUndo() const { return lastOtherThanNow(_done) != nullptr; }

bool DiscProjectHistory::canRedo() const { return lastOtherThanNow(_undone) != nullptr; }

void DiscProjectHistory::undo() { step(_done, _undone); }

void DiscProjectHistory::redo() { step(_undone, _done); }

void DiscProjectHistory::step(std::vector<List>& from, std::vector<List>& to) {
    const List* const found = lastOtherThanNow(from);
    if (found == nullptr)
        return;
    const List wanted = *found;
    from.resize(static_cast<std::size_t>(found - from.data()));
    to.push_back(_project.items());
    restore(*wanted);
}

void DiscProjectHistory::restore(const DiscItems& wanted) {
    const Matches matches = match(wanted, *_project.items());
    std::vector<std::size_t> order;
    for (const auto& row : matches)
        if (row)
            order.push_back(*row);
    const std::set<std::size_t> kept(order.begin(), order.end());
    removeAllBut(kept);
    const std::vector<std::size_t> ascending(kept.begin(), kept.end());
    for (std::size_t& row : order) // its number after the removal
        row = static_cast<std::size_t>(std::lower_bound(ascending.begin(), ascending.end(), row) -
                                       ascending.begin());
    arrange(_project, order);
    addMissing(_project, wanted, matches);
}

void DiscProjectHistory::removeAllBut(const std::set<std::size_t>& kept) {
    std::set<std::size_t> removed;
    const std::size_t count = _project.items()->size();
    for (std::size_t row = 0; row < count; ++row)
        if (!kept.contains(row))
            removed.insert(removed.end(), row);
    _project.remove(removed);
}

} // namespace quarner
