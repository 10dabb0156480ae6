// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/optical/SystemCallTarget.h"

namespace quarner {

/// An emulated machine whose /dev and /sys contain only the devices plugged in here, with udev's
/// events, for this process and those that it starts while it exists. A device is named by its path
/// in /sys. Every operation may be called on any thread; on a thread that handles system calls only
/// `later`.
class UdevBed {
public:
    using Properties = std::vector<std::pair<std::string, std::string>>;

    UdevBed();
    ~UdevBed();
    UdevBed(const UdevBed&) = delete;
    UdevBed& operator=(const UdevBed&) = delete;

    /// The properties that udev sets for a writer.
    static Properties writer(const std::string& vendor, const std::string& model) {
        return {
            {"ID_CDROM", "1"}, {"ID_CDROM_CD_R", "1"}, {"ID_VENDOR", vendor}, {"ID_MODEL", model}};
    }
    /// Returns the path in /sys of the block device with a name such as "sr0".
    static std::string sysPathOf(const std::string& name,
                                 const std::string& parent = "/devices/emulated");

    /// Adds a block device, its node and its properties, and sends an event. The node does not
    /// respond. Returns the path in /sys.
    std::string plug(const std::string& name, const Properties& properties,
                     const std::string& parent = "/devices/emulated");
    /// The same, but system calls on the node go to the target that was first given for this name.
    void plugResponding(const std::string& name, const Properties& properties,
                        const std::shared_ptr<SystemCallTarget>& target);
    /// Adds a SCSI device as the kernel describes it. Returns it as a parent for `plug`.
    std::string addScsi(const std::string& name, const std::string& type, const std::string& vendor,
                        const std::string& model);

    /// Removes a block device and sends an event. Open descriptors stay open.
    void unplug(const std::string& sysPath);
    /// The same without an event, as on a machine without udev.
    void unplugSilently(const std::string& sysPath);

    /// Sends an event of a device.
    void send(const std::string& sysPath, const std::string& action);
    /// Sets one property of a device. Sends no event.
    void setProperty(const std::string& sysPath, const std::string& key, const std::string& value);
    /// Replaces the properties of a block device and sends an event. `once` are only in the event.
    void change(const std::string& sysPath, const Properties& properties,
                const Properties& once = {});
    void changeMedia(const std::string& sysPath) {
        setProperty(sysPath, "DISK_MEDIA_CHANGE", "1");
        send(sysPath, "change");
    }

    /// Makes a file that replaces the machine's own, also below /proc.
    void writeFile(const std::string& path, const std::string& text) const;

    /// Calls functions one after the other on the bed's own thread.
    void later(std::function<void()> function);
    /// Returns after every function given to `later` has returned. Not on that thread.
    void finish();

private:
    class Bed;
    const std::unique_ptr<Bed> _bed;
};

} // namespace quarner
