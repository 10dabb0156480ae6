// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/optical/Medium.h"
#include "tests/support/optical/ScsiCommand.h"

namespace quarner {

/// The faults of a recorder. Addresses are sectors as the recorder receives them.
struct UnitFaults {
    std::optional<std::int32_t> writeErrorAt = {};   ///< this sector cannot be written
    std::optional<std::int32_t> readErrorAt = {};    ///< this sector cannot be read
    std::optional<std::int32_t> removeMediumAt = {}; ///< the disc is gone when this sector comes
    std::optional<std::int32_t> unplugAt = {};       ///< the drive is gone when this sector comes
    std::optional<unsigned> unplugAfter = {}; ///< the drive is gone after this number of commands
    /// The number of commands that need the disc, and of status queries, that find the drive not
    /// ready.
    unsigned notReady = 0;
    unsigned blankingSteps = 2; ///< the number of such commands until a disc is blank
    bool refusesCueSheet = false;
    unsigned observers = 0;   ///< the number of ejects that fail because the node has another user
    bool isTrayStuck = false; ///< the tray stays as it is, although no command fails
};

/// A CD recorder as the MMC standard describes it: takes commands, returns replies. Supports
/// session-at-once with a cue sheet, track-at-once, rewritable and appendable discs. It is strict:
/// sectors out of order, of the wrong size or beyond the disc are refused. Not thread-safe.
class OpticalUnit {
public:
    OpticalUnit(std::string vendor, std::string product)
        : _vendor(std::move(vendor)), _product(std::move(product)) {}

    ScsiReply execute(const ScsiCommand& command);
    /// Powers the drive on: the tray is unlocked, and the disc counts as changed.
    void start();

    const std::string& vendor() const { return _vendor; }
    const std::string& product() const { return _product; }

    /// The disc in the tray, open or closed.
    const std::optional<Medium>& medium() const { return _medium; }
    /// Inserts or removes a disc, whatever the state of the drive. Closes the tray.
    void changeMedium(std::optional<Medium> medium);
    bool hasMedium() const { return _medium.has_value() && !_isTrayOpen; }
    bool isTrayOpen() const { return _isTrayOpen; }
    void setTrayOpen(bool isOpen);
    bool isTrayLocked() const { return _isTrayLocked; }
    /// The last requested speed in kB/s; 0xFFFF is the highest.
    std::uint32_t writeSpeed() const { return _writeSpeed; }
    /// Whether a fault has unplugged the drive.
    bool isUnplugged() const { return _isUnplugged; }

    /// The write speeds in kB/s, the highest first.
    std::vector<std::uint32_t> writeSpeeds = {4234};
    /// The read offset in samples: sample 0 of what is read for sector 0 is sample `readOffset` of
    /// the disc. May be negative.
    int readOffset = 0;
    UnitFaults faults;

private:
    struct PlannedSession {
        std::vector<MediumTrack> tracks;
        std::int32_t next = 0; ///< the sector that must come next
        std::int32_t end = 0;
    };
    using Handler = ScsiReply (OpticalUnit::*)(const ScsiCommand&);
    struct Operation {
        std::uint8_t code;
        Handler handler;
        bool needsMedium;
    };
    static const Operation* operationFor(std::uint8_t code);
    ScsiSense readiness();

    ScsiReply testUnitReady(const ScsiCommand&) { return {}; }
    ScsiReply requestSense(const ScsiCommand&);
    ScsiReply startStop(const ScsiCommand&);
    ScsiReply preventRemoval(const ScsiCommand&);
    ScsiReply acceptSilently(const ScsiCommand&) { return {}; }
    ScsiReply setSpeed(const ScsiCommand&);

    ScsiReply inquiry(const ScsiCommand&);
    ScsiReply configuration(const ScsiCommand&);
    ScsiReply modeSense(const ScsiCommand&);
    ScsiReply performance(const ScsiCommand&);
    ScsiReply eventStatus(const ScsiCommand&);
    ScsiReply bufferCapacity(const ScsiCommand&);
    std::uint16_t profile() const;
    std::vector<std::uint8_t> capabilities() const;

    ScsiReply discInformation(const ScsiCommand&);
    ScsiReply trackInformation(const ScsiCommand&);
    ScsiReply capacity(const ScsiCommand&);
    ScsiReply contents(const ScsiCommand&);
    std::vector<std::uint8_t> simpleContents(const ScsiCommand& command) const;
    std::vector<std::uint8_t> sessionContents() const;
    std::vector<std::uint8_t> fullContents() const;
    std::vector<std::uint8_t> preGroove() const;
    std::optional<std::int32_t> nextWritable() const;

    ScsiReply modeSelect(const ScsiCommand&);
    ScsiReply sendCueSheet(const ScsiCommand&);
    ScsiReply write(const ScsiCommand&);
    ScsiReply synchronize(const ScsiCommand&);
    ScsiReply closeTrackOrSession(const ScsiCommand&);
    ScsiReply blank(const ScsiCommand&);
    ScsiSense beginTrack(std::int32_t address);
    ScsiSense writeSector(std::int32_t address, std::span<const std::byte> bytes);
    ScsiSense faultAt(std::int32_t address);
    std::size_t sectorSizeAt(std::int32_t address) const;
    void closeTrack();
    void closeSession();
    void forgetSession();
    bool isMultiSession() const { return (_writeParameters[3] & 0xC0U) != 0; }
    bool isAtOnce() const { return (_writeParameters[2] & 0x0FU) == 2; }

    ScsiReply readBlocks(const ScsiCommand&);
    ScsiReply readCD(const ScsiCommand&);
    std::vector<std::byte> soundAt(std::int32_t address) const;
    ScsiSense readable(std::int32_t address) const;

    const std::string _vendor;
    const std::string _product;
    std::optional<Medium> _medium;
    bool _isTrayOpen = false;
    bool _isTrayLocked = false;
    bool _isUnplugged = false;
    bool _hasChanged = false;    ///< a new disc that no command has reported yet
    unsigned _blankingSteps = 0; ///< the number of queries until the disc is blank
    std::uint32_t _writeSpeed = 0xFFFF;
    /// The write parameters page as last set.
    std::vector<std::uint8_t> _writeParameters = std::vector<std::uint8_t>(52);
    std::optional<PlannedSession> _planned; ///< announced by a cue sheet
    std::optional<MediumTrack> _openTrack;  ///< track-at-once
};

} // namespace quarner
