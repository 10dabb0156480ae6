// SPDX-License-Identifier: LGPL-2.1-or-later
//
// A module for GIO that makes it believe a disc is mounted: as long as the file exists that
// QUARNER_MOUNT names, "Old mix" is mounted from /dev/sr0, at the URI of QUARNER_MOUNT_ROOT if
// there is one. To unmount it removes the file, or fails if that cannot be done.
#include <gio/gio.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

// The names and casts of GObject's macros.
// NOLINTBEGIN
#pragma GCC diagnostic ignored "-Wold-style-cast"
namespace {

const char* mountFile() { return std::getenv("QUARNER_MOUNT"); }

struct TestVolume {
    GObject parent;
};
struct TestVolumeClass {
    GObjectClass parent;
};
char* volumeIdentifier(GVolume*, const char* kind) {
    return std::strcmp(kind, G_VOLUME_IDENTIFIER_KIND_UNIX_DEVICE) == 0 ? g_strdup("/dev/sr0")
                                                                        : nullptr;
}
void test_volume_volume_init(GVolumeIface* iface) { iface->get_identifier = volumeIdentifier; }
G_DEFINE_DYNAMIC_TYPE_EXTENDED(TestVolume, test_volume, G_TYPE_OBJECT, 0,
                               G_IMPLEMENT_INTERFACE_DYNAMIC(G_TYPE_VOLUME,
                                                             test_volume_volume_init))
void test_volume_init(TestVolume*) {}
void test_volume_class_init(TestVolumeClass*) {}
void test_volume_class_finalize(TestVolumeClass*) {}

struct TestMount {
    GObject parent;
};
struct TestMountClass {
    GObjectClass parent;
};
char* mountName(GMount*) { return g_strdup("Old mix"); }
GFile* mountRoot(GMount*) {
    const char* const uri = std::getenv("QUARNER_MOUNT_ROOT");
    return g_file_new_for_uri(uri == nullptr ? "file:///media/mix" : uri);
}
GVolume* mountVolume(GMount*) { return G_VOLUME(g_object_new(test_volume_get_type(), nullptr)); }
void unmountDisc(GMount* mount, GMountUnmountFlags, GMountOperation*, GCancellable* stop,
                 GAsyncReadyCallback done, gpointer data) {
    GTask* const task = g_task_new(mount, stop, done, data);
    if (unlink(mountFile()) == 0)
        g_task_return_boolean(task, TRUE);
    else
        g_task_return_new_error(task, G_IO_ERROR, G_IO_ERROR_BUSY, "a program reads from it");
    g_object_unref(task);
}
gboolean finishUnmount(GMount*, GAsyncResult* result, GError** error) {
    return g_task_propagate_boolean(G_TASK(result), error);
}
void test_mount_mount_init(GMountIface* iface) {
    iface->get_name = mountName;
    iface->get_root = mountRoot;
    iface->get_volume = mountVolume;
    iface->unmount_with_operation = unmountDisc;
    iface->unmount_with_operation_finish = finishUnmount;
}
G_DEFINE_DYNAMIC_TYPE_EXTENDED(TestMount, test_mount, G_TYPE_OBJECT, 0,
                               G_IMPLEMENT_INTERFACE_DYNAMIC(G_TYPE_MOUNT, test_mount_mount_init))
void test_mount_init(TestMount*) {}
void test_mount_class_init(TestMountClass*) {}
void test_mount_class_finalize(TestMountClass*) {}

struct TestMonitor {
    GVolumeMonitor parent;
};
struct TestMonitorClass {
    GVolumeMonitorClass parent;
};
G_DEFINE_DYNAMIC_TYPE(TestMonitor, test_monitor, G_TYPE_VOLUME_MONITOR)
void test_monitor_init(TestMonitor*) {}
void test_monitor_class_finalize(TestMonitorClass*) {}
gboolean isSupported() { return TRUE; }
GList* nothing(GVolumeMonitor*) { return nullptr; }
GList* mounts(GVolumeMonitor*) {
    if (mountFile() == nullptr || access(mountFile(), F_OK) != 0)
        return nullptr;
    return g_list_append(nullptr, g_object_new(test_mount_get_type(), nullptr));
}
void test_monitor_class_init(TestMonitorClass* monitor) {
    monitor->parent.is_supported = isSupported;
    monitor->parent.get_connected_drives = nothing;
    monitor->parent.get_volumes = nothing;
    monitor->parent.get_mounts = mounts;
}

} // namespace

#define MODULE extern "C" [[gnu::visibility("default")]]

MODULE void g_io_module_load(GIOModule* module) {
    test_volume_register_type(G_TYPE_MODULE(module));
    test_mount_register_type(G_TYPE_MODULE(module));
    test_monitor_register_type(G_TYPE_MODULE(module));
    g_type_module_use(G_TYPE_MODULE(module));
    g_io_extension_point_implement(G_VOLUME_MONITOR_EXTENSION_POINT_NAME, test_monitor_get_type(),
                                   "quarner-test", 0);
}
MODULE void g_io_module_unload(GIOModule*) {}
MODULE char** g_io_module_query() {
    static char name[] = G_VOLUME_MONITOR_EXTENSION_POINT_NAME;
    static char* names[] = {name, nullptr};
    return g_strdupv(names);
}
// NOLINTEND
