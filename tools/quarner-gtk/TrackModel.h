// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <giomm/liststore.h>
#include <glibmm/object.h>
#include <gtkmm/multiselection.h>

#include <cstddef>
#include <set>
#include <utility>

#include "quarner/project/DiscItem.h"

namespace quarner::window {

/// A row of the list for GTK, whose models hold objects.
class Track : public Glib::Object {
public:
    static Glib::RefPtr<Track> create(DiscItemRef item) {
        return Glib::make_refptr_for_instance(new Track(std::move(item)));
    }
    const DiscItem& item() const { return *_item; }

private:
    explicit Track(DiscItemRef item) : _item(std::move(item)) {}

    const DiscItemRef _item;
};

/// The rows of a project for GTK's views, with those that are selected. It follows the row events.
class TrackModel {
public:
    TrackModel();

    void insert(std::size_t first, const DiscItems& items);
    void remove(std::size_t first, std::size_t count);
    void move(std::size_t first, std::size_t count, std::size_t to);

    std::size_t size() const { return _tracks->get_n_items(); }
    /// The row must be below the size.
    Glib::RefPtr<Track> track(std::size_t row) const {
        return _tracks->get_item(static_cast<guint>(row));
    }
    std::set<std::size_t> selectedRows() const;
    void select(const std::set<std::size_t>& rows);
    Glib::RefPtr<Gtk::MultiSelection> selection() const { return _selection; }

private:
    Glib::RefPtr<Gio::ListStore<Track>> _tracks;
    Glib::RefPtr<Gtk::MultiSelection> _selection;
};

} // namespace quarner::window
