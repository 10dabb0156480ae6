// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/StatusReporter.h"

#include <utility>

#include "quarner/platform/DRKeys.h"
#include "quarner/platform/Platform.h"

namespace quarner {
namespace {

Dictionary recordWith(const char* state, const std::optional<BurnProgress>& progress) {
    Dictionary record = {{DRStatusStateKey, state}};
    if (progress) {
        record.emplace(DRStatusPercentCompleteKey, progress->fraction);
        record.emplace(DRStatusCurrentSpeedKey, progress->speed);
    }
    return record;
}

Dictionary dictionaryOf(const BurnFailure& failure) {
    Dictionary error = {{DRErrorStatusErrorKey, static_cast<std::uint32_t>(failure.error())},
                        {DRErrorStatusErrorInfoKey, failure.info()}};
    if (!failure.path().empty())
        error.emplace(DRErrorStatusFileKey, failure.path());
    if (failure.sector())
        error.emplace(DRErrorStatusSectorKey, *failure.sector());
    return error;
}

} // namespace

StatusReporter::StatusReporter(std::shared_ptr<RunLoopCenter> center,
                               std::shared_ptr<DRObject> burn)
    : _center(std::move(center)), _burn(std::move(burn)) {}

void StatusReporter::post(Dictionary record) const {
    _center->post({DRBurnStatusChangedNotification, _burn, std::move(record)});
}

void StatusReporter::state(const char* state, std::optional<BurnProgress> progress) const {
    post(recordWith(state, progress));
}

void StatusReporter::trackState(const char* state, std::size_t track, std::size_t tracks,
                                std::optional<BurnProgress> progress) const {
    Dictionary record = recordWith(state, progress);
    record.emplace(DRStatusCurrentTrackKey, track);
    record.emplace(DRStatusTotalTracksKey, tracks);
    post(std::move(record));
}

void StatusReporter::failed(const BurnFailure& failure) const {
    if (failure.error() != DRError::UserCanceled)
        currentPlatform()->log->log("burn failed: " + failure.info());
    Dictionary record = recordWith(DRStatusStateFailed, std::nullopt);
    record.emplace(DRErrorStatusKey, dictionaryOf(failure));
    post(std::move(record));
}

} // namespace quarner
