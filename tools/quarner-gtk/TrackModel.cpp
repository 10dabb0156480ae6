// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner-gtk/TrackModel.h"

#include <vector>

namespace quarner::window {
namespace {

guint number(std::size_t row) { return static_cast<guint>(row); }

using Tracks = std::vector<Glib::RefPtr<Track>>;

} // namespace

TrackModel::TrackModel()
    : _tracks(Gio::ListStore<Track>::create()), _selection(Gtk::MultiSelection::create(_tracks)) {}

void TrackModel::insert(std::size_t first, const DiscItems& items) {
    Tracks tracks;
    for (const DiscItemRef& item : items)
        tracks.push_back(Track::create(item));
    _tracks->splice(number(first), 0, tracks);
}

void TrackModel::remove(std::size_t first, std::size_t count) {
    _tracks->splice(number(first), number(count), {});
}

void TrackModel::move(std::size_t first, std::size_t count, std::size_t to) {
    Tracks moved;
    std::set<std::size_t> selected;
    const std::size_t place = to > first ? to - count : to;
    for (std::size_t i = 0; i < count; ++i) {
        moved.push_back(_tracks->get_item(number(first + i)));
        if (_selection->is_selected(number(first + i)))
            selected.insert(place + i);
    }
    _tracks->splice(number(first), number(count), {});
    _tracks->splice(number(place), 0, moved);
    for (const std::size_t row : selected)
        _selection->select_item(number(row), false);
}

std::set<std::size_t> TrackModel::selectedRows() const {
    std::set<std::size_t> rows;
    for (guint row = 0; row < _tracks->get_n_items(); ++row)
        if (_selection->is_selected(row))
            rows.insert(rows.end(), row);
    return rows;
}

void TrackModel::select(const std::set<std::size_t>& rows) {
    _selection->unselect_all();
    for (const std::size_t row : rows)
        _selection->select_item(number(row), false);
}

} // namespace quarner::window
