// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tests/support/optical/KernelDisc.h"
#include "tests/support/optical/Medium.h"
#include "tests/support/optical/OpticalUnit.h"
#include "tests/support/optical/SystemCallTarget.h"
#include "tests/support/optical/UdevBed.h"

namespace quarner {

/// The properties of a recorder when it is plugged in.
struct RecorderDescription {
    std::string vendor = "QUARNER";
    std::string product = "DISC RECORDER";
    std::optional<Medium> medium = Medium::blankCDR();
    int readOffset = 0; ///< samples, see `OpticalUnit::readOffset`
    std::vector<std::uint32_t> writeSpeeds = {4234, 2822, 1411, 706}; ///< kB/s, the highest first
    UnitFaults faults = {};
    std::chrono::microseconds delay{0}; ///< the duration of each command
    bool closesTray = true;             ///< false: as a portable computer's, pushed in by hand
    /// Whether it reports another disc when it has written one. Many drives do not.
    bool reportsWrittenDisc = false;
};

/// A recorder in an `OpticalBed`: a node in /dev that takes the system calls and SCSI commands of a
/// real one, a device in /sys with the properties that udev sets, and a udev event for each change.
/// Every operation may be called on any thread, also while another thread sends commands.
class EmulatedRecorder : public SystemCallTarget,
                         public std::enable_shared_from_this<EmulatedRecorder> {
public:
    /// Makes an unplugged recorder; called by `OpticalBed::plug`.
    EmulatedRecorder(UdevBed& udev, unsigned number, const RecorderDescription& description);

    /// "/dev/sr0"
    std::string node() const { return "/dev/" + _name; }
    /// The path of the device in /sys.
    std::string sysPath() const { return UdevBed::sysPathOf(_name); }

    /// Unplugs it; does nothing if it is not plugged in. The data sent to the recorder is kept.
    void unplug();
    /// Plugs it in again with the same name and disc.
    void replug();

    /// Puts a disc into the tray, replacing any other, and closes the tray. Sends an event.
    void insert(Medium medium);
    /// Removes the disc, even if the tray is locked. Sends an event.
    void removeMedium();
    /// Presses the button of the drive: opens the tray unless it is locked.
    void pressEject();

    void setFaults(const UnitFaults& faults);
    void setReadOffset(int samples);
    /// Sets the duration of each command.
    void setDelay(std::chrono::microseconds delay);
    /// Makes the next `attempts` attempts of any process to open the node fail, as while another
    /// program has the drive open exclusively. 0 ends it.
    void setBusy(unsigned attempts);
    /// Sets a function that is called with the first byte of each command before it is executed, on
    /// the thread that executes the commands of this recorder. It must not send commands itself.
    void setCommandHook(std::function<void(std::uint8_t)> hook);

    /// Makes the next system call that needs the drive, and all calls on its node after it, wait
    /// until `resume`. As in the kernel, unplugging does not end that, and a process that waits can
    /// be killed. The other recorders are not affected.
    void hang();
    /// The same from the next command with this first byte on.
    void hangAt(std::uint8_t operation);
    /// Ends it: the waiting calls are executed. Called when the `OpticalBed` is destroyed.
    void resume();
    /// Whether a system call is waiting for `resume`.
    bool isHanging() const;

    /// The number of times that a program has made the kernel open the tray.
    unsigned ejections() const;
    bool isTrayOpen() const;
    bool isTrayLocked() const;
    /// The number of times that all processes have the node open.
    int openCount() const;
    /// Whether every process has released the drive: the node is not open, and the tray is not
    /// locked.
    bool isReleased() const;
    /// The last requested write speed in kB/s; 0xFFFF is the highest.
    std::uint32_t writeSpeed() const;
    /// The disc with its written content; `std::nullopt` without a disc.
    std::optional<Medium> writtenDisc() const;
    /// The first bytes of all commands so far, in order.
    std::vector<std::uint8_t> commands() const;

    std::optional<ScsiReply> execute(const ScsiCommand& command) override;
    void open() override;
    int driveStatus() override;
    int capabilities() override;
    bool takeMediaChange() override;
    std::uint64_t size() override;
    int eject() override;
    int closeTray() override;
    bool lockTray(bool isLocked) override;

private:
    UdevBed::Properties properties() const;
    void tellOfMedium();
    void afterCommand(bool hadMedium, bool wasWritten);
    bool isWritten() const;
    bool succeeds(std::span<const std::uint8_t> command);
    void waitWhileHanging(std::optional<std::uint8_t> operation = {});

    UdevBed& _udev;
    const std::string _name;

    mutable std::mutex _mutex;
    OpticalUnit _unit;
    KernelDisc _kernel;
    const bool _closesTray;
    const bool _reportsWrittenDisc;
    unsigned _ejections = 0;
    bool _isPlugged = false;
    std::chrono::microseconds _delay;
    std::function<void(std::uint8_t)> _hook;
    std::vector<std::uint8_t> _commands;

    bool _hangsAtOnce = false;
    std::optional<std::uint8_t> _hangsAt;
    bool _isHanging = false;
    std::condition_variable _resumed;
};

} // namespace quarner
