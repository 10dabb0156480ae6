// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/scripted/ScriptedPlatform.h"

#include <algorithm>
#include <utility>

#include "adapters/scripted/ScriptedDispatch.h"
#include "adapters/scripted/ScriptedFiles.h"
#include "adapters/scripted/ScriptedMedia.h"
#include "adapters/scripted/ScriptedRecording.h"
#include "adapters/scripted/ScriptedTexts.h"
#include "quarner/platform/Platform.h"

namespace quarner {

struct ScriptedPlatform::Services {
    std::shared_ptr<ScriptedContext> context = std::make_shared<ScriptedContext>();
    std::shared_ptr<FileStore> store = std::make_shared<FileStore>();
    std::shared_ptr<ScriptedRecording> recording =
        std::make_shared<ScriptedRecording>(context, store);
    std::shared_ptr<ScriptedMedia> media = std::make_shared<ScriptedMedia>(context, store);
    std::shared_ptr<ScriptedFiles> files = std::make_shared<ScriptedFiles>(context, store);
    std::shared_ptr<ScriptedDispatch> dispatch = std::make_shared<ScriptedDispatch>(context);
    std::shared_ptr<ScriptedTexts> text = std::make_shared<ScriptedTexts>(context);
    std::shared_ptr<ScriptedLog> log = std::make_shared<ScriptedLog>();
};

ScriptedPlatform::ScriptedPlatform() : _services(std::make_unique<Services>()) {
    _services->context->loops.currentCenter(); // makes the centre, so that no notification is lost
    installPlatform({.recording = _services->recording,
                     .media = _services->media,
                     .files = _services->files,
                     .dispatch = _services->dispatch,
                     .text = _services->text,
                     .log = _services->log});
}

ScriptedPlatform::~ScriptedPlatform() {
    _services->dispatch->close();
    _services->context->loops.close();
    const bool isInstalled = currentPlatform()->recording == _services->recording;
    if (isInstalled)
        installPlatform({});
}

std::shared_ptr<ScriptedDrive> ScriptedPlatform::addDrive(DriveScript script) {
    return _services->recording->attach(std::move(script));
}

std::shared_ptr<ScriptedDrive> ScriptedPlatform::plug(DriveScript script) {
    auto drive = addDrive(std::move(script));
    post({DRDeviceAppearedNotification, drive, {}});
    return drive;
}

void ScriptedPlatform::unplug(const std::shared_ptr<ScriptedDrive>& drive) {
    if (_services->recording->detach(drive))
        post({DRDeviceDisappearedNotification, drive, {}});
}

void ScriptedPlatform::post(const DRNotification& notification) {
    _services->context->post(notification);
}

void ScriptedPlatform::putFile(const std::string& path, FileScript file) {
    _services->store->putFile(path, std::move(file));
}

void ScriptedPlatform::putMedia(const std::string& path, MediaScript media) {
    _services->store->putMedia(path, std::move(media));
}

void ScriptedPlatform::putSong(const std::string& path, MediaScript media, FileScript file) {
    putFile(path, std::move(file));
    putMedia(path, std::move(media));
}

void ScriptedPlatform::removeFile(const std::string& path) { _services->store->remove(path); }

void ScriptedPlatform::setDataEstimate(std::uint64_t blocks) {
    _services->recording->setDataEstimate(blocks);
}

void ScriptedPlatform::setMovieFileTypes(std::vector<std::string> types) {
    _services->media->setMovieFileTypes(std::move(types));
}

void ScriptedPlatform::setText(const std::string& key, const std::string& translation) {
    _services->text->setText(key, translation);
}

void ScriptedPlatform::setDecimalSeparator(const std::string& separator) {
    _services->text->setDecimalSeparator(separator);
}

void ScriptedPlatform::setCollation(
    std::function<int(const std::string&, const std::string&)> compare) {
    _services->text->setCollation(std::move(compare));
}

std::vector<std::string> ScriptedPlatform::log() const { return _services->log->lines(); }

std::vector<std::shared_ptr<ScriptedBurn>> ScriptedPlatform::burns() const {
    const auto all = _services->recording->burns();
    return {all.begin(), all.end()};
}

std::shared_ptr<ScriptedBurn> ScriptedPlatform::lastBurn() const {
    const auto all = burns();
    return all.empty() ? nullptr : all.back();
}

void ScriptedPlatform::playBurns(const BurnScript& script) {
    _services->context->setScriptOfNewBurns(script);
}

void ScriptedPlatform::fail(ServiceCall call, const Fault& fault) {
    _services->context->faults.add(call, fault);
}

void ScriptedPlatform::repair(ServiceCall call) { _services->context->faults.clear(call); }

std::size_t ScriptedPlatform::calls(ServiceCall call) const {
    return _services->context->faults.calls(call);
}

void ScriptedPlatform::onCall(ServiceCall call,
                              std::function<void(const std::string& subject)> action) {
    _services->context->faults.setAction(call, std::move(action));
}

ScriptedQueue& ScriptedPlatform::backgroundQueue() { return _services->dispatch->background; }

ScriptedQueue& ScriptedPlatform::mainQueue() { return _services->dispatch->main; }

bool ScriptedPlatform::runOnce() {
    if (_services->dispatch->isMainThread() && _services->dispatch->main.serveOne())
        return true;
    const auto center = _services->context->loops.currentCenter();
    return center->deliverOne() ||
           (!center->hasPending() && _services->recording->playNextRecord());
}

bool ScriptedPlatform::runUntil(const std::function<bool()>& predicate,
                                std::chrono::milliseconds timeout) {
    // The predicate may depend on something that does not tick.
    constexpr std::chrono::milliseconds look(2);
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    for (;;) {
        const std::uint64_t counted = _services->context->ticker->count();
        if (predicate())
            return true;
        if (std::chrono::steady_clock::now() >= deadline)
            return false;
        if (!runOnce())
            _services->context->ticker->waitBeyond(counted, look);
    }
}

bool ScriptedPlatform::runUntilIdle(std::chrono::milliseconds timeout) {
    return runUntil([this] { return isIdle(); }, timeout);
}

bool ScriptedPlatform::isIdle() const {
    // Background work first: it may queue work or notifications.
    if (_services->dispatch->isBackgroundBusy())
        return false;
    const bool hasMainWork =
        _services->dispatch->isMainThread() && _services->dispatch->main.hasWork();
    return !hasMainWork && !_services->context->loops.currentCenter()->hasPending() &&
           !_services->recording->isAnyPlaying();
}

} // namespace quarner
