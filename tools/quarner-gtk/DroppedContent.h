// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gdkmm/contentprovider.h>
#include <glibmm/value.h>
#include <gtkmm/droptarget.h>

#include <cstdint>
#include <set>
#include <string>
#include <variant>
#include <vector>

namespace quarner::window {

/// Rows that are being dragged, by their identities: the list may change until they are dropped.
struct DraggedRows {
    std::set<std::uint64_t> ids;
};

/// What was dropped: rows, or the paths of files.
using DroppedContent = std::variant<std::monostate, DraggedRows, std::vector<std::string>>;

Glib::RefPtr<Gdk::ContentProvider> contentFor(const DraggedRows& rows);
/// A target that takes both kinds.
Glib::RefPtr<Gtk::DropTarget> makeDropTarget();
DroppedContent droppedContent(const Glib::ValueBase& value);

} // namespace quarner::window
