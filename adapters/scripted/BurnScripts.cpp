// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/scripted/BurnScripts.h"

#include <algorithm>
#include <utility>

namespace quarner {
namespace {

/// Builds the records of a burn that goes well.
class Storyteller {
public:
    Storyteller(const BurnStory& story, const DRLayout& layout) : _story(story), _layout(layout) {
        for (const auto& track : layout)
            _blocks += track->estimateLength();
    }

    std::vector<BurnRecord> tell() {
        add({.state = DRStatusStatePreparing});
        add({.state = DRStatusStateSessionOpen});
        for (std::size_t i = 0; i < _layout.size(); ++i)
            writeTrack(i);
        add({.state = DRStatusStateSessionClose});
        add({.state = DRStatusStateFinishing});
        for (int i = 0; _story.verifies && i <= _story.progressReports; ++i)
            add({.state = DRStatusStateVerifying,
                 .fraction = partOf(static_cast<double>(i), _story.progressReports),
                 .speed = _story.speed});
        add({.state = DRStatusStateDone});
        return std::move(_records);
    }

private:
    void add(BurnRecord record) { _records.push_back(std::move(record)); }

    static double partOf(double done, double all) { return all > 0.0 ? done / all : 1.0; }

    void writeTrack(std::size_t index) {
        BurnRecord record = {.speed = _story.speed,
                             .track = static_cast<std::int64_t>(index) + 1,
                             .of = static_cast<std::int64_t>(_layout.size())};
        const auto say = [&](const char* state, std::optional<double> fraction = std::nullopt) {
            record.state = state;
            record.fraction = fraction;
            add(record);
        };
        const auto part = [&](double blocks) {
            return partOf(blocks, static_cast<double>(_blocks));
        };
        const auto length = static_cast<double>(_layout[index]->estimateLength());
        say(DRStatusStateTrackOpen);
        for (int i = 1; i <= _story.progressReports; ++i)
            say(DRStatusStateTrackWrite, part(_written + length * i / _story.progressReports));
        _written += length;
        say(DRStatusStateTrackClose);
    }

    const BurnStory& _story;
    const DRLayout& _layout;
    std::uint64_t _blocks = 0;
    double _written = 0.0;
    std::vector<BurnRecord> _records;
};

/// Where the story turns bad: the first record that is not sent any more.
std::vector<BurnRecord>::iterator turn(std::vector<BurnRecord>& records, const BurnStory& story) {
    const auto isBeyondFraction = [&](const BurnRecord& record) {
        return story.failsAt && record.state != DRStatusStateVerifying &&
               record.fraction.value_or(-1.0) > *story.failsAt;
    };
    const auto isInState = [&](const BurnRecord& record) {
        return story.failsIn && record.state == story.failsIn;
    };
    const auto beyond = std::find_if(records.begin(), records.end(), isBeyondFraction);
    const auto inState = std::find_if(records.begin(), records.end(), isInState);
    return std::min(beyond, inState == records.end() ? inState : inState + 1);
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
        record[DRErrorStatusKey] = Dictionary{{DRErrorStatusErrorKey, *error}};
    return record;
}

std::vector<BurnRecord> recordsOf(const BurnStory& story, const DRLayout& layout) {
    std::vector<BurnRecord> records = Storyteller(story, layout).tell();
    const bool isBad = story.failsAt || story.failsIn;
    if (!isBad)
        return records;
    records.erase(turn(records, story), records.end());
    if (!records.empty() && records.back().state == DRStatusStateDone)
        records.pop_back();
    records.push_back(
        {.state = DRStatusStateFailed, .error = static_cast<std::uint32_t>(story.code)});
    return records;
}

} // namespace quarner
