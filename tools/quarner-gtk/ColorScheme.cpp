// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner-gtk/ColorScheme.h"

#include <giomm/error.h>
#include <glibmm/variant.h>
#include <gtkmm/settings.h>
#include <sigc++/adaptors/hide.h>
#include <sigc++/functors/mem_fun.h>

#include <optional>

namespace quarner::window {
namespace {

using Text = Glib::Variant<Glib::ustring>;

constexpr char nameSpace[] = "org.freedesktop.appearance";
constexpr char key[] = "color-scheme";
constexpr guint32 dark = 1;
constexpr guint32 light = 2;

/// `Read` puts one variant more around a value than the signal does.
std::optional<guint32> numberIn(Glib::VariantBase value) {
    while (value.is_of_type(Glib::VARIANT_TYPE_VARIANT))
        value = Glib::VariantBase::cast_dynamic<Glib::VariantContainerBase>(value).get_child();
    if (!value.is_of_type(Glib::VARIANT_TYPE_UINT32))
        return std::nullopt;
    return Glib::VariantBase::cast_dynamic<Glib::Variant<guint32>>(value).get();
}

void apply(const Glib::VariantBase& value) {
    const auto scheme = numberIn(value);
    const auto settings = Gtk::Settings::get_default();
    if (!scheme || !settings)
        return;
    if (*scheme == dark || *scheme == light)
        settings->property_gtk_application_prefer_dark_theme() = *scheme == dark;
    else // what the user's settings of GTK say
        settings->reset_property("gtk-application-prefer-dark-theme");
}

bool isText(const Glib::VariantBase& value, const char* text) {
    return Glib::VariantBase::cast_dynamic<Text>(value).get() == text;
}

} // namespace

ColorScheme::ColorScheme() {
    Gio::DBus::Proxy::create_for_bus(Gio::DBus::BusType::SESSION, "org.freedesktop.portal.Desktop",
                                     "/org/freedesktop/portal/desktop",
                                     "org.freedesktop.portal.Settings",
                                     sigc::mem_fun(*this, &ColorScheme::useProxy), {},
                                     Gio::DBus::ProxyFlags::DO_NOT_LOAD_PROPERTIES);
}

void ColorScheme::useProxy(const Result& result) {
    try {
        _portal = Gio::DBus::Proxy::create_for_bus_finish(result);
    } catch (const Glib::Error&) { // there is no session bus
        return;
    }
    _portal->signal_signal().connect(
        sigc::hide<0>(sigc::mem_fun(*this, &ColorScheme::settingChanged)));
    _portal->call(
        "Read", sigc::mem_fun(*this, &ColorScheme::useReply),
        Glib::Variant<std::tuple<Glib::ustring, Glib::ustring>>::create({nameSpace, key}));
}

void ColorScheme::useReply(const Result& result) {
    try {
        Glib::VariantContainerBase reply = _portal->call_finish(result);
        if (reply.get_type_string() == "(v)")
            apply(reply.get_child());
    } catch (const Glib::Error&) { // there is no portal, or it does not know the setting
        return;
    }
}

void ColorScheme::settingChanged(const Glib::ustring& signal,
                                 const Glib::VariantContainerBase& arguments) {
    if (signal != "SettingChanged" || arguments.get_type_string() != "(ssv)")
        return;
    Glib::VariantContainerBase setting = arguments; // only one that is not const has children
    if (isText(setting.get_child(0), nameSpace) && isText(setting.get_child(1), key))
        apply(setting.get_child(2));
}

} // namespace quarner::window
