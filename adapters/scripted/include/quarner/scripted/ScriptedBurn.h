// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <deque>
#include <memory>
#include <mutex>

#include "quarner/platform/DRBurn.h"
#include "quarner/platform/DRDevice.h"
#include "quarner/scripted/BurnScripts.h"

namespace quarner {

class ScriptedDrive;
class ScriptedStage;

/// A burn that records what it was given and tells what a test wants it to tell. Found in
/// `ScriptedPlatform::burns`, which keeps it. After it was started it stays silent until a verb
/// makes it speak (or plays by itself: `ScriptedPlatform::playBurns`). Any thread.
class QUARNER_EXPORT ScriptedBurn : public DRBurn,
                                    public std::enable_shared_from_this<ScriptedBurn> {
public:
    ScriptedBurn(std::shared_ptr<ScriptedStage> stage, std::shared_ptr<DRDevice> device);

    // --- What it was given ---

    std::shared_ptr<DRDevice> device() const { return _device; } ///< null for a burn without one
    Dictionary properties() const;
    DRLayout layout() const;
    bool isStarted() const; ///< `writeLayout` was called
    bool isAborted() const; ///< `abort` was called, whatever came of it
    bool isOver() const;    ///< a record of state Done or Failed was sent

    // --- Verbs ---

    /// Sends one status record, at any time and as it stands, however little sense it makes.
    void post(const BurnRecord& record);
    void post(Dictionary record);

    /// Lets the burn play by itself from now on, one record for each turn of a run loop that has
    /// nothing else to do, until its story ends, it is aborted (it then fails as cancelled) or
    /// its drive is unplugged. Replaces a story that is under way. Does nothing on a burn that
    /// is not under way.
    void play(const BurnStory& story = {});
    bool isPlaying() const;

    // --- DRBurn ---

    void setProperties(Dictionary properties) override;
    /// Fails with `DRError::DeviceVanished` where there is no drive. Ignored from the second on.
    void writeLayout(DRLayout layout) override;
    /// Sends a record of failure with `DRError::UserCanceled` if the burn is under way.
    void abort() override;

    // --- Called by the platform ---

    /// Sends the next record of the story. False when none is played.
    bool playNextRecord();
    /// Ends a story that is played in failure.
    void failStory(DRError code);

private:
    void begin(DRLayout layout);
    bool stopStory();
    void fail(DRError code);

    const std::shared_ptr<ScriptedStage> _stage;
    const std::shared_ptr<DRDevice> _device;
    mutable std::mutex _mutex;
    Dictionary _properties;
    DRLayout _layout;
    bool _isStarted = false;
    bool _isAborted = false;
    bool _isOver = false;
    std::deque<BurnRecord> _story;
};

} // namespace quarner
