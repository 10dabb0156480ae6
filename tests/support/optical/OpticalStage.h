// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "adapters/engine/EngineRecorder.h"
#include "adapters/joliet/JolietDiscs.h"
#include "adapters/optical/OpticalDrives.h"
#include "tests/support/BurnLog.h"
#include "tests/support/Layouts.h"
#include "tests/support/RawSound.h"
#include "tests/support/StepLoops.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/optical/OpticalBed.h"

namespace quarner {

/// The first bytes of commands (MMC-6).
namespace operation {
constexpr std::uint8_t testUnitReady = 0x00;
constexpr std::uint8_t read = 0x28;
constexpr std::uint8_t write = 0x2A;
constexpr std::uint8_t sendCueSheet = 0x5D;
constexpr std::uint8_t blank = 0xA1;
constexpr std::uint8_t readCD = 0xBE;
} // namespace operation

/// A rewritable disc with a data track on it.
inline Medium rewritable() {
    Medium medium = Medium::dataCD(1000);
    medium.kind = Medium::Kind::CDRW;
    return medium;
}

/// A machine with one emulated drive, the recorder, and burns of noise.
class OpticalStage {
public:
    /// How the drive is found.
    enum class Listing {
        None,   ///< `drive` is made by hand: it learns of changes by `insert` alone
        ByUdev, ///< the recorder lists it and follows the events
    };

    explicit OpticalStage(const RecorderDescription& description = {},
                          Listing listing = Listing::None)
        : recorder(bed.plug(description)), service(makeService(listing)),
          drive(listing == Listing::None ? makeDrive(*recorder) : listedDrive()) {}
    ~OpticalStage() {
        loops->setInStep(false);
        service.reset(); // ends the burns
    }
    OpticalStage(const OpticalStage&) = delete;
    OpticalStage& operator=(const OpticalStage&) = delete;

    /// Returns a drive that uses `time` as its clock. It is in no list.
    std::shared_ptr<OpticalDrive> makeDrive(const EmulatedRecorder& of,
                                            bool receivesEvents = true) const {
        return std::make_shared<OpticalDrive>(
            DriveRecord{of.node(), of.sysPath(), "QUARNER", "DISC RECORDER", true}, "Recorder",
            loops, receivesEvents, [this] { return time; });
    }

    /// Inserts a disc and notifies the drive.
    void insert(Medium medium) {
        recorder->insert(std::move(medium));
        drive->mediaChanged();
    }

    /// Makes a file of noise.
    std::string makeSource(std::uint64_t bytes) {
        std::array<char, 32> name = {};
        std::snprintf(name.data(), name.size(), "source%04u", ++_sources);
        return sources.write(name.data(),
                             rawNoise((bytes + 3) / 4, _sources).substr(0, std::size_t(bytes)));
    }

    /// Audio tracks with these numbers of sectors of noise, each after two seconds of silence.
    DRLayout audio(std::initializer_list<std::uint32_t> sectors) {
        std::vector<std::string> paths;
        for (const std::uint32_t length : sectors)
            paths.push_back(makeSource(std::uint64_t(length) * audioSectorSize));
        return audioLayout(*service, paths);
    }
    /// A data disc with one file of `bytes` bytes.
    DRLayout data(std::uint64_t bytes) { return dataLayout(*service, {makeSource(bytes)}); }

    std::shared_ptr<DRBurn> makeBurn() const { return service->burnForDevice(drive); }
    std::unique_ptr<BurnLog> observe(const std::shared_ptr<DRBurn>& burn) const {
        return std::make_unique<BurnLog>(loops->currentCenter(), burn.get());
    }
    /// Burns with these settings and returns the records.
    std::unique_ptr<BurnLog> burn(const DRLayout& layout, Dictionary properties = {}) {
        const auto burn = makeBurn();
        auto log = observe(burn);
        burn->setProperties(std::move(properties));
        burn->writeLayout(layout);
        EXPECT_TRUE(loops->runUntil([&] { return log->isOver(); }));
        return log;
    }

    /// The number of times that a command was sent, by its first byte.
    std::size_t countOf(std::uint8_t operation) const {
        const std::vector<std::uint8_t> sent = recorder->commands();
        return std::size_t(std::count(sent.begin(), sent.end(), operation));
    }

    /// Expects the node to be closed and the tray unlocked, as it must be whenever nothing is
    /// burned.
    void expectReleased() const {
        EXPECT_EQ(recorder->openCount(), 0);
        EXPECT_FALSE(recorder->isTrayLocked());
    }

    OpticalBed bed;
    std::shared_ptr<EmulatedRecorder> recorder;
    std::shared_ptr<StepLoops> loops = std::make_shared<StepLoops>();
    std::shared_ptr<RawSound> sound = std::make_shared<RawSound>();
    std::chrono::steady_clock::time_point time = std::chrono::steady_clock::now();
    TemporaryFolder sources;
    std::shared_ptr<EngineRecorder> service;
    std::shared_ptr<OpticalDrive> drive;

private:
    std::shared_ptr<EngineRecorder> makeService(Listing listing) const {
        DriveLists lists;
        if (listing == Listing::ByUdev)
            lists.push_back(
                std::make_shared<OpticalDrives>(loops, OpticalDrivesParts{.isUdevRunning = true}));
        return std::make_shared<EngineRecorder>(RecorderServices{loops, sound, makeJolietDiscs()},
                                                std::move(lists));
    }
    std::shared_ptr<OpticalDrive> listedDrive() const {
        return std::dynamic_pointer_cast<OpticalDrive>(service->devices().at(0));
    }

    std::uint32_t _sources = 0;
};

} // namespace quarner
