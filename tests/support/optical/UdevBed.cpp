// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/support/optical/UdevBed.h"

#include <umockdev.h>

#include <condition_variable>
#include <deque>
#include <filesystem>
#include <fstream>
#include <future>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>

#include "tests/support/optical/SystemCalls.h"

namespace quarner {
namespace {

constexpr unsigned majorOfDrives = 11;

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
};

UdevBed::Properties withNumbers(const std::string& name, unsigned minor,
                                const UdevBed::Properties& properties) {
    UdevBed::Properties all = {{"DEVNAME", "/dev/" + name},
                               {"DEVTYPE", "disk"},
                               {"SUBSYSTEM", "block"},
                               {"MAJOR", std::to_string(majorOfDrives)},
                               {"MINOR", std::to_string(minor)}};
    all.insert(all.end(), properties.begin(), properties.end());
    return all;
}

} // namespace

class UdevBed::Bed {
public:
    Bed() = default;
    ~Bed() {
        {
            const std::lock_guard lock(_waitingMutex);
            _isEnding = true;
        }
        _changed.notify_all();
        _hands.join();
    }
    Bed(const Bed&) = delete;
    Bed& operator=(const Bed&) = delete;

    std::filesystem::path root() const {
        const std::unique_ptr<gchar, decltype(&g_free)> path(
            umockdev_testbed_get_root_dir(testbed.get()), g_free);
        return path.get();
    }

    /// The properties are the lines of a file of the device; events read them too. A concurrent
    /// reader sees either all old or all new ones.
    void writeProperties(const std::string& name, const Properties& properties) {
        const std::string path = root().string() + sysPathOf(name) + "/uevent";
        std::ofstream file(path + ".new");
        for (const auto& [key, value] : properties)
            file << key << '=' << (key == "DEVNAME" ? name : value) << '\n';
        file.close();
        std::filesystem::rename(path + ".new", path);
    }

    /// Once for each name: an open node without a handler ends the program.
    void handleCalls(const std::string& name, const std::shared_ptr<SystemCallTarget>& target) {
        if (!_answered.insert(name).second)
            return;
        const std::unique_ptr<UMockdevIoctlBase, Unref> calls(umockdev_ioctl_base_new());
        handleSystemCalls(calls.get(), target);
        umockdev_testbed_attach_ioctl(testbed.get(), ("/dev/" + name).c_str(), calls.get(),
                                      nullptr);
    }

    void tell(const std::string& name, const char* action) {
        umockdev_testbed_uevent(testbed.get(), sysPathOf(name).c_str(), action);
    }

    void later(std::function<void()> function) {
        const std::lock_guard lock(_waitingMutex);
        _waiting.push_back(std::move(function));
        _changed.notify_all();
    }

    std::mutex mutex; ///< the test bed supports one call at a time
    const std::unique_ptr<UMockdevTestbed, Unref> testbed{umockdev_testbed_new()};

private:
    void work() {
        std::unique_lock lock(_waitingMutex);
        for (;;) {
            _changed.wait(lock, [&] { return _isEnding || !_waiting.empty(); });
            if (_waiting.empty())
                return;
            const std::function<void()> function = std::move(_waiting.front());
            _waiting.pop_front();
            lock.unlock();
            function();
            lock.lock();
        }
    }

    std::set<std::string> _answered;
    std::mutex _waitingMutex;
    std::condition_variable _changed;
    std::deque<std::function<void()>> _waiting;
    bool _isEnding = false;
    std::thread _hands{[this] { work(); }};
};

UdevBed::UdevBed() : _bed(std::make_unique<Bed>()) {}
UdevBed::~UdevBed() = default;

std::string UdevBed::sysPathOf(const std::string& name) {
    return "/sys/devices/emulated/block/" + name;
}

void UdevBed::attach(const std::string& name, unsigned minor, const Properties& properties,
                     const std::shared_ptr<SystemCallTarget>& target) {
    std::string device = "P: " + sysPathOf(name).substr(4) + "\nN: " + name + '\n';
    for (const auto& [key, value] : withNumbers(name, minor, properties))
        device += "E: " + key + '=' + value + '\n';
    device += "A: removable=1\n\n";
    const std::lock_guard lock(_bed->mutex);
    _bed->handleCalls(name, target);
    if (!umockdev_testbed_add_from_string(_bed->testbed.get(), device.c_str(), nullptr))
        throw std::logic_error("no such device: " + device);
    // This also sends an "add" event.
}

void UdevBed::detach(const std::string& name) {
    const std::lock_guard lock(_bed->mutex);
    // At the time of the event the device is already gone: only its own folder is needed.
    for (const char* place : {"dev/", "sys/class/block/", "sys/block/"})
        std::filesystem::remove(_bed->root() / (place + name));
    _bed->tell(name, "remove");
    umockdev_testbed_remove_device(_bed->testbed.get(), sysPathOf(name).c_str());
}

void UdevBed::change(const std::string& name, unsigned minor, const Properties& properties,
                     const Properties& once) {
    const std::lock_guard lock(_bed->mutex);
    const Properties all = withNumbers(name, minor, properties);
    Properties told = all;
    told.insert(told.end(), once.begin(), once.end());
    _bed->writeProperties(name, told);
    _bed->tell(name, "change");
    _bed->writeProperties(name, all);
}

void UdevBed::finish() {
    std::promise<void> done;
    _bed->later([&] { done.set_value(); });
    done.get_future().wait();
}

void UdevBed::later(std::function<void()> function) { _bed->later(std::move(function)); }

} // namespace quarner
