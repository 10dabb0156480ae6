// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "quarner/platform/Platform.h"
#include "quarner/scripted.h"
#include "tests/recorder/RecorderStage.h"

namespace quarner {

/// The run loops of a scripted platform. They stop once the platform is destroyed.
class ScriptedTurnedLoops : public TurnedLoops {
public:
    explicit ScriptedTurnedLoops(const std::unique_ptr<ScriptedPlatform>& platform)
        : _platform(platform) {}

    void setInStep(bool /*isInStep*/) override {} // a scripted burn is always in step
    void holdSender() override {}
    bool runUntil(const std::function<bool()>& condition) override {
        return _platform ? _platform->runUntil(condition, std::chrono::minutes(1)) : condition();
    }
    void runPending() override {
        while (_platform && _platform->runOnce()) {
        }
    }
    void waitForPostAfter(const std::function<void()>& start) override { start(); }

private:
    const std::unique_ptr<ScriptedPlatform>& _platform;
};

/// A scripted platform with one drive. Every burn plays by itself, and nothing is written.
class ScriptedRecorderStage : public RecorderStage {
public:
    ScriptedRecorderStage() { _platform->playBurns(); }

    std::shared_ptr<RecordingService> service() override { return _service; }
    TurnedLoops& loops() override { return _loops; }
    std::shared_ptr<DRDevice> drive() override { return _drive; }
    std::string makeSource(std::uint64_t pairs) override {
        const std::string path = "/source" + std::to_string(++_sources);
        _platform->putSong(path, {.samples = pairs},
                           {.size = static_cast<std::int64_t>(pairs * bytesPerPair)});
        return path;
    }
    void insertBlank() override { _drive->insert({}); }
    void unplug() override { _platform->unplug(_drive); }
    void plugAnother() override { _platform->plug({.name = "Another"}); }
    bool sparesDiscs() const override { return true; }
    void shutDown() override { _platform.reset(); }

private:
    static constexpr std::uint64_t bytesPerPair = 4;

    std::unique_ptr<ScriptedPlatform> _platform = std::make_unique<ScriptedPlatform>();
    const std::shared_ptr<RecordingService> _service = currentPlatform()->recording;
    const std::shared_ptr<ScriptedDrive> _drive = _platform->addDrive({.disc = DiscScript{}});
    ScriptedTurnedLoops _loops{_platform};
    std::uint32_t _sources = 0;
};

class AudioScriptedStage : public ScriptedRecorderStage {
public:
    DRLayout layoutOf(const Paths& paths) override {
        DRLayout layout;
        for (const std::string& path : paths)
            layout.push_back(service()->trackForAudioFile(path));
        return layout;
    }
    DRLayout layoutOfBlocks(std::uint32_t blocks) override {
        constexpr std::uint64_t pairsOfSector = 588;
        return layoutOf({makeSource(blocks * pairsOfSector)});
    }
    DRLayout hugeLayout() override {
        return {layoutOfBlocks(0x80000000U)[0], layoutOfBlocks(0x80000000U)[0]};
    }
};

class DataScriptedStage : public ScriptedRecorderStage {
public:
    DRLayout layoutOf(const Paths& paths) override {
        const auto root = std::make_shared<DRFolder>("Disc");
        for (const std::string& path : paths)
            root->addChild(service()->fileWithPath(path));
        return {service()->trackForRootFolder(root)};
    }
    DRLayout layoutOfBlocks(std::uint32_t blocks) override {
        return layoutOf({makeSource(blocks * pairsOfBlock)});
    }
    DRLayout hugeLayout() override { return layoutOf({makeSource((1ULL << 32) * pairsOfBlock)}); }

private:
    static constexpr std::uint64_t pairsOfBlock = 512;
};

} // namespace quarner
