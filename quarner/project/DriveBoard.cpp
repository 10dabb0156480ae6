// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/project/DriveBoard.h"

#include <algorithm>
#include <array>
#include <utility>

#include "quarner/device/DiscQueries.h"
#include "quarner/platform/DRKeys.h"
#include "quarner/platform/Platform.h"

namespace quarner {
namespace {

constexpr std::array notifications = {DRDeviceAppearedNotification, DRDeviceDisappearedNotification,
                                      DRDeviceStatusChangedNotification};

void callAll(const std::vector<std::function<void()>>& calls) {
    for (const auto& call : calls)
        call();
}

} // namespace

DriveBoard::DriveBoard(std::function<void()> didChange)
    : _didChange(std::move(didChange)),
      _center(currentPlatform()->recording->currentRunLoopCenter()) {}

DriveBoard::~DriveBoard() {
    for (const char* name : notifications)
        _center->removeObserver(this, name, nullptr);
}

void DriveBoard::start() {
    observe(DRDeviceAppearedNotification, &DriveBoard::rescan);
    observe(DRDeviceDisappearedNotification, &DriveBoard::rescan);
    observe(DRDeviceStatusChangedNotification, &DriveBoard::statusDidChange);
    rescan(nullptr);
}

void DriveBoard::observe(const char* name,
                         void (DriveBoard::*handler)(const std::shared_ptr<DRDevice>&)) {
    _center->addObserver(
        this,
        [weak = weak_from_this(), handler](const DRNotification& notification) {
            if (const auto board = weak.lock())
                ((*board).*handler)(std::dynamic_pointer_cast<DRDevice>(notification.object));
        },
        name, nullptr);
}

std::vector<DiscDrive> DriveBoard::drives() const {
    std::vector<DiscDrive> all;
    all.reserve(_entries.size());
    for (const Entry& entry : _entries)
        all.push_back(entry.facts);
    return all;
}

std::optional<DiscDrive> DriveBoard::drive(DiscDrive::Id id) const {
    const Entry* const entry = entryWith(id);
    return entry == nullptr ? std::nullopt : std::optional(entry->facts);
}

std::shared_ptr<DRDevice> DriveBoard::device(DiscDrive::Id id) const {
    const Entry* const entry = entryWith(id);
    return entry == nullptr ? nullptr : entry->device;
}

/// Takes the service's list of drives. Those that stay keep their identity.
void DriveBoard::rescan(const std::shared_ptr<DRDevice>& /*changed*/) {
    std::vector<Entry> before = std::exchange(_entries, {});
    for (const auto& device : currentPlatform()->recording->devices()) {
        const auto known = std::find_if(before.begin(), before.end(),
                                        [&](const Entry& entry) { return entry.device == device; });
        if (known != before.end()) {
            _entries.push_back(std::move(*known));
            before.erase(known);
            continue;
        }
        Entry entry;
        entry.device = device;
        entry.facts.id = ++_lastId;
        entry.facts.name = device->displayName();
        entry.facts.canWrite = valueFor(device->info(), DRDeviceCanWriteCDKey).asBool();
        _entries.push_back(std::move(entry));
        ask(_entries.back());
    }
    _didChange();
    for (const Entry& gone : before)
        callAll(gone.waiting);
}

void DriveBoard::statusDidChange(const std::shared_ptr<DRDevice>& device) {
    if (Entry* const entry = entryOf(device.get())) {
        ++entry->changeCount;
        ask(*entry);
    }
}

void DriveBoard::examine(DiscDrive::Id id, std::function<void()> done) {
    Entry* const known = entryOf(device(id).get());
    if (known == nullptr) {
        currentPlatform()->dispatch->asyncMain(std::move(done));
        return;
    }
    known->waiting.push_back(std::move(done));
    ask(*known);
}

DriveBoard::Entry* DriveBoard::entryOf(const DRObject* device) {
    const auto found = std::find_if(_entries.begin(), _entries.end(), [&](const Entry& entry) {
        return entry.device.get() == device;
    });
    return found == _entries.end() ? nullptr : &*found;
}

const DriveBoard::Entry* DriveBoard::entryWith(DiscDrive::Id id) const {
    const auto found = std::find_if(_entries.begin(), _entries.end(),
                                    [&](const Entry& entry) { return entry.facts.id == id; });
    return found == _entries.end() ? nullptr : &*found;
}

void DriveBoard::ask(Entry& entry) {
    if (entry.isBeingAsked) {
        entry.isStale = true;
        return;
    }
    entry.isBeingAsked = true;
    entry.isStale = false;
    const auto dispatch = currentPlatform()->dispatch;
    dispatch->asyncGlobal([weak = weak_from_this(), device = entry.device, dispatch] {
        dispatch->asyncMain([weak, device, facts = examineDrive(*device)] {
            if (const auto board = weak.lock())
                board->take(device, facts);
        });
    });
}

void DriveBoard::take(const std::shared_ptr<DRDevice>& device, const DiscDrive& facts) {
    Entry* const entry = entryOf(device.get());
    if (entry == nullptr)
        return;
    entry->isBeingAsked = false;
    const bool isAskedAgain = entry->isStale;
    if (isAskedAgain)
        ask(*entry);
    const std::vector<std::function<void()>> waiting =
        isAskedAgain ? std::vector<std::function<void()>>() : std::exchange(entry->waiting, {});
    const DiscDrive before = entry->facts;
    entry->facts = facts;
    entry->facts.id = before.id;
    entry->facts.changeCount = entry->changeCount;
    if (entry->facts != before)
        _didChange();
    if (!waiting.empty() && !disc::isAttached(device)) // its notification is still under way
        rescan(nullptr);
    callAll(waiting);
}

} // namespace quarner
