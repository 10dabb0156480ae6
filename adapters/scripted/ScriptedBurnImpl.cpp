// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/scripted/ScriptedBurnImpl.h"

#include <utility>

#include "adapters/scripted/ScriptedDriveImpl.h"

namespace quarner {
namespace {

std::string nameOf(const std::shared_ptr<DRDevice>& device) {
    return device ? device->displayName() : std::string();
}

} // namespace

ScriptedBurnImpl::ScriptedBurnImpl(std::shared_ptr<ScriptedContext> context,
                                   std::shared_ptr<DRDevice> device)
    : _context(std::move(context)), _device(std::move(device)) {}

Dictionary ScriptedBurnImpl::properties() const {
    const std::lock_guard lock(_mutex);
    return _properties;
}

DRLayout ScriptedBurnImpl::layout() const {
    const std::lock_guard lock(_mutex);
    return _layout;
}

bool ScriptedBurnImpl::isStarted() const {
    const std::lock_guard lock(_mutex);
    return _isStarted;
}

bool ScriptedBurnImpl::isAborted() const {
    const std::lock_guard lock(_mutex);
    return _isAborted;
}

bool ScriptedBurnImpl::isOver() const {
    const std::lock_guard lock(_mutex);
    return _isOver;
}

bool ScriptedBurnImpl::isPlaying() const {
    const std::lock_guard lock(_mutex);
    return !_records.empty();
}

void ScriptedBurnImpl::post(const BurnRecord& record) { post(record.dictionary()); }

void ScriptedBurnImpl::post(Dictionary record) {
    const Value state = valueFor(record, DRStatusStateKey);
    if (state == Value(DRStatusStateDone) || state == Value(DRStatusStateFailed)) {
        const std::lock_guard lock(_mutex);
        _isOver = true;
    }
    _context->post({DRBurnStatusChangedNotification, shared_from_this(), std::move(record)});
}

void ScriptedBurnImpl::play(const BurnScript& script) {
    {
        const std::lock_guard lock(_mutex);
        if (!_isStarted || _isOver)
            return;
        BurnScript own = script;
        own.verifies =
            script.verifies && valueFor(_properties, DRBurnVerifyDiscKey) != Value(false);
        const std::vector<BurnRecord> records = recordsOf(own, _layout);
        _records.assign(records.begin(), records.end());
    }
    _context->ticker->tick();
}

void ScriptedBurnImpl::setProperties(Dictionary properties) {
    const std::lock_guard lock(_mutex);
    _properties = std::move(properties);
}

void ScriptedBurnImpl::begin(DRLayout layout) {
    const std::lock_guard lock(_mutex);
    _layout = std::move(layout);
    _isStarted = true;
}

void ScriptedBurnImpl::writeLayout(DRLayout layout) {
    if (isStarted())
        return;
    _context->loops.currentCenter(); // makes the centre, so that a failure at once is delivered
    begin(std::move(layout));
    const auto script = _context->scriptOfNewBurns();
    const auto drive = std::dynamic_pointer_cast<ScriptedDriveImpl>(_device);
    const auto refusal = script && drive ? drive->refusalOf(this->layout()) : std::nullopt;
    if (drive && !refusal)
        drive->setBurn(weak_from_this());
    if (_context->fails(ServiceCall::WriteLayout, nameOf(_device)))
        fail(DRError::WriteFailed);
    else if (!_device)
        fail(DRError::DeviceVanished);
    else if (refusal)
        fail(*refusal);
    else if (script)
        play(*script);
}

void ScriptedBurnImpl::abort() {
    const bool isIgnored = _context->fails(ServiceCall::Abort, nameOf(_device));
    bool isUnderWay = false;
    {
        const std::lock_guard lock(_mutex);
        _isAborted = true;
        isUnderWay = _isStarted && !_isOver;
    }
    if (!isUnderWay || isIgnored)
        return;
    stopScript();
    fail(DRError::UserCanceled);
}

bool ScriptedBurnImpl::playNextRecord() {
    BurnRecord record;
    {
        const std::lock_guard lock(_mutex);
        if (_records.empty())
            return false;
        record = std::move(_records.front());
        _records.pop_front();
    }
    post(record);
    return true;
}

void ScriptedBurnImpl::failScript(DRError code) {
    if (stopScript())
        fail(code);
}

bool ScriptedBurnImpl::stopScript() {
    const std::lock_guard lock(_mutex);
    const bool wasPlaying = !_records.empty();
    _records.clear();
    return wasPlaying;
}

void ScriptedBurnImpl::fail(DRError code) {
    post({.state = DRStatusStateFailed, .error = static_cast<std::uint32_t>(code)});
}

} // namespace quarner
