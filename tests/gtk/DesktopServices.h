// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gio/gio.h>

#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace quarner::testing {

/// What a desktop offers to programs on the message bus: it shows notifications, keeps the machine
/// awake, and says whether windows are to be dark. Keeps what it was asked for. Any thread.
class DesktopServices {
public:
    enum class ColorScheme { NoPreference, Dark, Light };

    /// Returns once the services are on the bus of this process.
    explicit DesktopServices(ColorScheme scheme = ColorScheme::NoPreference);
    ~DesktopServices();
    DesktopServices(const DesktopServices&) = delete;
    DesktopServices& operator=(const DesktopServices&) = delete;

    /// The headlines of all notifications so far.
    std::vector<std::string> notifications() const;
    /// How many of them are shown now.
    int shownNotifications() const;
    void clickNotification();
    /// How many programs want the machine to stay awake.
    int inhibitors() const;
    void setColorScheme(ColorScheme scheme);

private:
    static void called(GDBusConnection* bus, const char* sender, const char* path,
                       const char* interface, const char* method, GVariant* arguments,
                       GDBusMethodInvocation* call, gpointer services);
    GVariant* replyTo(const std::string& method, GVariant* arguments);
    void serve();

    mutable std::mutex _mutex;
    std::vector<std::string> _notifications;
    int _shown = 0;
    int _inhibitors = 0;
    ColorScheme _colorScheme;
    GMainContext* const _context;
    GMainLoop* const _loop;
    GDBusConnection* _bus = nullptr;
    std::thread _thread;
};

} // namespace quarner::testing
