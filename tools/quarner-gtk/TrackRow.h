// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gtkmm/box.h>
#include <gtkmm/image.h>
#include <gtkmm/label.h>

#include <cstddef>

#include "quarner/project/DiscItem.h"

namespace quarner::window {

/// What a row of the list looks like: number, icon, title and artist, and what the file takes of
/// the disc.
class TrackRow : public Gtk::Box {
public:
    /// `showsTime`: the play time, otherwise the size.
    explicit TrackRow(bool showsTime);

    void show(const DiscItem& item, std::size_t row);
    void setRow(std::size_t row);
    std::size_t row() const { return _row; }

    /// Shows between which rows something would be dropped.
    enum class Mark { None, Above, Below };
    void mark(Mark mark);

private:
    const bool _showsTime;
    std::size_t _row = 0;
    Gtk::Label _number;
    Gtk::Image _icon;
    Gtk::Box _texts{Gtk::Orientation::VERTICAL};
    Gtk::Label _title;
    Gtk::Label _artist;
    Gtk::Label _extent;
};

} // namespace quarner::window
