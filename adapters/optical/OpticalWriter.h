// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/engine/BurnSettings.h"
#include "adapters/engine/SectorWriter.h"
#include "adapters/engine/StopSignal.h"
#include "adapters/optical/BurnJob.h"
#include "adapters/optical/BurnLibrary.h"
#include "adapters/optical/DriveRecord.h"
#include "adapters/optical/GrabbedDrive.h"
#include "adapters/optical/SampleOffset.h"
#include "adapters/optical/SectorPipe.h"

namespace quarner {

/// Writes a disc in a drive, session at once, and reads it back. A rewritable disc that is not
/// blank is blanked when the session is opened. The first sector reaches the drive with the first
/// `write`: a burn that ends earlier leaves the disc as it is, or blank.
///
/// The read-back of an audio disc is put right by the drive's sample offset: see `SampleOffset` for
/// the samples at one edge of the disc that no drive can show.
class OpticalWriter : public SectorWriter {
public:
    /// The drive's disc can take the plan. `stop` ends every wait but that for the end of a
    /// blanking or of the closing of the disc.
    OpticalWriter(std::unique_ptr<GrabbedDrive> drive, DriveRecord record, BurnSettings settings,
                  bool needsBlanking, std::shared_ptr<StopSignal> stop);
    /// Stops what the drive does, unlocks the tray and lets go of the drive.
    ~OpticalWriter() override;

    void openSession(const DiscPlan& plan) override;
    void write(std::span<const std::byte> sectors) override;
    void closeSession() override;
    void finish() override;
    void readBack(std::uint64_t firstSector, std::span<std::byte> buffer) override;
    void verifyTableOfContents() override;
    void commit() override {}

private:
    bool isAudio() const { return _plan.sectorSize == audioSectorSize; }
    std::span<const std::byte> nextStretch(std::span<const std::byte> sectors, bool& isGap);
    void give(std::span<const std::byte> sectors);
    bool readSectors(std::int64_t firstSector, std::span<std::byte> buffer);
    bool readSome(std::int64_t firstSector, std::span<std::byte> buffer);
    void findOffset();
    [[noreturn]] void fail(DRError error, const std::string& attempt);

    const std::unique_ptr<GrabbedDrive> _drive;
    const DriveRecord _record;
    const BurnSettings _settings;
    const bool _needsBlanking;
    const std::shared_ptr<StopSignal> _stop;

    DiscPlan _plan;
    SectorPipe _pipe;
    std::unique_ptr<BurnJob> _job;
    bool _isStarted = false;
    BurnLibrary::Moment _jobStart = 0;
    /// The stretches of the disc that are left to be written: each track's pre-gap and its content.
    struct Stretch {
        bool isGap;
        std::uint64_t bytes;
    };
    std::vector<Stretch> _left; ///< the next one last
    std::optional<SampleOffset> _sound;
    std::int64_t _offset = 0;
};

} // namespace quarner
