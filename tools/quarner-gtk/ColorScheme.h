// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <giomm/asyncresult.h>
#include <giomm/dbusproxy.h>
#include <sigc++/trackable.h>

namespace quarner::window {

/// Makes the windows of the program dark or light as the desktop prefers, and changes them when the
/// preference changes: GTK 4.8 does not ask for it. Nothing changes if the session has no settings
/// portal. Main thread only; its calls end with it.
class ColorScheme : public sigc::trackable {
public:
    /// Returns at once; the portal replies later. GTK must have been initialised.
    ColorScheme();

private:
    using Result = Glib::RefPtr<Gio::AsyncResult>;
    void useProxy(const Result& result);
    void useReply(const Result& result);
    void settingChanged(const Glib::ustring& signal, const Glib::VariantContainerBase& arguments);

    Glib::RefPtr<Gio::DBus::Proxy> _portal; ///< null until it was made
};

} // namespace quarner::window
