// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/drive/BurnJob.h"
#include "adapters/drive/BurnLibrary.h"
#include "adapters/drive/GrabbedDrive.h"
#include "adapters/drive/SampleOffset.h"
#include "adapters/drive/SectorPipe.h"
#include "adapters/engine/BurnSettings.h"
#include "adapters/engine/SectorWriter.h"
#include "adapters/engine/StopSignal.h"
#include "adapters/worker/DriveRecord.h"

namespace quarner {

/// Writes a disc session-at-once and reads it back. A rewritable disc that is not blank is blanked
/// by `openSession`. The first `write` sends the first sector to the drive: a burn that ends
/// earlier leaves the disc unchanged, or blank.
///
/// The read-back of an audio disc is corrected by the drive's sample offset: see `SampleOffset` for
/// the few samples at one edge of the disc that cannot be read.
class OpticalWriter : public SectorWriter {
public:
    /// The disc must be able to take the plan. `stop` ends every wait, except those for the end of
    /// blanking and of closing the disc.
    OpticalWriter(std::unique_ptr<GrabbedDrive> drive, DriveRecord record, BurnSettings settings,
                  bool needsBlanking, std::shared_ptr<StopSignal> stop);
    /// Stops the drive, unlocks the tray and releases the drive.
    ~OpticalWriter() override;

    void openSession(const DiscPlan& plan) override;
    void write(std::span<const std::byte> sectors) override;
    void closeSession() override;
    void finish() override;
    void readBack(std::uint64_t firstSector, std::span<std::byte> buffer) override;
    void beginVerification() override;
    void commit() override {}

private:
    bool isAudio() const { return _plan.sectorSize == audioSectorSize; }
    std::span<const std::byte> nextPart(std::span<const std::byte> sectors, bool& isGap);
    void give(std::span<const std::byte> sectors);
    bool readSectors(std::int64_t firstSector, std::span<std::byte> buffer);
    bool readSome(std::int64_t firstSector, std::span<std::byte> buffer);
    void findOffset();
    [[noreturn]] void fail(DRError error, const std::string& attempt,
                           std::optional<std::uint64_t> sector = std::nullopt);

    // `_job` uses `_drive` and `_pipe`: it is declared after them, so that it is destroyed first.
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
    /// The parts of the disc that are still to be written: each track's pre-gap and its content.
    struct Part {
        bool isGap;
        std::uint64_t bytes;
    };
    std::vector<Part> _left; ///< the next part is the last element
    std::optional<SampleOffset> _sound;
    std::int64_t _offset = 0;
};

} // namespace quarner
