// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/ProgressMeter.h"

#include <utility>

namespace quarner {
namespace {

/// The least time between two marks, so that their number does not grow with the speed.
constexpr std::chrono::milliseconds markInterval{50};

} // namespace

ProgressMeter::ProgressMeter(Clock clock, std::uint64_t totalBlocks)
    : _clock(std::move(clock)), _total(totalBlocks), _latest{_clock(), 0} {
    _marks.push_back(_latest);
}

void ProgressMeter::advance(std::uint64_t blocks) {
    _done += blocks;
    _latest = {_clock(), _done};
    if (_latest.time - _marks.back().time >= markInterval)
        _marks.push_back(_latest);
    while (_marks.size() > 1 && _latest.time - _marks[1].time >= speedWindow)
        _marks.pop_front();
}

std::optional<double> ProgressMeter::fractionToReport() {
    const bool isEnd = _done == _total;
    const bool isTooSoon = _reported && _latest.time - *_reported < reportInterval;
    if (isEnd ? _isEndReported : isTooSoon)
        return std::nullopt;
    _reported = _latest.time;
    _isEndReported = isEnd;
    return isEnd ? 1.0 : static_cast<double>(_done) / static_cast<double>(_total);
}

double ProgressMeter::speed() const {
    const std::chrono::duration<double> time = _latest.time - _marks.front().time;
    if (time.count() <= 0.0)
        return 0.0;
    return static_cast<double>(_latest.done - _marks.front().done) / time.count();
}

} // namespace quarner
