// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/support/optical/EmulatedRecorder.h"

#include <linux/cdrom.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <thread>

#include "tests/support/optical/nodes/NodeAccess.h"

namespace quarner {
namespace {

const char* nameOf(Medium::State state) {
    switch (state) {
    case Medium::State::Blank:
        return "blank";
    case Medium::State::Appendable:
    case Medium::State::Incomplete:
        return "appendable";
    case Medium::State::Closed:
        break;
    }
    return "complete";
}

const char* propertyOf(Medium::Kind kind) {
    switch (kind) {
    case Medium::Kind::CDR:
        return "ID_CDROM_MEDIA_CD_R";
    case Medium::Kind::CDRW:
        return "ID_CDROM_MEDIA_CD_RW";
    case Medium::Kind::CDROM:
        return "ID_CDROM_MEDIA_CD";
    case Medium::Kind::DVDR:
    case Medium::Kind::Foreign:
        break;
    }
    return "ID_CDROM_MEDIA_DVD_R";
}

std::string withUnderscores(std::string text) {
    std::replace(text.begin(), text.end(), ' ', '_');
    return text;
}

} // namespace

EmulatedRecorder::EmulatedRecorder(UdevBed& udev, unsigned number,
                                   const RecorderDescription& description)
    : _udev(udev), _name("sr" + std::to_string(number)),
      _unit(description.vendor, description.product), _closesTray(description.closesTray),
      _reportsWrittenDisc(description.reportsWrittenDisc), _delay(description.delay) {
    _unit.readOffset = description.readOffset;
    _unit.writeSpeeds = description.writeSpeeds;
    _unit.faults = description.faults;
    _unit.changeMedium(description.medium);
    watchNode(node());
}

void EmulatedRecorder::unplug() {
    {
        const std::lock_guard lock(_mutex);
        if (!_isPlugged)
            return;
        _isPlugged = false;
    }
    changeNode(node(), false, [&] { _udev.unplug(sysPath()); });
}

void EmulatedRecorder::replug() {
    UdevBed::Properties all;
    {
        const std::lock_guard lock(_mutex);
        if (_isPlugged)
            return;
        _isPlugged = true;
        _unit.start();
        _kernel = {};
        all = properties();
    }
    changeNode(node(), true, [&] { _udev.plugResponding(_name, all, shared_from_this()); });
}

void EmulatedRecorder::insert(Medium medium) {
    {
        const std::lock_guard lock(_mutex);
        _unit.changeMedium(std::move(medium));
        _kernel.change();
    }
    tellOfMedium();
}

void EmulatedRecorder::removeMedium() {
    {
        const std::lock_guard lock(_mutex);
        _unit.changeMedium(std::nullopt);
        _kernel.change();
    }
    tellOfMedium();
}

void EmulatedRecorder::pressEject() {
    {
        const std::lock_guard lock(_mutex);
        if (_unit.isTrayLocked() || _unit.isTrayOpen())
            return;
        _unit.setTrayOpen(true);
        _kernel.change();
    }
    tellOfMedium();
}

/// Returns the properties that udev's rules set for a drive of this kind.
UdevBed::Properties EmulatedRecorder::properties() const {
    UdevBed::Properties all = {{"ID_CDROM", "1"},
                               {"ID_CDROM_CD", "1"},
                               {"ID_CDROM_CD_R", "1"},
                               {"ID_CDROM_CD_RW", "1"},
                               {"ID_CDROM_DVD", "1"},
                               {"ID_TYPE", "cd"},
                               {"ID_BUS", "scsi"},
                               {"ID_VENDOR", withUnderscores(_unit.vendor())},
                               {"ID_MODEL", withUnderscores(_unit.product())}};
    if (_unit.hasMedium()) {
        all.emplace_back("ID_CDROM_MEDIA", "1");
        all.emplace_back(propertyOf(_unit.medium()->kind), "1");
        all.emplace_back("ID_CDROM_MEDIA_STATE", nameOf(_unit.medium()->state));
    }
    return all;
}

void EmulatedRecorder::tellOfMedium() {
    UdevBed::Properties all;
    {
        const std::lock_guard lock(_mutex);
        if (!_isPlugged)
            return;
        all = properties();
    }
    _udev.change(sysPath(), all, {{"DISK_MEDIA_CHANGE", "1"}});
}

/// Called before each system call that needs the drive, with the first byte of a command.
void EmulatedRecorder::waitWhileHanging(std::optional<std::uint8_t> operation) {
    std::unique_lock lock(_mutex);
    if (!_hangsAtOnce && !(operation && operation == _hangsAt))
        return;
    _hangsAtOnce = _isHanging = true;
    _resumed.wait(lock, [&] { return !_hangsAtOnce; });
    _isHanging = false;
}

std::optional<ScsiReply> EmulatedRecorder::execute(const ScsiCommand& command) {
    waitWhileHanging(command.operation());
    std::unique_lock lock(_mutex);
    const auto hook = _hook;
    const auto delay = _delay;
    lock.unlock();
    if (hook)
        hook(command.operation());
    std::this_thread::sleep_for(delay);
    lock.lock();
    if (!_isPlugged || _unit.isUnplugged())
        return std::nullopt;
    _commands.push_back(command.operation());
    const bool hadMedium = _unit.hasMedium();
    const bool wasWritten = isWritten();
    const ScsiReply reply = _unit.execute(command);
    afterCommand(hadMedium, wasWritten);
    return _unit.isUnplugged() ? std::nullopt : std::optional(reply);
}

bool EmulatedRecorder::isWritten() const {
    return _unit.hasMedium() && _unit.medium()->state == Medium::State::Closed;
}

/// Sends the events for what commands and faults did to the drive.
void EmulatedRecorder::afterCommand(bool hadMedium, bool wasWritten) {
    const auto self = shared_from_this();
    const bool hasMoved = _unit.hasMedium() != hadMedium;
    const bool isReported = hasMoved || (_reportsWrittenDisc && isWritten() && !wasWritten);
    if (isReported)
        _kernel.change();
    if (_unit.isUnplugged())
        _udev.later([self] { self->unplug(); });
    else if (isReported)
        _udev.later([self] { self->tellOfMedium(); });
}

void EmulatedRecorder::open() {
    const std::lock_guard lock(_mutex);
    _kernel.open(_unit.hasMedium() ? _unit.medium() : std::nullopt);
}

int EmulatedRecorder::capabilities() {
    return CDC_OPEN_TRAY | CDC_LOCK | CDC_MEDIA_CHANGED | (_closesTray ? CDC_CLOSE_TRAY : 0);
}

bool EmulatedRecorder::takeMediaChange() {
    waitWhileHanging();
    const std::lock_guard lock(_mutex);
    return _kernel.takeChange();
}

std::uint64_t EmulatedRecorder::size() {
    const std::lock_guard lock(_mutex);
    return _kernel.size();
}

int EmulatedRecorder::driveStatus() {
    waitWhileHanging();
    const std::lock_guard lock(_mutex);
    if (!_isPlugged || _unit.isUnplugged())
        return -1;
    if (_unit.isTrayOpen())
        return CDS_TRAY_OPEN;
    if (_unit.hasMedium() && _unit.faults.notReady > 0) {
        --_unit.faults.notReady;
        return CDS_DRIVE_NOT_READY;
    }
    return _unit.hasMedium() ? CDS_DISC_OK : CDS_NO_DISC;
}

/// As the kernel: unlocks the tray first, but not while the node has another user.
int EmulatedRecorder::eject() {
    {
        const std::lock_guard lock(_mutex);
        if (_unit.faults.observers > 0) {
            --_unit.faults.observers;
            return EBUSY;
        }
        ++_ejections;
    }
    const std::array<std::uint8_t, 6> openTray = {0x1B, 0, 0, 0, 2};
    return lockTray(false) && succeeds(openTray) ? 0 : EIO;
}

int EmulatedRecorder::closeTray() {
    const std::array<std::uint8_t, 6> closeTray = {0x1B, 0, 0, 0, 3};
    if (!_closesTray)
        return ENOSYS;
    return succeeds(closeTray) ? 0 : EIO;
}

bool EmulatedRecorder::lockTray(bool isLocked) {
    const std::array<std::uint8_t, 6> lock = {0x1E, 0, 0, 0, std::uint8_t(isLocked)};
    return succeeds(lock);
}

bool EmulatedRecorder::succeeds(std::span<const std::uint8_t> command) {
    const std::optional<ScsiReply> reply = execute({.block = command, .sent = {}});
    return reply && reply->sense.isGood();
}

void EmulatedRecorder::setFaults(const UnitFaults& faults) {
    const std::lock_guard lock(_mutex);
    _unit.faults = faults;
}

void EmulatedRecorder::setReadOffset(int samples) {
    const std::lock_guard lock(_mutex);
    _unit.readOffset = samples;
}

void EmulatedRecorder::setDelay(std::chrono::microseconds delay) {
    const std::lock_guard lock(_mutex);
    _delay = delay;
}

void EmulatedRecorder::setBusy(unsigned attempts) { refuseOpening(node(), EBUSY, attempts); }

void EmulatedRecorder::setCommandHook(std::function<void(std::uint8_t)> hook) {
    const std::lock_guard lock(_mutex);
    _hook = std::move(hook);
}

void EmulatedRecorder::hang() {
    const std::lock_guard lock(_mutex);
    _hangsAtOnce = true;
}

void EmulatedRecorder::hangAt(std::uint8_t operation) {
    const std::lock_guard lock(_mutex);
    _hangsAt = operation;
}

void EmulatedRecorder::resume() {
    const std::lock_guard lock(_mutex);
    _hangsAtOnce = false;
    _hangsAt.reset();
    _resumed.notify_all();
}

bool EmulatedRecorder::isHanging() const {
    const std::lock_guard lock(_mutex);
    return _isHanging;
}

unsigned EmulatedRecorder::ejections() const {
    const std::lock_guard lock(_mutex);
    return _ejections;
}

bool EmulatedRecorder::isTrayOpen() const {
    const std::lock_guard lock(_mutex);
    return _unit.isTrayOpen();
}

bool EmulatedRecorder::isTrayLocked() const {
    const std::lock_guard lock(_mutex);
    return _unit.isTrayLocked();
}

int EmulatedRecorder::openCount() const { return openCountOf(node()); }

bool EmulatedRecorder::isReleased() const { return openCount() == 0 && !isTrayLocked(); }

std::uint32_t EmulatedRecorder::writeSpeed() const {
    const std::lock_guard lock(_mutex);
    return _unit.writeSpeed();
}

std::optional<Medium> EmulatedRecorder::writtenDisc() const {
    const std::lock_guard lock(_mutex);
    return _unit.medium();
}

std::vector<std::uint8_t> EmulatedRecorder::commands() const {
    const std::lock_guard lock(_mutex);
    return _commands;
}

} // namespace quarner
