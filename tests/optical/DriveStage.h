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

#include "adapters/engine/EngineBurn.h"
#include "adapters/isofs/JolietDiscs.h"
#include "adapters/optical/OpticalDrive.h"
#include "adapters/posix/FileStamps.h"
#include "quarner/platform/DRFile.h"
#include "tests/recorder/BurnLog.h"
#include "tests/recorder/RawSound.h"
#include "tests/recorder/StepLoops.h"
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

/// An emulated recorder, its `OpticalDrive`, and burns of noise on it.
class DriveStage {
public:
    explicit DriveStage(const RecorderDescription& description = {})
        : recorder(bed.plug(description)), drive(makeDrive(*recorder)) {}
    ~DriveStage() {
        loops->setInStep(false);
        services.threads->shutDown();
    }
    DriveStage(const DriveStage&) = delete;
    DriveStage& operator=(const DriveStage&) = delete;

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

    std::string makeSource(std::uint64_t bytes) {
        std::array<char, 32> name = {};
        std::snprintf(name.data(), name.size(), "source%04u", ++_sources);
        return sources.write(name.data(),
                             rawNoise((bytes + 3) / 4, _sources).substr(0, std::size_t(bytes)));
    }

    /// Audio tracks with these numbers of sectors of noise, each after two seconds of silence.
    DRLayout audio(std::initializer_list<std::uint32_t> sectors) {
        DRLayout layout;
        for (const std::uint32_t length : sectors)
            layout.push_back(audioTrack(makeSource(std::uint64_t(length) * audioSectorSize)));
        return layout;
    }
    static std::shared_ptr<DRTrack> audioTrack(const std::string& path) {
        auto track = std::make_shared<DRTrack>();
        track->path = path;
        track->stamp = stampOfFile(path).value();
        track->sampleCount = track->stamp.size / RawSound::bytesPerPair;
        track->setLength(DRMSF::msfWithFrames(sectorsForSamples(track->sampleCount)));
        track->setPreGap(DRMSF::msfWithFrames(leadingGapSectors));
        return track;
    }

    /// A data disc with one file of `bytes` bytes.
    DRLayout data(std::uint64_t bytes) {
        const std::string path = makeSource(bytes);
        const auto root = std::make_shared<DRFolder>("Disc");
        root->setExplicitFilesystemMask(DRFilesystemMaskJoliet);
        root->addChild(std::make_shared<DRFile>(path, stampOfFile(path).value()));
        return {services.dataDiscs->trackForRootFolder(root)};
    }

    std::shared_ptr<EngineBurn> makeBurn() { return std::make_shared<EngineBurn>(services, drive); }
    std::unique_ptr<BurnLog> observe(const std::shared_ptr<EngineBurn>& burn) {
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
    std::chrono::steady_clock::time_point time = std::chrono::steady_clock::now();
    TemporaryFolder sources;
    BurnServices services = {.runLoops = loops,
                             .pcm = std::make_shared<RawSound>(),
                             .dataDiscs = makeJolietDiscs(),
                             .threads = std::make_shared<BurnThreads>(),
                             .clock = std::chrono::steady_clock::now};
    std::shared_ptr<OpticalDrive> drive;

private:
    std::uint32_t _sources = 0;
};

} // namespace quarner
