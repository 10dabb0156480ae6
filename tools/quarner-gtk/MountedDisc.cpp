// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner-gtk/MountedDisc.h"

#include <gio/gunixmounts.h>
#include <giomm/drive.h>
#include <giomm/error.h>
#include <giomm/mountoperation.h>
#include <giomm/volume.h>
#include <giomm/volumemonitor.h>

#include <memory>
#include <utility>

namespace quarner::window {
namespace {

constexpr char deviceKind[] = G_VOLUME_IDENTIFIER_KIND_UNIX_DEVICE;

/// Where the desktop knows no volume, the kernel's list knows the device.
std::string deviceMountedAt(const std::string& path) {
    if (path.empty())
        return {};
    guint64 time = 0;
    const std::unique_ptr<GUnixMountEntry, decltype(&g_unix_mount_free)> entry(
        g_unix_mount_at(path.c_str(), &time), &g_unix_mount_free);
    return entry ? g_unix_mount_get_device_path(entry.get()) : "";
}

std::string deviceOf(const Gio::Mount& mount) {
    if (const auto volume = mount.get_volume())
        return volume->get_identifier(deviceKind);
    if (const auto drive = mount.get_drive())
        return drive->get_identifier(deviceKind);
    return deviceMountedAt(mount.get_root()->get_path());
}

} // namespace

Glib::RefPtr<Gio::Mount> mountOf(const std::string& node) {
    if (node.empty())
        return {};
    // Desktops show a blank disc as a mounted one, as a place to collect files.
    const auto isMounted = [&](const Glib::RefPtr<Gio::Mount>& mount) {
        return !mount->get_root()->has_uri_scheme("burn") && deviceOf(*mount) == node;
    };
    for (const auto& mount : Gio::VolumeMonitor::get()->get_mounts())
        if (isMounted(mount))
            return mount;
    return {};
}

void unmount(const Glib::RefPtr<Gio::Mount>& mount, Gtk::Window& window,
             std::function<void(const std::string&)> done) {
    // gtkmm 4.8 has no class for it.
    const auto operation = Glib::wrap(gtk_mount_operation_new(window.gobj()));
    mount->unmount(operation, [mount, done = std::move(done)](const auto& result) {
        std::string problem;
        try {
            mount->unmount_finish(result);
        } catch (const Glib::Error& error) {
            problem = error.what();
        }
        done(problem);
    });
}

} // namespace quarner::window
