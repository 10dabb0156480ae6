// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "quarner/platform/DRKeys.h"
#include "tests/recorder/AudioStage.h"
#include "tests/recorder/DataStage.h"
#include "tests/support/optical/OpticalStage.h"

namespace quarner {

/// The recorder for real drives on a machine with one emulated drive.
class OpticalRecorderStage : public WritingStage {
public:
    std::shared_ptr<RecordingService> service() override { return _machine.service; }
    TurnedLoops& loops() override { return *_machine.loops; }
    std::shared_ptr<DRDevice> drive() override { return _machine.drive; }
    std::string makeSource(std::uint64_t pairs) override {
        return _machine.makeSource(pairs * RawSound::bytesPerPair);
    }
    std::uint64_t blocksOnDisc() override { return static_cast<std::uint64_t>(disc().end()); }
    void insertBlank() override {
        _machine.recorder->insert(Medium::blankCDR());
        settle();
    }
    void unplug() override { _machine.recorder->unplug(); }
    void plugAnother() override {
        waitFor(DRDeviceAppearedNotification, "QUARNER ANOTHER",
                [&] { _machine.bed.plug({.product = "ANOTHER"}); });
    }
    void settle() override;
    bool sparesDiscs() const override { return false; }
    void shutDown() override { _machine.service.reset(); }

    /// The disc that the drive has written.
    Medium disc() const { return _machine.recorder->writtenDisc().value(); }

protected:
    /// The content of a track without its pre-gap and run-out.
    static std::string bytesOf(const Medium& medium, const MediumTrack& track) {
        const std::vector<std::byte> bytes = medium.contentOf(track);
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }

private:
    void waitFor(const char* notification, const std::string& drive,
                 const std::function<void()>& event);

    OpticalStage _machine{{}, OpticalStage::Listing::ByUdev};
};

/// Events are reported in order: after those of another drive, all earlier ones have been reported.
inline void OpticalRecorderStage::settle() {
    _machine.bed.finishEvents();
    std::shared_ptr<EmulatedRecorder> marker;
    waitFor(DRDeviceAppearedNotification, "QUARNER MARKER",
            [&] { marker = _machine.bed.plug({.product = "MARKER"}); });
    waitFor(DRDeviceDisappearedNotification, "QUARNER MARKER", [&] { marker->unplug(); });
}

/// Calls `event`, and turns the run loop until the drive's notification arrives.
inline void OpticalRecorderStage::waitFor(const char* notification, const std::string& drive,
                                          const std::function<void()>& event) {
    bool isHeard = false;
    const auto center = service()->currentRunLoopCenter();
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

class AudioOpticalStage : public AudioStage<OpticalRecorderStage> {
public:
    std::vector<std::string> contentsOnDisc() override {
        const Medium medium = disc();
        std::vector<std::string> contents;
        for (const MediumTrack& track : medium.tracks)
            contents.push_back(bytesOf(medium, track));
        return contents;
    }
};

class DataOpticalStage : public DataStage<OpticalRecorderStage> {
public:
    std::vector<std::string> contentsOnDisc() override {
        const Medium medium = disc();
        return filesOf(bytesOf(medium, medium.tracks.at(0)));
    }
};

} // namespace quarner
