// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "adapters/engine/EngineRecorder.h"
#include "adapters/isofs/JolietDiscs.h"
#include "adapters/optical/OpticalDrives.h"
#include "quarner/platform/DRKeys.h"
#include "tests/recorder/AudioStage.h"
#include "tests/recorder/DataStage.h"
#include "tests/support/optical/OpticalBed.h"

namespace quarner {

/// The recorder for real drives on a machine with one emulated drive.
class OpticalStage : public SourceStage {
public:
    std::shared_ptr<RecordingService> service() override { return _recorder; }
    std::shared_ptr<DRDevice> drive() override { return _drive; }
    std::uint64_t blocksOnDisc() override { return static_cast<std::uint64_t>(disc().end()); }
    void insertBlank() override {
        emulated->insert(Medium::blankCDR());
        settle();
    }
    void unplug() override { emulated->unplug(); }
    void plugAnother() override {
        waitFor(DRDeviceAppearedNotification, "QUARNER ANOTHER",
                [&] { bed.plug({.product = "ANOTHER"}); });
    }
    void settle() override;
    bool sparesDiscs() const override { return false; }
    void shutDown() override { _recorder.reset(); }

    /// The disc that the drive has written.
    Medium disc() const { return emulated->writtenDisc().value(); }

    OpticalBed bed;
    const std::shared_ptr<EmulatedRecorder> emulated = bed.plug();

protected:
    explicit OpticalStage(std::shared_ptr<DataDiscService> dataDiscs)
        : _recorder(std::make_shared<EngineRecorder>(
              RecorderServices{sharedLoops(), sound, std::move(dataDiscs)},
              DriveLists{std::make_shared<OpticalDrives>(
                  sharedLoops(), OpticalDrivesParts{.isUdevRunning = true})})),
          _drive(_recorder->devices().at(0)) {}

    /// The content of a track without its pre-gap and run-out.
    static std::string bytesOf(const Medium& medium, const MediumTrack& track) {
        const std::vector<std::byte> bytes = medium.contentOf(track);
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }

private:
    void waitFor(const char* notification, const std::string& drive,
                 const std::function<void()>& event);

    std::shared_ptr<EngineRecorder> _recorder;
    std::shared_ptr<DRDevice> _drive;
};

/// Events are reported in order: after those of another drive, all earlier ones have been reported.
inline void OpticalStage::settle() {
    bed.finishEvents();
    std::shared_ptr<EmulatedRecorder> marker;
    waitFor(DRDeviceAppearedNotification, "QUARNER MARKER",
            [&] { marker = bed.plug({.product = "MARKER"}); });
    waitFor(DRDeviceDisappearedNotification, "QUARNER MARKER", [&] { marker->unplug(); });
}

/// Calls `event`, and turns the run loop until the drive's notification arrives.
inline void OpticalStage::waitFor(const char* notification, const std::string& drive,
                                  const std::function<void()>& event) {
    bool isHeard = false;
    const auto center = loops().currentCenter();
    center->addObserver(
        this,
        [&](const DRNotification& heard) {
            const auto device = std::dynamic_pointer_cast<DRDevice>(heard.object);
            isHeard = isHeard || (device && device->displayName() == drive);
        },
        notification, nullptr);
    event();
    EXPECT_TRUE(loops().runUntil([&] { return isHeard; })) << drive;
    center->removeObserver(this, notification, nullptr);
}

class AudioOpticalStage : public AudioStage<OpticalStage> {
public:
    AudioOpticalStage() : AudioStage(nullptr) {}

    std::vector<std::string> contentsOnDisc() override {
        const Medium medium = disc();
        std::vector<std::string> contents;
        for (const MediumTrack& track : medium.tracks)
            contents.push_back(bytesOf(medium, track));
        return contents;
    }
};

class DataOpticalStage : public DataStage<OpticalStage> {
public:
    DataOpticalStage() : DataStage(makeJolietDiscs()) {}

    std::vector<std::string> contentsOnDisc() override {
        const Medium medium = disc();
        return filesOf(bytesOf(medium, medium.tracks.at(0)));
    }
};

} // namespace quarner
