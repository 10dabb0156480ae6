// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/scripted/ScriptedBurn.h"

#include <utility>

#include "adapters/scripted/ScriptedStage.h"
#include "quarner/scripted/ScriptedDrive.h"

namespace quarner {
namespace {

std::string nameOf(const std::shared_ptr<DRDevice>& device) {
    return device ? device->displayName() : std::string();
}

} // namespace

ScriptedBurn::ScriptedBurn(std::shared_ptr<ScriptedStage> stage, std::shared_ptr<DRDevice> device)
    : _stage(std::move(stage)), _device(std::move(device)) {}

Dictionary ScriptedBurn::properties() const {
    const std::lock_guard lock(_mutex);
    return _properties;
}

DRLayout ScriptedBurn::layout() const {
    const std::lock_guard lock(_mutex);
    return _layout;
}

bool ScriptedBurn::isStarted() const {
    const std::lock_guard lock(_mutex);
    return _isStarted;
}

bool ScriptedBurn::isAborted() const {
    const std::lock_guard lock(_mutex);
    return _isAborted;
}

bool ScriptedBurn::isOver() const {
    const std::lock_guard lock(_mutex);
    return _isOver;
}

bool ScriptedBurn::isPlaying() const {
    const std::lock_guard lock(_mutex);
    return !_story.empty();
}

void ScriptedBurn::post(const BurnRecord& record) { post(record.dictionary()); }

void ScriptedBurn::post(Dictionary record) {
    const Value state = valueFor(record, DRStatusStateKey);
    if (state == Value(DRStatusStateDone) || state == Value(DRStatusStateFailed)) {
        const std::lock_guard lock(_mutex);
        _isOver = true;
    }
    _stage->post({DRBurnStatusChangedNotification, shared_from_this(), std::move(record)});
}

void ScriptedBurn::play(const BurnStory& story) {
    {
        const std::lock_guard lock(_mutex);
        if (!_isStarted || _isOver)
            return;
        BurnStory own = story;
        own.verifies = story.verifies && valueFor(_properties, DRBurnVerifyDiscKey) != Value(false);
        const std::vector<BurnRecord> records = recordsOf(own, _layout);
        _story.assign(records.begin(), records.end());
    }
    _stage->pulse->beat();
}

void ScriptedBurn::setProperties(Dictionary properties) {
    const std::lock_guard lock(_mutex);
    _properties = std::move(properties);
}

void ScriptedBurn::begin(DRLayout layout) {
    const std::lock_guard lock(_mutex);
    _layout = std::move(layout);
    _isStarted = true;
}

void ScriptedBurn::writeLayout(DRLayout layout) {
    if (isStarted())
        return;
    _stage->loops.currentCenter(); // so that this thread hears also of a failure at once
    begin(std::move(layout));
    const auto story = _stage->storyOfNewBurns();
    const auto drive = std::dynamic_pointer_cast<ScriptedDrive>(_device);
    const auto refusal = story && drive ? drive->refusalOf(this->layout()) : std::nullopt;
    if (drive && !refusal)
        drive->setBurn(weak_from_this());
    if (_stage->fails(ServiceCall::WriteLayout, nameOf(_device)))
        fail(DRError::WriteFailed);
    else if (!_device)
        fail(DRError::DeviceVanished);
    else if (refusal)
        fail(*refusal);
    else if (story)
        play(*story);
}

void ScriptedBurn::abort() {
    const bool isIgnored = _stage->fails(ServiceCall::Abort, nameOf(_device));
    bool isUnderWay = false;
    {
        const std::lock_guard lock(_mutex);
        _isAborted = true;
        isUnderWay = _isStarted && !_isOver;
    }
    if (!isUnderWay || isIgnored)
        return;
    stopStory();
    fail(DRError::UserCanceled);
}

bool ScriptedBurn::playNextRecord() {
    BurnRecord record;
    {
        const std::lock_guard lock(_mutex);
        if (_story.empty())
            return false;
        record = std::move(_story.front());
        _story.pop_front();
    }
    post(record);
    return true;
}

void ScriptedBurn::failStory(DRError code) {
    if (stopStory())
        fail(code);
}

bool ScriptedBurn::stopStory() {
    const std::lock_guard lock(_mutex);
    const bool wasPlaying = !_story.empty();
    _story.clear();
    return wasPlaying;
}

void ScriptedBurn::fail(DRError code) {
    post({.state = DRStatusStateFailed, .error = static_cast<std::uint32_t>(code)});
}

} // namespace quarner
