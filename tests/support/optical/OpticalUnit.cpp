// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/support/optical/OpticalUnit.h"

#include <algorithm>
#include <array>

namespace quarner {

const OpticalUnit::Operation* OpticalUnit::operationFor(std::uint8_t code) {
    static constexpr std::array operations = {
        Operation{0x00, &OpticalUnit::testUnitReady, true},
        Operation{0x03, &OpticalUnit::requestSense, false},
        Operation{0x12, &OpticalUnit::inquiry, false},
        Operation{0x1B, &OpticalUnit::startStop, false},
        Operation{0x1E, &OpticalUnit::preventRemoval, false},
        Operation{0x25, &OpticalUnit::capacity, true},
        Operation{0x28, &OpticalUnit::readBlocks, true},
        Operation{0x2A, &OpticalUnit::write, true},
        Operation{0x35, &OpticalUnit::synchronize, true},
        Operation{0x43, &OpticalUnit::contents, true},
        Operation{0x46, &OpticalUnit::configuration, false},
        Operation{0x4A, &OpticalUnit::eventStatus, false},
        Operation{0x51, &OpticalUnit::discInformation, true},
        Operation{0x52, &OpticalUnit::trackInformation, true},
        Operation{0x54, &OpticalUnit::acceptSilently, true}, // SEND OPC INFORMATION
        Operation{0x55, &OpticalUnit::modeSelect, false},
        Operation{0x5A, &OpticalUnit::modeSense, false},
        Operation{0x5B, &OpticalUnit::closeTrackOrSession, true},
        Operation{0x5C, &OpticalUnit::bufferCapacity, true},
        Operation{0x5D, &OpticalUnit::sendCueSheet, true},
        Operation{0xA1, &OpticalUnit::blank, true},
        Operation{0xAC, &OpticalUnit::performance, false},
        Operation{0xBB, &OpticalUnit::setSpeed, false},
        Operation{0xBE, &OpticalUnit::readCD, true},
    };
    const auto* found = std::find_if(operations.begin(), operations.end(),
                                     [&](const Operation& o) { return o.code == code; });
    return found == operations.end() ? nullptr : found;
}

ScsiReply OpticalUnit::execute(const ScsiCommand& command) {
    if (faults.unplugAfter && (*faults.unplugAfter)-- == 0) {
        _isUnplugged = true;
        faults.unplugAfter.reset();
        return sense::noMediumTrayClosed;
    }
    const Operation* operation = operationFor(command.operation());
    if (operation == nullptr)
        return sense::invalidOperation;
    if (operation->needsMedium)
        if (const ScsiSense state = readiness(); !state.isGood())
            return state;
    return (this->*operation->handler)(command);
}

ScsiSense OpticalUnit::readiness() {
    if (_hasChanged) {
        _hasChanged = false;
        return sense::mediumChanged;
    }
    if (!hasMedium())
        return _isTrayOpen ? sense::noMediumTrayOpen : sense::noMediumTrayClosed;
    if (faults.notReady > 0) {
        --faults.notReady;
        return sense::becomingReady;
    }
    if (_blankingSteps > 0) {
        ScsiSense state = sense::operationInProgress;
        state.progress = static_cast<std::uint16_t>(0xFFFF / (1 + _blankingSteps--));
        return state;
    }
    return sense::good;
}

void OpticalUnit::start() {
    _isTrayLocked = false;
    _isUnplugged = false;
    changeMedium(std::move(_medium));
}

void OpticalUnit::changeMedium(std::optional<Medium> medium) {
    _medium = std::move(medium);
    _hasChanged = _medium.has_value();
    _isTrayOpen = false;
    _blankingSteps = 0;
    forgetSession();
}

void OpticalUnit::setTrayOpen(bool isOpen) {
    if (_isTrayOpen == isOpen)
        return;
    _isTrayOpen = isOpen;
    _hasChanged = !isOpen && _medium.has_value();
    forgetSession();
}

ScsiReply OpticalUnit::requestSense(const ScsiCommand&) { return readiness().bytes(); }

ScsiReply OpticalUnit::startStop(const ScsiCommand& command) {
    const bool movesTray = (command.at(4) & 2U) != 0;
    const bool starts = (command.at(4) & 1U) != 0;
    if (!movesTray)
        return hasMedium() ? sense::good : readiness();
    if (!starts && _isTrayLocked)
        return sense::removalPrevented;
    if (!faults.isTrayStuck)
        setTrayOpen(!starts);
    return {};
}

ScsiReply OpticalUnit::preventRemoval(const ScsiCommand& command) {
    _isTrayLocked = (command.at(4) & 1U) != 0;
    return {};
}

ScsiReply OpticalUnit::setSpeed(const ScsiCommand& command) {
    _writeSpeed = command.at16(4);
    return {};
}

} // namespace quarner
