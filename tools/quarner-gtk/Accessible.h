// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gtkmm/widget.h>

#include <string>

namespace quarner::window {

/// Gives a widget the name that screen readers speak. (gtkmm 4.8 has no call for it.)
inline void setSpokenName(Gtk::Widget& widget, const std::string& name) {
    gtk_accessible_update_property(GTK_ACCESSIBLE(widget.gobj()), GTK_ACCESSIBLE_PROPERTY_LABEL,
                                   name.c_str(), -1);
    // The name of a label that belongs to it would be spoken as well.
    gtk_accessible_reset_relation(GTK_ACCESSIBLE(widget.gobj()),
                                  GTK_ACCESSIBLE_RELATION_LABELLED_BY);
}

} // namespace quarner::window
