// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gtest/gtest.h>
#include <umockdev.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace quarner {

/// An emulated machine with the devices that a test adds, for programs linked with umockdev's
/// preload library: sysfs, device files and udev's events. The device files do not respond.
class DriveBed {
public:
    using Properties = std::vector<std::pair<std::string, std::string>>;

    DriveBed() {
        umockdev_testbed_set_attribute(_bed.get(), "/sys/class", "quarner", ""); // makes the folder
    }
    DriveBed(const DriveBed&) = delete;
    DriveBed& operator=(const DriveBed&) = delete;

    /// The udev properties of a writer.
    static Properties writer(const std::string& vendor, const std::string& model) {
        return {
            {"ID_CDROM", "1"}, {"ID_CDROM_CD_R", "1"}, {"ID_VENDOR", vendor}, {"ID_MODEL", model}};
    }

    /// Plugs a block device in, as udev reports it. Returns its path in sysfs.
    std::string plug(const std::string& name, const Properties& properties,
                     const std::string& parent = {}) {
        std::string text = "P: " + parent + "/devices/" + name + "\nN: " + name +
                           "\nE: SUBSYSTEM=block\nE: DEVTYPE=disk\nE: DEVNAME=/dev/" + name + "\n";
        for (const auto& [key, value] : properties)
            text.append("E: ").append(key).append("=").append(value).append("\n");
        addFromText(text);
        return "/sys" + parent + "/devices/" + name;
    }

    /// Adds a SCSI device as the kernel describes it. Returns its path in sysfs.
    std::string addScsi(const std::string& name, const std::string& type, const std::string& vendor,
                        const std::string& model) {
        addFromText("P: /devices/" + name +
                    "\nE: SUBSYSTEM=scsi\nE: DEVTYPE=scsi_device\nA: type=" + type +
                    "\nA: vendor=" + vendor + "\nA: model=" + model + "\n");
        return "/devices/" + name;
    }

    /// Repeats an event of a device.
    void send(const std::string& sysPath, const std::string& action) {
        umockdev_testbed_uevent(_bed.get(), sysPath.c_str(), action.c_str());
    }

    void unplug(const std::string& sysPath) {
        send(sysPath, "remove");
        unplugSilently(sysPath);
    }

    /// As on a machine without udev: sends no event.
    void unplugSilently(const std::string& sysPath) {
        for (const char* const place : {"dev", "sys/class/block", "sys/block"})
            std::filesystem::remove(root() / place / std::filesystem::path(sysPath).filename());
        umockdev_testbed_remove_device(_bed.get(), sysPath.c_str());
    }

    void setProperty(const std::string& sysPath, const std::string& key, const std::string& value) {
        umockdev_testbed_set_property(_bed.get(), sysPath.c_str(), key.c_str(), value.c_str());
    }

    void changeMedia(const std::string& sysPath) {
        setProperty(sysPath, "DISK_MEDIA_CHANGE", "1");
        send(sysPath, "change");
    }

    /// A file that replaces the machine's own, also below /proc.
    void writeFile(const std::string& path, const std::string& text) const {
        std::filesystem::create_directories((root() / path).parent_path());
        std::ofstream(root() / path) << text;
    }

private:
    std::filesystem::path root() const {
        const std::unique_ptr<gchar, decltype(&g_free)> path(
            umockdev_testbed_get_root_dir(_bed.get()), g_free);
        return path.get();
    }

    void addFromText(const std::string& text) {
        GError* error = nullptr;
        if (!umockdev_testbed_add_from_string(_bed.get(), text.c_str(), &error)) {
            ADD_FAILURE() << error->message;
            g_error_free(error);
        }
    }

    struct Unref {
        void operator()(UMockdevTestbed* bed) const { g_object_unref(bed); }
    };
    const std::unique_ptr<UMockdevTestbed, Unref> _bed{umockdev_testbed_new()};
};

} // namespace quarner
