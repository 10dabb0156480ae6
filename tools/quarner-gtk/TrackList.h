// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gtkmm/listitem.h>
#include <gtkmm/listview.h>
#include <gtkmm/scrolledwindow.h>
#include <gtkmm/signallistitemfactory.h>

#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "tools/quarner-gtk/DroppedContent.h"
#include "tools/quarner-gtk/TrackModel.h"
#include "tools/quarner-gtk/TrackRow.h"

namespace quarner::window {

/// The list of a compilation: shows the rows of a model, and tells what is dropped on it.
class TrackList : public Gtk::ScrolledWindow {
public:
    struct Handlers {
        std::function<void(const std::set<std::size_t>& rows, std::size_t to)> rowsDropped;
        std::function<void(const std::vector<std::string>& paths, std::size_t row)> filesDropped;
    };

    TrackList(TrackModel& model, bool showsTime, Handlers handlers);

    /// For shortcuts that are the list's only while it has the focus.
    Gtk::Widget& view() { return _view; }

private:
    void makeRow(const Glib::RefPtr<Gtk::ListItem>& item);
    void letDrag(TrackRow& row);
    void letDropOn(TrackRow& row);
    bool drop(const Glib::ValueBase& value, std::size_t row);
    DraggedRows rowsDraggedFrom(std::size_t row) const;
    std::set<std::size_t> rowsWith(const std::set<std::uint64_t>& ids) const;

    TrackModel& _model;
    const bool _showsTime;
    const Handlers _handlers;
    Gtk::ListView _view;
};

} // namespace quarner::window
