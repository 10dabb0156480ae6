// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tests/support/optical/Medium.h"
#include "tests/support/optical/OpticalUnit.h"
#include "tests/support/optical/SystemCallTarget.h"
#include "tests/support/optical/UdevBed.h"

namespace quarner {

/// How a recorder is when it is plugged in.
struct RecorderDescription {
    std::string vendor = "QUARNER";
    std::string product = "DISC RECORDER";
    std::optional<Medium> medium = Medium::blankCDR();
    int readOffset = 0; ///< samples, see `OpticalUnit::readOffset`
    std::vector<std::uint32_t> writeSpeeds = {4234, 2822, 1411, 706}; ///< kB/s, the highest first
    UnitFaults faults = {};
    std::chrono::microseconds delay{0}; ///< before each command is answered
};

/// A recorder in an `OpticalBed`: a node in /dev that takes the system calls and SCSI commands that
/// a real one takes, a device in /sys with the properties that udev gives it, and an event for
/// whatever happens to it. Every operation may be called on any thread, also while another one
/// sends commands.
class EmulatedRecorder : public SystemCallTarget,
                         public std::enable_shared_from_this<EmulatedRecorder> {
public:
    /// Not plugged in yet: `OpticalBed::plug` makes them.
    EmulatedRecorder(UdevBed& udev, unsigned number, const RecorderDescription& description);

    /// "/dev/sr0"
    std::string node() const { return "/dev/" + _name; }
    /// The path of the device in /sys.
    std::string sysPath() const { return UdevBed::sysPathOf(_name); }

    /// Pulls the cable; nothing happens when it is not plugged in. What was sent to the recorder is
    /// still there.
    void unplug();
    /// Plugs it in again, under the same name, with the same disc.
    void replug();

    /// Puts a disc into the tray, in place of any other, and closes it. An event tells of it.
    void insert(Medium medium);
    /// Takes the disc out by force, whether or not the tray is locked. An event tells of it.
    void removeMedium();
    /// What the button on the drive does: opens the tray, unless it is locked.
    void pressEject();

    void setFaults(const UnitFaults& faults);
    void setReadOffset(int samples);
    /// How long each command takes.
    void setDelay(std::chrono::microseconds delay);
    /// Makes the next attempts of this process to open the node fail as those do while another
    /// program has the drive for itself; 0 ends it.
    void setBusy(unsigned attempts);
    /// Called with the first byte of each command before it is executed, on the thread that answers
    /// the commands of all recorders. Must not send commands itself.
    void setCommandHook(std::function<void(std::uint8_t)> hook);

    bool isTrayOpen() const;
    bool isTrayLocked() const;
    /// How many times this process has its node open.
    int openCount() const;
    /// Whether this process has let go of it: the node not open, and the tray not locked.
    bool isReleased() const;
    /// The write speed that was last asked for, in kB/s; 0xFFFF stands for the highest.
    std::uint32_t writeSpeed() const;
    /// The disc with what was written to it; nothing without one.
    std::optional<Medium> writtenDisc() const;
    /// The first bytes of all commands so far, in order.
    std::vector<std::uint8_t> commands() const;

    std::optional<ScsiReply> execute(const ScsiCommand& command) override;
    int driveStatus() override;
    int eject() override;
    bool lockTray(bool isLocked) override;

private:
    UdevBed::Properties properties() const;
    void tellOfMedium();
    void afterCommand(bool hadMedium);
    bool succeeds(std::span<const std::uint8_t> command);

    UdevBed& _udev;
    const unsigned _number;
    const std::string _name;

    mutable std::mutex _mutex;
    OpticalUnit _unit;
    bool _isPlugged = false;
    std::chrono::microseconds _delay;
    std::function<void(std::uint8_t)> _hook;
    std::vector<std::uint8_t> _commands;
};

} // namespace quarner
