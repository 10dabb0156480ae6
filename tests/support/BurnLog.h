// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "quarner/platform/DRBurn.h"
#include "quarner/platform/DRErrors.h"
#include "quarner/platform/DRKeys.h"
#include "quarner/platform/DRNotificationCenter.h"

namespace quarner {

/// Records the status records of one burn.
class BurnLog {
public:
    /// Called with each record after it was stored.
    std::function<void(const Dictionary&)> onRecord;

    BurnLog(std::shared_ptr<DRNotificationCenter> center, const DRBurn* burn)
        : _center(std::move(center)) {
        _center->addObserver(
            this, [this](const DRNotification& notification) { keep(notification.userInfo); },
            DRBurnStatusChangedNotification, burn);
    }
    ~BurnLog() { _center->removeObserver(this, DRBurnStatusChangedNotification, nullptr); }
    BurnLog(const BurnLog&) = delete;
    BurnLog& operator=(const BurnLog&) = delete;

    const std::vector<Dictionary>& records() const { return _records; }

    bool isOver() const { return ends() > 0; }
    std::size_t ends() const { return count(DRStatusStateDone) + count(DRStatusStateFailed); }
    bool isDone() const {
        return !_records.empty() && stateOf(_records.back()) == DRStatusStateDone;
    }
    std::size_t count(const std::string& state) const {
        return static_cast<std::size_t>(
            std::count_if(_records.begin(), _records.end(),
                          [&](const Dictionary& record) { return stateOf(record) == state; }));
    }

    /// The fractions of the records of a state, or of all, in order.
    std::vector<double> fractions(const std::optional<std::string>& state = std::nullopt) const {
        std::vector<double> found;
        for (const Dictionary& record : _records)
            if (const Value& fraction = valueFor(record, DRStatusPercentCompleteKey);
                (!state || stateOf(record) == *state) && !fraction.isNull())
                found.push_back(fraction.asDouble());
        return found;
    }

    /// The states in order, without repetitions; track states with their number.
    std::vector<std::string> states() const {
        std::vector<std::string> names;
        for (const Dictionary& record : _records) {
            std::string name = stateOf(record).substr(std::string("DRStatusState").size());
            if (const Value& track = valueFor(record, DRStatusCurrentTrackKey); !track.isNull())
                name += ' ' + std::to_string(track.asInt64()) + '/' +
                        std::to_string(valueFor(record, DRStatusTotalTracksKey).asInt64());
            if (names.empty() || names.back() != name)
                names.push_back(name);
        }
        return names;
    }

    /// The code of the Failed record; 0 without one.
    std::uint32_t code() const { return valueFor(error(), DRErrorStatusErrorKey).asUInt32(); }
    std::string info() const {
        const Dictionary found = error();
        const std::string* text = valueFor(found, DRErrorStatusErrorInfoKey).asString();
        return text == nullptr ? std::string() : *text;
    }

    std::string path() const {
        const Dictionary found = error();
        const std::string* path = valueFor(found, DRErrorStatusFileKey).asString();
        return path == nullptr ? std::string() : *path;
    }
    /// Nothing if the failure is about no sector.
    std::optional<std::uint64_t> sector() const {
        const Dictionary found = error();
        const Value& sector = valueFor(found, DRErrorStatusSectorKey);
        return sector.isNumber() ? std::optional(sector.asUInt64()) : std::nullopt;
    }

    static std::string stateOf(const Dictionary& record) {
        const std::string* state = valueFor(record, DRStatusStateKey).asString();
        return state == nullptr ? std::string() : *state;
    }

private:
    Dictionary error() const {
        const Dictionary* error =
            _records.empty() ? nullptr : valueFor(_records.back(), DRErrorStatusKey).asDictionary();
        return error == nullptr ? Dictionary() : *error;
    }
    void keep(const Dictionary& record) {
        _records.push_back(record);
        if (onRecord)
            onRecord(record);
    }

    const std::shared_ptr<DRNotificationCenter> _center;
    std::vector<Dictionary> _records;
};

constexpr std::uint32_t codeOf(DRError error) { return static_cast<std::uint32_t>(error); }

} // namespace quarner
