// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/EngineBurn.h"

#include <algorithm>
#include <utility>

#include "adapters/engine/BurnRun.h"
#include "adapters/engine/PCMTrackSource.h"

namespace quarner {
namespace {

DiscContent audioContent(const DRLayout& layout, const std::shared_ptr<PCMService>& pcm) {
    DiscContent content;
    content.plan = planAudioDisc(layout);
    content.sources = audioSources(layout, pcm);
    return content;
}

bool isData(const std::shared_ptr<const DRTrack>& track) { return track && track->rootFolder; }

DiscContent contentOf(const DRLayout& layout, const std::shared_ptr<PCMService>& pcm,
                      const std::shared_ptr<DataDiscService>& dataDiscs, const StopSignal& stop) {
    if (std::none_of(layout.begin(), layout.end(), isData))
        return audioContent(layout, pcm);
    if (layout.size() > 1 || !dataDiscs)
        throw BurnFailure(DRError::WrongMedia, "this recorder writes one data track or audio");
    return dataDiscs->contentOf(*layout.front(), stop);
}

} // namespace

EngineBurn::EngineBurn(BurnServices services, std::shared_ptr<BurnTarget> target)
    : _services(std::move(services)), _target(std::move(target)) {}

void EngineBurn::setProperties(Dictionary properties) {
    const std::lock_guard lock(_mutex);
    _properties = std::move(properties);
}

Dictionary EngineBurn::properties() {
    const std::lock_guard lock(_mutex);
    return _properties;
}

bool EngineBurn::start() {
    const std::lock_guard lock(_mutex);
    return !std::exchange(_isStarted, true);
}

void EngineBurn::writeLayout(DRLayout layout) {
    const std::shared_ptr<RunLoops> runLoops = _services.runLoops.lock();
    if (!runLoops || !start())
        return;
    const StatusReporter report(runLoops->currentCenter(), shared_from_this());
    if (!_target) {
        report.failed(BurnFailure(DRError::DeviceVanished, "the drive is not attached"));
        return;
    }
    const auto run = std::make_shared<BurnRun>(_target, _stop, report, _services.clock,
                                               burnSettings(properties()));
    const auto work = [run, layout = std::move(layout), pcm = _services.pcm,
                       dataDiscs = _services.dataDiscs, stop = _stop] {
        run->perform([&] { return contentOf(layout, pcm, dataDiscs, *stop); });
    };
    if (!_services.threads->run(work, _stop))
        report.failed(BurnFailure(DRError::Internal, "no thread for the burn"));
}

void EngineBurn::abort() {
    const std::lock_guard lock(_mutex);
    if (_isStarted)
        _stop->request(DRError::UserCanceled);
}

} // namespace quarner
