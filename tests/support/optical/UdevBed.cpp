// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/support/optical/UdevBed.h"

#include <umockdev.h>

#include <filesystem>
#include <fstream>
#include <future>
#include <map>
#include <mutex>
#include <stdexcept>

#include "tests/support/optical/SystemCalls.h"
#include "tests/support/optical/TaskThread.h"
#include "tests/support/optical/nodes/NodeTable.h"

namespace quarner {
namespace {

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
};

std::string nameAt(const std::string& sysPath) {
    return std::filesystem::path(sysPath).filename().string();
}

} // namespace

class UdevBed::Bed {
public:
    Bed() {
        // A machine without devices has this folder too.
        umockdev_testbed_set_attribute(testbed.get(), "/sys/class", "quarner", "");
    }
    std::filesystem::path root() const {
        const std::unique_ptr<gchar, decltype(&g_free)> path(
            umockdev_testbed_get_root_dir(testbed.get()), g_free);
        return path.get();
    }

    /// Returns the properties of a block device as udev lists them.
    Properties complete(const std::string& name, const Properties& properties) {
        const std::size_t minor = _minors.try_emplace(name, _minors.size()).first->second;
        Properties all = {{"DEVNAME", "/dev/" + name},
                          {"DEVTYPE", "disk"},
                          {"SUBSYSTEM", "block"},
                          {"MAJOR", "11"},
                          {"MINOR", std::to_string(minor)}};
        all.insert(all.end(), properties.begin(), properties.end());
        return all;
    }

    /// The properties are the lines of a file of the device; events read them too. A concurrent
    /// reader sees either all old or all new ones.
    void writeProperties(const std::string& sysPath, const Properties& properties) {
        const std::string path = root().string() + sysPath + "/uevent";
        std::ofstream file(path + ".new");
        for (const auto& [key, value] : properties)
            file << key << '=' << (key == "DEVNAME" ? nameAt(sysPath) : value) << '\n';
        file.close();
        std::filesystem::rename(path + ".new", path);
    }

    /// Once for each name: an open node without a handler ends the program.
    void handleCalls(const std::string& name, const std::shared_ptr<SystemCallTarget>& target) {
        if (_calls.contains(name))
            return;
        const std::unique_ptr<UMockdevIoctlBase, Unref> calls(umockdev_ioctl_base_new());
        _calls[name] = std::make_unique<SystemCalls>(calls.get(), target);
        umockdev_testbed_attach_ioctl(testbed.get(), ("/dev/" + name).c_str(), calls.get(),
                                      nullptr);
    }

    /// Adds a device, which also sends an "add" event.
    void add(const std::string& text) {
        if (!umockdev_testbed_add_from_string(testbed.get(), text.c_str(), nullptr))
            throw std::logic_error("no such device: " + text);
    }
    std::string addBlock(const std::string& name, const Properties& properties,
                         const std::string& parent) {
        const std::string sysPath = sysPathOf(name, parent);
        std::string device = "P: " + sysPath.substr(4) + "\nN: " + name + '\n';
        for (const auto& [key, value] : complete(name, properties))
            device += "E: " + key + '=' + value + '\n';
        add(device + "A: removable=1\n\n");
        return sysPath;
    }

    void send(const std::string& sysPath, const std::string& action) {
        umockdev_testbed_uevent(testbed.get(), sysPath.c_str(), action.c_str());
    }

    /// Removes all of a device but its own folder, which its "remove" event needs.
    void removeLinks(const std::string& name) const {
        for (const char* place : {"dev/", "sys/class/block/", "sys/block/"})
            std::filesystem::remove(root() / (place + name));
    }
    /// Not left to the test bed, whose later versions send an event of their own.
    void remove(const std::string& sysPath) const {
        std::filesystem::remove_all(root() / sysPath.substr(1));
    }

    bool has(const std::string& sysPath) const {
        return std::filesystem::exists(root() / sysPath.substr(1));
    }

    std::mutex mutex; ///< the test bed supports one call at a time
    const std::unique_ptr<UMockdevTestbed, Unref> testbed{makeTestbed()};

private:
    /// The environment is changed before the threads of the test bed read it.
    static UMockdevTestbed* makeTestbed() {
        NodeTable::make();
        setenv("QUARNER_WORKERS", EMULATED_WORKERS, 1); // they see these devices
        return umockdev_testbed_new();
    }

    std::map<std::string, std::size_t> _minors; ///< of each name that was ever plugged in

public:
    TaskThread hands; ///< its tasks use the members above

private:
    std::map<std::string, std::unique_ptr<SystemCalls>> _calls; ///< of each name; they use `hands`
};

UdevBed::UdevBed() : _bed(std::make_unique<Bed>()) {}
UdevBed::~UdevBed() = default;

std::string UdevBed::sysPathOf(const std::string& name, const std::string& parent) {
    return "/sys" + parent + "/block/" + name;
}

std::string UdevBed::plug(const std::string& name, const Properties& properties,
                          const std::string& parent) {
    const std::lock_guard lock(_bed->mutex);
    return _bed->addBlock(name, properties, parent);
}

void UdevBed::plugResponding(const std::string& name, const Properties& properties,
                             const std::shared_ptr<SystemCallTarget>& target) {
    const std::lock_guard lock(_bed->mutex);
    _bed->handleCalls(name, target);
    _bed->addBlock(name, properties, "/devices/emulated");
}

std::string UdevBed::addScsi(const std::string& name, const std::string& type,
                             const std::string& vendor, const std::string& model) {
    const std::lock_guard lock(_bed->mutex);
    _bed->add("P: /devices/" + name + "\nE: SUBSYSTEM=scsi\nE: DEVTYPE=scsi_device\nA: type=" +
              type + "\nA: vendor=" + vendor + "\nA: model=" + model + "\n");
    return "/devices/" + name;
}

void UdevBed::unplug(const std::string& sysPath) {
    const std::lock_guard lock(_bed->mutex);
    _bed->removeLinks(nameAt(sysPath));
    _bed->send(sysPath, "remove");
    _bed->remove(sysPath);
}

void UdevBed::unplugSilently(const std::string& sysPath) {
    const std::lock_guard lock(_bed->mutex);
    _bed->removeLinks(nameAt(sysPath));
    _bed->remove(sysPath);
}

void UdevBed::send(const std::string& sysPath, const std::string& action) {
    const std::lock_guard lock(_bed->mutex);
    _bed->send(sysPath, action);
}

void UdevBed::setProperty(const std::string& sysPath, const std::string& key,
                          const std::string& value) {
    const std::lock_guard lock(_bed->mutex);
    umockdev_testbed_set_property(_bed->testbed.get(), sysPath.c_str(), key.c_str(), value.c_str());
}

void UdevBed::change(const std::string& sysPath, const Properties& properties,
                     const Properties& once) {
    const std::lock_guard lock(_bed->mutex);
    if (!_bed->has(sysPath)) // unplugged just before
        return;
    const Properties all = _bed->complete(nameAt(sysPath), properties);
    Properties told = all;
    told.insert(told.end(), once.begin(), once.end());
    _bed->writeProperties(sysPath, told);
    _bed->send(sysPath, "change");
    _bed->writeProperties(sysPath, all);
}

void UdevBed::writeFile(const std::string& path, const std::string& text) const {
    const std::filesystem::path file = _bed->root() / path;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << text;
}

void UdevBed::finish() {
    std::promise<void> done;
    _bed->hands.add([&] { done.set_value(); });
    done.get_future().wait();
}

void UdevBed::later(std::function<void()> function) { _bed->hands.add(std::move(function)); }

} // namespace quarner
