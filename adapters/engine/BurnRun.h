// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <optional>
#include <span>

#include "adapters/engine/BurnFailure.h"
#include "adapters/engine/BurnSettings.h"
#include "adapters/engine/BurnTarget.h"
#include "adapters/engine/Checksums.h"
#include "adapters/engine/DiscContent.h"
#include "adapters/engine/ProgressMeter.h"
#include "adapters/engine/ReadAhead.h"
#include "adapters/engine/SectorWriter.h"
#include "adapters/engine/StatusReporter.h"
#include "adapters/engine/StopSignal.h"

namespace quarner {

/// Makes the content when the burn begins, on the burn thread. Throws `BurnFailure`.
using ContentMaker = std::function<DiscContent()>;

/// One burn from its start to its last record, on one thread. Success, failure and cancellation
/// take the same path.
class BurnRun {
public:
    BurnRun(std::shared_ptr<BurnTarget> target, std::shared_ptr<StopSignal> stop,
            StatusReporter report, Clock clock, BurnSettings settings);

    /// Burns and reports, up to the Done or Failed record. Never throws.
    void perform(const ContentMaker& makeContent);

private:
    std::optional<BurnFailure> attempt(const ContentMaker& makeContent);
    void burn(const ContentMaker& makeContent);
    void burnContent(DiscContent& content);
    void writeDisc(DiscContent& content);
    void writeTrack(const TrackPlan& track, ReadAhead& source);
    void writeSilence(std::uint64_t sectors);
    void write(std::span<const std::byte> sectors);
    void verify(const DiscPlan& plan);

    void startPhase(const DiscPlan& plan);
    void report(const char* state, std::optional<BurnProgress> progress = std::nullopt) const;
    void reportTrack(const char* state, std::optional<BurnProgress> progress = std::nullopt) const;
    std::optional<BurnProgress> progressToReport();

    const std::shared_ptr<BurnTarget> _target;
    const std::shared_ptr<StopSignal> _stop;
    const StatusReporter _report;
    const Clock _clock;
    const BurnSettings _settings;

    std::unique_ptr<SectorWriter> _writer;
    std::optional<Checksums> _checksums;
    std::optional<ProgressMeter> _meter;
    std::uint32_t _sectorSize = 0;
    std::size_t _track = 0;
    std::size_t _tracks = 0;
};

} // namespace quarner
