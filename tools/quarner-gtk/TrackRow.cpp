// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner-gtk/TrackRow.h"

#include <giomm/themedicon.h>

#include <string>
#include <vector>

#include "quarner/display.h"
#include "tools/quarner-gtk/Accessible.h"

namespace quarner::window {
namespace {

constexpr int space = 9;

void keepOnOneLine(Gtk::Label& label) {
    label.set_xalign(0);
    label.set_ellipsize(Pango::EllipsizeMode::END);
    label.set_single_line_mode(true);
}

/// The first of the names that the theme has.
Glib::RefPtr<Gio::Icon> iconNamed(const std::vector<std::string>& names) {
    const auto icon = Gio::ThemedIcon::create("audio-x-generic");
    for (auto name = names.rbegin(); name != names.rend(); ++name)
        icon->prepend_name(*name);
    return icon;
}

} // namespace

TrackRow::TrackRow(bool showsTime)
    : Gtk::Box(Gtk::Orientation::HORIZONTAL, space), _showsTime(showsTime) {
    add_css_class("track");
    _number.set_width_chars(2);
    _number.set_xalign(1);
    for (Gtk::Label* const label : {&_number, &_artist, &_extent})
        label->add_css_class("dim-label");
    for (Gtk::Label* const label : {&_number, &_extent})
        label->add_css_class("numeric");
    _artist.add_css_class("caption");
    _icon.set_icon_size(Gtk::IconSize::LARGE);
    keepOnOneLine(_title);
    keepOnOneLine(_artist);
    _texts.set_hexpand(true);
    _texts.set_valign(Gtk::Align::CENTER);
    _texts.append(_title);
    _texts.append(_artist);
    for (Gtk::Widget* const part : std::vector<Gtk::Widget*>{&_number, &_icon, &_texts, &_extent})
        append(*part);
}

void TrackRow::show(const DiscItem& item, std::size_t row) {
    const std::string name = safeText(item.displayName);
    const std::string title = item.title.empty() ? name : safeText(item.title);
    const std::string artist = safeText(item.artist);
    const std::string& extent = _showsTime ? item.duration : item.size;
    _icon.set(iconNamed(item.iconNames));
    _title.set_text(title);
    _artist.set_text(artist);
    _artist.set_visible(!artist.empty());
    _extent.set_text(extent);
    set_tooltip_text(safeText(item.path));
    // The focus goes to the widget of the list that this one is in.
    if (Gtk::Widget* const place = get_parent())
        setSpokenName(*place, title + (artist.empty() ? "" : ", " + artist) + ", " + extent);
    setRow(row);
}

void TrackRow::setRow(std::size_t row) {
    _row = row;
    _number.set_text(std::to_string(row + 1));
}

void TrackRow::mark(Mark mark) {
    remove_css_class("drop-above");
    remove_css_class("drop-below");
    if (mark != Mark::None)
        add_css_class(mark == Mark::Above ? "drop-above" : "drop-below");
}

} // namespace quarner::window
