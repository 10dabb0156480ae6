// SPDX-License-Identifier: LGPL-2.1-or-later
#include <array>
#include <cmath>
#include <limits>

#include "quarner/audio/AudioCDBurner.h"
#include "quarner/platform/DRErrors.h"
#include "quarner/platform/DRKeys.h"
#include "quarner/platform/Platform.h"

namespace quarner {
namespace {

std::string textUnder(const Dictionary& dictionary, const char* key) {
    const std::string* text = valueFor(dictionary, key).asString();
    return text == nullptr ? std::string() : *text;
}

/// Returns the seconds left: the remaining blocks over blocks per second. Returns 0 if the speed is
/// 0 or the result is not a positive number, and the largest number if the result exceeds it.
std::uint64_t timeLeft(std::uint64_t blocks, float speed, float fraction) {
    constexpr float twoTo64 = 18446744073709551616.0F;
    const float left = (static_cast<float>(blocks) / speed) * (1.0F - fraction);
    if (!std::isfinite(left) || left <= 0.0F)
        return 0;
    if (left >= twoTo64)
        return std::numeric_limits<std::uint64_t>::max();
    return static_cast<std::uint64_t>(left);
}

BurnErrorInfo infoOf(const Dictionary& error) {
    BurnErrorInfo info;
    info.path = textUnder(error, DRErrorStatusFileKey);
    info.message = textUnder(error, DRErrorStatusErrorInfoKey);
    if (const Value& sector = valueFor(error, DRErrorStatusSectorKey); sector.isNumber())
        info.sector = sector.asUInt64();
    return info;
}

using StateReport = void (QuarnDelegate::*)();
using TrackReport = void (QuarnDelegate::*)(std::int64_t, std::int64_t);

constexpr std::array<std::pair<std::string_view, StateReport>, 5> stateReports = {{
    {DRStatusStatePreparing, &QuarnDelegate::burnProgressIsPreparing},
    {DRStatusStateSessionClose, &QuarnDelegate::burnProgressDidCloseSession},
    {DRStatusStateFinishing, &QuarnDelegate::burnProgressIsFinishing},
    {DRStatusStateVerifying, &QuarnDelegate::burnProgressIsVerifying},
    {DRStatusStateDone, &QuarnDelegate::burnProgressDidDone},
}};

constexpr std::array<std::pair<std::string_view, TrackReport>, 3> trackReports = {{
    {DRStatusStateTrackOpen, &QuarnDelegate::burnProgressIsOpeningTrack},
    {DRStatusStateTrackWrite, &QuarnDelegate::burnProgressIsWriteingTrack},
    {DRStatusStateTrackClose, &QuarnDelegate::burnProgressDidCloseTrack},
}};

template <typename Reports>
auto reportFor(const Reports& reports, std::string_view state) {
    for (const auto& [name, report] : reports)
        if (name == state)
            return report;
    return decltype(reports[0].second){};
}

} // namespace

void AudioCDBurner::burnStatusDidChange(const DRNotification& notification) {
    const std::string state = textUnder(notification.userInfo, DRStatusStateKey);
    reportProgress(notification.userInfo, state);
    reportState(notification.userInfo, state);
    if (state == DRStatusStateDone || state == DRStatusStateFailed)
        endBurn(notification);
}

void AudioCDBurner::reportProgress(const Dictionary& status, const std::string& state) {
    const float fraction = valueFor(status, DRStatusPercentCompleteKey).asFloat();
    if (!(fraction > 0.0F) || state == DRStatusStatePreparing || state == DRStatusStateTrackOpen)
        return;
    const float speed = valueFor(status, DRStatusCurrentSpeedKey).asFloat();
    tell(&QuarnDelegate::burnProgressDidChanaged, static_cast<double>(fraction),
         timeLeft(_estimateTotalLength, speed, fraction));
    // "%@ -- %f, %@"
    currentPlatform()->log->log(state + " -- " + Value(fraction).description() + ", " +
                                Value(status).description());
}

void AudioCDBurner::reportState(const Dictionary& status, const std::string& state) {
    if (const StateReport report = reportFor(stateReports, state))
        tell(report);
    else if (const TrackReport trackReport = reportFor(trackReports, state))
        tell(trackReport, valueFor(status, DRStatusCurrentTrackKey).asInt64(),
             valueFor(status, DRStatusTotalTracksKey).asInt64());
    else if (state == DRStatusStateFailed)
        reportFailure(status);
    else
        currentPlatform()->log->log("currentStatus:" + state);
}

void AudioCDBurner::reportFailure(const Dictionary& status) {
    const Dictionary* error = valueFor(status, DRErrorStatusKey).asDictionary();
    const Dictionary noError;
    const Dictionary& about = error == nullptr ? noError : *error;
    const std::uint32_t code = valueFor(about, DRErrorStatusErrorKey).asUInt32();
    if (code == static_cast<std::uint32_t>(DRError::UserCanceled))
        tell(&QuarnDelegate::burnProgressDidCanceled);
    else
        tell(&QuarnDelegate::burnProgressDidError,
             BurnError{burnErrorDomain, static_cast<std::int32_t>(code), infoOf(about)});
}

void AudioCDBurner::endBurn(const DRNotification& notification) {
    currentPlatform()->recording->currentRunLoopCenter()->removeObserver(
        this, DRBurnStatusChangedNotification, notification.object.get());
    _burner.reset();
}

} // namespace quarner
