// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/scripted/BurnScripts.h"

#include <algorithm>
#include <utility>

namespace quarner {
namespace {

/// Builds the records of a successful burn.
class RecordBuilder {
public:
    RecordBuilder(const BurnScript& script, const DRLayout& layout)
        : _script(script), _layout(layout) {
        for (const auto& track : layout)
            _blocks += track->estimateLength();
    }

    std::vector<BurnRecord> build() {
        add({.state = DRStatusStatePreparing});
        add({.state = DRStatusStateSessionOpen});
        for (std::size_t i = 0; i < _layout.size(); ++i)
            writeTrack(i);
        add({.state = DRStatusStateSessionClose});
        add({.state = DRStatusStateFinishing});
        for (int i = 0; _script.verifies && i <= _script.progressReports; ++i)
            add({.state = DRStatusStateVerifying,
                 .fraction = partOf(static_cast<double>(i), _script.progressReports),
                 .speed = _script.speed});
        add({.state = DRStatusStateDone});
        return std::move(_records);
    }

private:
    void add(BurnRecord record) { _records.push_back(std::move(record)); }

    static double partOf(double done, double all) { return all > 0.0 ? done / all : 1.0; }

    void writeTrack(std::size_t index) {
        BurnRecord record = {.speed = _script.speed,
                             .track = static_cast<std::int64_t>(index) + 1,
                             .of = static_cast<std::int64_t>(_layout.size())};
        const auto addState = [&](const char* state,
                                  std::optional<double> fraction = std::nullopt) {
            record.state = state;
            record.fraction = fraction;
            add(record);
        };
        const auto part = [&](double blocks) {
            return partOf(blocks, static_cast<double>(_blocks));
        };
        const auto length = static_cast<double>(_layout[index]->estimateLength());
        addState(DRStatusStateTrackOpen);
        for (int i = 1; i <= _script.progressReports; ++i)
            addState(DRStatusStateTrackWrite,
                     part(_written + length * i / _script.progressReports));
        _written += length;
        addState(DRStatusStateTrackClose);
    }

    const BurnScript& _script;
    const DRLayout& _layout;
    std::uint64_t _blocks = 0;
    double _written = 0.0;
    std::vector<BurnRecord> _records;
};

/// Returns the first record that is not sent because the burn fails before it.
std::vector<BurnRecord>::iterator firstNotSent(std::vector<BurnRecord>& records,
                                               const BurnScript& script) {
    const auto isBeyondFraction = [&](const BurnRecord& record) {
        return script.failsAt && record.state != DRStatusStateVerifying &&
               record.fraction.value_or(-1.0) > *script.failsAt;
    };
    const auto isInState = [&](const BurnRecord& record) {
        return script.failsIn && record.state == script.failsIn;
    };
    const auto beyond = std::find_if(records.begin(), records.end(), isBeyondFraction);
    const auto inState = std::find_if(records.begin(), records.end(), isInState);
    return std::min(beyond, inState == records.end() ? inState : inState + 1);
}

Dictionary errorDictionary(std::uint32_t code, const BurnErrorInfo& info) {
    Dictionary error = {{DRErrorStatusErrorKey, code}};
    if (!info.message.empty())
        error[DRErrorStatusErrorInfoKey] = info.message;
    if (!info.path.empty())
        error[DRErrorStatusFileKey] = info.path;
    if (info.sector)
        error[DRErrorStatusSectorKey] = *info.sector;
    return error;
}

} // namespace

Dictionary BurnRecord::dictionary() const {
    Dictionary record;
    const auto set = [&](const char* key, const auto& entry) {
        if (entry)
            record[key] = *entry;
    };
    set(DRStatusStateKey, state);
    set(DRStatusPercentCompleteKey, fraction);
    set(DRStatusCurrentSpeedKey, speed);
    set(DRStatusCurrentTrackKey, track);
    set(DRStatusTotalTracksKey, of);
    if (error)
        record[DRErrorStatusKey] = errorDictionary(*error, errorInfo);
    return record;
}

std::vector<BurnRecord> recordsOf(const BurnScript& script, const DRLayout& layout) {
    std::vector<BurnRecord> records = RecordBuilder(script, layout).build();
    const bool isFailing = script.failsAt || script.failsIn;
    if (!isFailing)
        return records;
    records.erase(firstNotSent(records, script), records.end());
    if (!records.empty() && records.back().state == DRStatusStateDone)
        records.pop_back();
    records.push_back({.state = DRStatusStateFailed,
                       .error = static_cast<std::uint32_t>(script.code),
                       .errorInfo = script.errorInfo});
    return records;
}

} // namespace quarner
