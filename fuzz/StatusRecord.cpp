// SPDX-License-Identifier: LGPL-2.1-or-later
#include <cmath>
#include <memory>

#include "fuzz/Input.h"
#include "fuzz/Target.h"
#include "fuzz/Values.h"
#include "quarner/audio/AudioCDBurner.h"
#include "quarner/device/QuarnerDevice.h"
#include "quarner/platform/DRKeys.h"
#include "quarner/platform/DRTrack.h"
#include "quarner/platform/DiscFormat.h"
#include "quarner/platform/NullPlatform.h"

namespace quarner::fuzz {
namespace {

/// A drive whose dictionaries hold anything.
class AnyDrive : public DRDevice {
public:
    Dictionary drive;
    Dictionary now;
    DRMSF time = DRMSF::msf();

    std::string displayName() const override { return "Drive"; }
    Dictionary info() const override { return drive; }
    Dictionary status() const override { return now; }
    bool mediaIsPresent() const override { return true; }
    bool mediaIsTransitioning() const override { return false; }
    bool mediaIsBlank() const override { return true; }
    bool mediaIsAppendable() const override { return false; }
    bool mediaIsErasable() const override { return false; }
    bool mediaIsOverwritable() const override { return false; }
    std::optional<DRMSF> mediaSpaceUsed() const override { return time; }
    std::optional<DRMSF> mediaSpaceFree() const override { return time; }
    bool ejectMedia() override { return true; }
};

/// The null service with one drive.
class OneDrive : public RecordingService {
public:
    const std::shared_ptr<AnyDrive> drive = std::make_shared<AnyDrive>();

    std::vector<std::shared_ptr<DRDevice>> devices() override { return {drive}; }
    std::shared_ptr<DRBurn> burnForDevice(std::shared_ptr<DRDevice> device) override {
        return _null->burnForDevice(std::move(device));
    }
    std::shared_ptr<DRTrack> trackForAudioFile(const std::string&) override { return nullptr; }
    std::shared_ptr<DRNotificationCenter> currentRunLoopCenter() override {
        return _null->currentRunLoopCenter();
    }

private:
    const std::shared_ptr<RecordingService> _null = nullPlatform().recording;
};

AnyDrive& installedDrive() {
    static const auto service = [] {
        auto made = std::make_shared<OneDrive>();
        installPlatform({.recording = made});
        return made;
    }();
    return *service->drive;
}

/// Counts the reports by kind.
class ReportCounter : public QuarnDelegate {
public:
    int progress = 0;
    int states = 0;
    int ends = 0;
    double fraction = 1;

    void burnProgressDidChanaged(double done, std::uint64_t) override {
        ++progress;
        fraction = done;
    }
    void burnProgressIsPreparing() override { ++states; }
    void burnProgressIsOpeningTrack(std::int64_t, std::int64_t) override { ++states; }
    void burnProgressIsWriteingTrack(std::int64_t, std::int64_t) override { ++states; }
    void burnProgressDidCloseTrack(std::int64_t, std::int64_t) override { ++states; }
    void burnProgressDidCloseSession() override { ++states; }
    void burnProgressIsFinishing() override { ++states; }
    void burnProgressIsVerifying() override { ++states; }
    void burnProgressDidDone() override { ++ends; }
    void burnProgressDidCanceled() override { ++ends; }
    void burnProgressDidError(const BurnError&) override { ++ends; }
};

/// A burner that can be given a track without a file.
class OneTrackBurner : public AudioCDBurner {
public:
    explicit OneTrackBurner(std::uint64_t blocks) {
        const auto track = std::make_shared<DRTrack>();
        track->setEstimateLength(blocks);
        _content.append(track);
    }
    bool isBurning() const { return _burner != nullptr; }
};

bool isEnd(const Dictionary& record) {
    const std::string* const state = valueFor(record, DRStatusStateKey).asString();
    return state != nullptr && (*state == DRStatusStateDone || *state == DRStatusStateFailed);
}

void checkRecord(const std::shared_ptr<OneTrackBurner>& burner, const Dictionary& record) {
    ReportCounter reports;
    burner->setDelegate(&reports);
    burner->burnStatusDidChange({DRBurnStatusChangedNotification, nullptr, record});
    burner->setDelegate(nullptr);
    require(reports.progress <= 1 && reports.states + reports.ends <= 1,
            "a record gives at most one progress report and one state report");
    require(reports.fraction > 0, "only a fraction above 0 is reported");
    require((reports.ends == 1) == isEnd(record), "a burn ends with its last record");
    require(!isEnd(record) || !burner->isBurning(), "no burn object is kept after the end");
}

void checkDisc(const QuarnerDevice& device) {
    require(device.freeSizeOfDisc() % dataBlockSize == 0 &&
                device.usedSizeOfDisc() % dataBlockSize == 0,
            "sizes are whole blocks");
    require(!device.stringForFreeSizeOfDisc().empty() && !device.stringForUsedSizeOfDisc().empty(),
            "a size has a text");
    require(!device.stringForFreeTimeOfDisc().empty() && !device.stringForUsedTimeOfDisc().empty(),
            "a time has a text");
    static_cast<void>(device.isCDDisc());
    static_cast<void>(device.cdBurnEnabled());
    static_cast<void>(device.currentBurnSpeed());
    static_cast<void>(device.availableBurnSpeeds());
}

} // namespace
} // namespace quarner::fuzz

/// The dictionaries of a drive, the length of what is burned, and the records of the burn.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quarner::fuzz;
    AnyDrive& drive = installedDrive();
    Input input(data, size);
    drive.time = quarner::DRMSF::msfWithFrames(input.number<std::uint32_t>());
    const auto blocks = input.number<std::uint64_t>();
    drive.drive = dictionaryFrom(input);
    drive.now = dictionaryFrom(input);
    const quarner::QuarnerDevice device("Drive");
    checkDisc(device);
    const auto burner = std::make_shared<OneTrackBurner>(blocks);
    burner->burnWithDevice(device, "Disc");
    while (!input.isEmpty())
        checkRecord(burner, dictionaryFrom(input));
    return 0;
}
