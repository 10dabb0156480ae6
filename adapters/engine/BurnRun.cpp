// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/BurnRun.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "adapters/engine/Verifier.h"
#include "quarner/platform/DRKeys.h"

namespace quarner {
namespace {

/// Runs a function when a scope is left, also by an exception.
template <typename Function>
class AtEnd {
public:
    explicit AtEnd(Function function) : _function(std::move(function)) {}
    ~AtEnd() { _function(); }
    AtEnd(const AtEnd&) = delete;
    AtEnd& operator=(const AtEnd&) = delete;

private:
    Function _function;
};

} // namespace

BurnRun::BurnRun(std::shared_ptr<BurnTarget> target, std::shared_ptr<StopSignal> stop,
                 StatusReporter report, Clock clock, BurnSettings settings)
    : _target(std::move(target)), _stop(std::move(stop)), _report(std::move(report)),
      _clock(std::move(clock)), _settings(settings) {}

void BurnRun::perform(const ContentMaker& makeContent) {
    if (const std::optional<BurnFailure> failure = attempt(makeContent))
        _report.failed(*failure);
    else
        _report.state(DRStatusStateDone); // the last phase has already reported 100 %
}

std::optional<BurnFailure> BurnRun::attempt(const ContentMaker& makeContent) {
    try {
        burn(makeContent);
        return std::nullopt;
    } catch (const BurnFailure& failure) {
        return failure;
    } catch (const std::exception& error) {
        return BurnFailure(DRError::Internal, error.what());
    }
}

void BurnRun::burn(const ContentMaker& makeContent) {
    report(DRStatusStatePreparing);
    DiscContent content = makeContent();
    std::optional<std::uint64_t> written;
    _writer = _target->claim(content.plan, _settings, _stop);
    const AtEnd release([&] {
        _writer.reset();
        _target->release(written);
    });
    burnContent(content);
    written = content.plan.sectors();
}

void BurnRun::burnContent(DiscContent& content) {
    for (const auto& source : content.sources)
        source->check();
    _writer->openSession(content.plan);
    report(DRStatusStateSessionOpen);
    writeDisc(content);
    _writer->closeSession();
    report(DRStatusStateSessionClose);
    report(DRStatusStateFinishing);
    _writer->finish();
    if (_settings.verify)
        verify(content.plan);
    _stop->seal();
    _writer->commit();
}

void BurnRun::writeDisc(DiscContent& content) {
    const unsigned threads = std::max(1U, std::thread::hardware_concurrency());
    ReadAhead source(content.plan, content.sources, threads, _stop->token());
    startPhase(content.plan);
    _checksums.emplace(content.plan.sectorSize);
    _sectorSize = content.plan.sectorSize;
    _tracks = content.plan.tracks.size();
    for (_track = 1; _track <= _tracks; ++_track)
        writeTrack(content.plan.tracks[_track - 1], source);
    _checksums->finish();
}

void BurnRun::writeTrack(const TrackPlan& track, ReadAhead& source) {
    reportTrack(DRStatusStateTrackOpen);
    reportTrack(DRStatusStateTrackWrite, progressToReport());
    writeSilence(track.preGap);
    while (true) {
        const std::span<const std::byte> sectors = source.next();
        _stop->throwIfRequested();
        if (sectors.empty())
            break;
        write(sectors);
    }
    reportTrack(DRStatusStateTrackClose);
}

void BurnRun::writeSilence(std::uint64_t sectors) {
    const std::vector<std::byte> silence(std::size_t(ReadAhead::sectorsPerBuffer) * _sectorSize);
    while (sectors > 0) {
        const std::uint64_t part = std::min<std::uint64_t>(sectors, ReadAhead::sectorsPerBuffer);
        _stop->throwIfRequested();
        write(std::span(silence).first(std::size_t(part * _sectorSize)));
        sectors -= part;
    }
}

void BurnRun::write(std::span<const std::byte> sectors) {
    _writer->write(sectors);
    _checksums->add(sectors);
    _meter->advance(sectors.size() / _sectorSize);
    if (const std::optional<BurnProgress> progress = progressToReport())
        reportTrack(DRStatusStateTrackWrite, progress);
}

void BurnRun::verify(const DiscPlan& plan) {
    startPhase(plan);
    report(DRStatusStateVerifying, progressToReport());
    Verifier verifier(plan, *_checksums, *_writer, *_stop, [this](std::uint64_t sectors) {
        _meter->advance(sectors);
        if (const std::optional<BurnProgress> progress = progressToReport())
            _report.state(DRStatusStateVerifying, progress);
    });
    _writer->beginVerification();
    verifier.verify();
}

void BurnRun::startPhase(const DiscPlan& plan) { _meter.emplace(_clock, plan.sectors()); }

/// A receiver of a record may stop the burn before the next step.
void BurnRun::report(const char* state, std::optional<BurnProgress> progress) const {
    _report.state(state, progress);
    _stop->throwIfRequested();
}

void BurnRun::reportTrack(const char* state, std::optional<BurnProgress> progress) const {
    _report.trackState(state, _track, _tracks, progress);
    _stop->throwIfRequested();
}

std::optional<BurnProgress> BurnRun::progressToReport() {
    const std::optional<double> fraction = _meter->fractionToReport();
    if (!fraction)
        return std::nullopt;
    const double speed = _meter->speed();
    _target->speedChanged(speed);
    return BurnProgress{*fraction, speed};
}

} // namespace quarner
