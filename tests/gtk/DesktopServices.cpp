// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/gtk/DesktopServices.h"

#include <future>

namespace quarner::testing {
namespace {

constexpr char interfaces[] = R"(<node>
  <interface name='org.freedesktop.Notifications'>
    <method name='GetCapabilities'><arg type='as' direction='out'/></method>
    <method name='GetServerInformation'>
      <arg type='s' direction='out'/><arg type='s' direction='out'/>
      <arg type='s' direction='out'/><arg type='s' direction='out'/>
    </method>
    <method name='CloseNotification'><arg type='u' direction='in'/></method>
    <method name='Notify'>
      <arg type='s' direction='in'/><arg type='u' direction='in'/><arg type='s' direction='in'/>
      <arg type='s' direction='in'/><arg type='s' direction='in'/><arg type='as' direction='in'/>
      <arg type='a{sv}' direction='in'/><arg type='i' direction='in'/>
      <arg type='u' direction='out'/>
    </method>
  </interface>
  <interface name='org.gnome.SessionManager'>
    <method name='RegisterClient'>
      <arg type='s' direction='in'/><arg type='s' direction='in'/><arg type='o' direction='out'/>
    </method>
    <method name='Inhibit'>
      <arg type='s' direction='in'/><arg type='u' direction='in'/><arg type='s' direction='in'/>
      <arg type='u' direction='in'/><arg type='u' direction='out'/>
    </method>
    <method name='Uninhibit'><arg type='u' direction='in'/></method>
  </interface>
  <interface name='org.freedesktop.portal.Settings'>
    <method name='Read'>
      <arg type='s' direction='in'/><arg type='s' direction='in'/><arg type='v' direction='out'/>
    </method>
  </interface>
</node>)";

struct Service {
    const char* name;
    const char* path;
    const char* interface;
};
constexpr Service offered[] = {
    {"org.freedesktop.Notifications", "/org/freedesktop/Notifications",
     "org.freedesktop.Notifications"},
    {"org.gnome.SessionManager", "/org/gnome/SessionManager", "org.gnome.SessionManager"},
    {"org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
     "org.freedesktop.portal.Settings"}};
constexpr char appearance[] = "org.freedesktop.appearance";
constexpr char colorScheme[] = "color-scheme";

} // namespace

DesktopServices::DesktopServices(ColorScheme scheme)
    : _colorScheme(scheme), _context(g_main_context_new()),
      _loop(g_main_loop_new(_context, FALSE)) {
    std::promise<void> isServing;
    _thread = std::thread([this, &isServing] {
        g_main_context_push_thread_default(_context);
        serve();
        isServing.set_value();
        g_main_loop_run(_loop);
        g_main_context_pop_thread_default(_context);
    });
    isServing.get_future().wait();
}

void DesktopServices::serve() {
    _bus = g_dbus_connection_new_for_address_sync(
        g_getenv("DBUS_SESSION_BUS_ADDRESS"),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr);
    GDBusNodeInfo* const node = g_dbus_node_info_new_for_xml(interfaces, nullptr);
    static const GDBusInterfaceVTable table = {&DesktopServices::called, nullptr, nullptr, {}};
    for (const Service& service : offered) {
        g_dbus_connection_register_object(
            _bus, service.path, g_dbus_node_info_lookup_interface(node, service.interface), &table,
            this, nullptr, nullptr);
        GVariant* const reply = g_dbus_connection_call_sync(
            _bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
            "RequestName", g_variant_new("(su)", service.name, 4U), nullptr, G_DBUS_CALL_FLAGS_NONE,
            -1, nullptr, nullptr);
        g_variant_unref(reply);
    }
    g_dbus_node_info_unref(node);
}

DesktopServices::~DesktopServices() {
    g_main_loop_quit(_loop);
    _thread.join();
    g_dbus_connection_close_sync(_bus, nullptr, nullptr);
    g_object_unref(_bus);
    g_main_loop_unref(_loop);
    g_main_context_unref(_context);
}

void DesktopServices::called(GDBusConnection* /*bus*/, const char* /*sender*/, const char* /*path*/,
                             const char* /*interface*/, const char* method, GVariant* arguments,
                             GDBusMethodInvocation* call, gpointer services) {
    g_dbus_method_invocation_return_value(
        call, static_cast<DesktopServices*>(services)->replyTo(method, arguments));
}

GVariant* DesktopServices::replyTo(const std::string& method, GVariant* arguments) {
    const std::lock_guard lock(_mutex);
    if (method == "Notify") {
        const char* headline = nullptr;
        g_variant_get_child(arguments, 3, "&s", &headline);
        _notifications.emplace_back(headline);
        ++_shown;
        return g_variant_new("(u)", 1U);
    }
    if (method == "CloseNotification")
        --_shown;
    if (method == "GetCapabilities")
        return g_variant_new("(as)", nullptr);
    if (method == "GetServerInformation")
        return g_variant_new("(ssss)", "Test", "Quarner", "1", "1.2");
    if (method == "RegisterClient")
        return g_variant_new("(o)", "/org/gnome/SessionManager/Client1");
    if (method == "Inhibit") {
        ++_inhibitors;
        return g_variant_new("(u)", 1U);
    }
    if (method == "Uninhibit")
        --_inhibitors;
    if (method == "Read")
        return g_variant_new("(v)",
                             g_variant_new_variant(g_variant_new_uint32(guint32(_colorScheme))));
    return nullptr;
}

void DesktopServices::setColorScheme(ColorScheme scheme) {
    const std::lock_guard lock(_mutex);
    _colorScheme = scheme;
    g_dbus_connection_emit_signal(
        _bus, nullptr, "/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings",
        "SettingChanged",
        g_variant_new("(ssv)", appearance, colorScheme, g_variant_new_uint32(guint32(scheme))),
        nullptr);
}

std::vector<std::string> DesktopServices::notifications() const {
    const std::lock_guard lock(_mutex);
    return _notifications;
}

int DesktopServices::shownNotifications() const {
    const std::lock_guard lock(_mutex);
    return _shown;
}

void DesktopServices::clickNotification() {
    g_dbus_connection_emit_signal(_bus, nullptr, "/org/freedesktop/Notifications",
                                  "org.freedesktop.Notifications", "ActionInvoked",
                                  g_variant_new("(us)", 1U, "default"), nullptr);
}

int DesktopServices::inhibitors() const {
    const std::lock_guard lock(_mutex);
    return _inhibitors;
}

} // namespace quarner::testing
