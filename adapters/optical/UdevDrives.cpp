// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/UdevDrives.h"

#include <libudev.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "adapters/optical/KernelDrives.h"

namespace quarner {
namespace {

using Udev = std::unique_ptr<udev, decltype(&udev_unref)>;
using Enumeration = std::unique_ptr<udev_enumerate, decltype(&udev_enumerate_unref)>;
using Device = std::unique_ptr<udev_device, decltype(&udev_device_unref)>;

std::string text(const char* found) { return found == nullptr ? std::string() : found; }

std::string property(udev_device* device, const char* name) {
    return text(udev_device_get_property_value(device, name));
}

/// Replaces the underscores that udev stores for the spaces of a drive's names.
std::string withSpaces(std::string name) {
    std::replace(name.begin(), name.end(), '_', ' ');
    return name;
}

/// Returns what the drive reported when the kernel found it, without its padding.
std::string scsiAttribute(udev_device* device, const char* name) {
    udev_device* const scsi =
        udev_device_get_parent_with_subsystem_devtype(device, "scsi", "scsi_device");
    const std::string value =
        scsi == nullptr ? "" : text(udev_device_get_sysattr_value(scsi, name));
    const std::size_t first = value.find_first_not_of(" \n");
    return first == std::string::npos
               ? std::string()
               : value.substr(first, value.find_last_not_of(" \n") + 1 - first);
}

bool isDriveByKernel(udev_device* device) {
    constexpr std::string_view multimediaType = "5"; // of SCSI devices: CD and DVD
    return udev_device_get_is_initialized(device) == 0 &&
           scsiAttribute(device, "type") == multimediaType;
}

DriveRecord placeOf(udev_device* device) {
    DriveRecord record;
    record.node = text(udev_device_get_devnode(device));
    record.sysPath = text(udev_device_get_syspath(device));
    return record;
}

DriveRecord recordByUdev(udev_device* device) {
    DriveRecord record = placeOf(device);
    record.vendor = withSpaces(property(device, "ID_VENDOR"));
    record.product = withSpaces(property(device, "ID_MODEL"));
    record.canWriteCD = property(device, "ID_CDROM_CD_R") == "1";
    return record;
}

DriveRecord recordByKernel(udev_device* device) {
    DriveRecord record = placeOf(device);
    record.vendor = scsiAttribute(device, "vendor");
    record.product = scsiAttribute(device, "model");
    record.canWriteCD = kernelSaysWritesCD(text(udev_device_get_sysname(device)));
    return record;
}

} // namespace

bool comesBefore(const DriveRecord& a, const DriveRecord& b) {
    return a.node.size() != b.node.size() ? a.node.size() < b.node.size() : a.node < b.node;
}

std::optional<DriveRecord> driveRecordOf(udev_device* device) {
    if (udev_device_get_devnode(device) == nullptr)
        return std::nullopt;
    if (property(device, "ID_CDROM") == "1")
        return recordByUdev(device);
    if (isDriveByKernel(device))
        return recordByKernel(device);
    return std::nullopt;
}

std::vector<DriveRecord> listDrives() {
    std::vector<DriveRecord> drives;
    const Udev context(udev_new(), udev_unref);
    const Enumeration devices(context ? udev_enumerate_new(context.get()) : nullptr,
                              udev_enumerate_unref);
    if (!devices || udev_enumerate_add_match_subsystem(devices.get(), "block") < 0 ||
        udev_enumerate_scan_devices(devices.get()) < 0)
        return drives;
    udev_list_entry* entry = nullptr;
    udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(devices.get())) {
        const Device device(
            udev_device_new_from_syspath(context.get(), udev_list_entry_get_name(entry)),
            udev_device_unref); // null if it has just been removed
        if (std::optional<DriveRecord> found = device ? driveRecordOf(device.get()) : std::nullopt)
            drives.push_back(std::move(*found));
    }
    std::sort(drives.begin(), drives.end(), comesBefore);
    return drives;
}

bool isUdevRunning() { return access("/run/udev/control", F_OK) == 0; }

} // namespace quarner
