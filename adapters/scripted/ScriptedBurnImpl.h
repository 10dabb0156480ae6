// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <deque>
#include <memory>
#include <mutex>

#include "adapters/scripted/ScriptedContext.h"
#include "quarner/scripted/ScriptedBurn.h"

namespace quarner {

/// The burn of a scripted platform. Any thread.
class ScriptedBurnImpl : public ScriptedBurn,
                         public std::enable_shared_from_this<ScriptedBurnImpl> {
public:
    ScriptedBurnImpl(std::shared_ptr<ScriptedContext> context, std::shared_ptr<DRDevice> device);

    std::shared_ptr<DRDevice> device() const override { return _device; }
    Dictionary properties() const override;
    DRLayout layout() const override;
    bool isStarted() const override;
    bool isAborted() const override;
    bool isOver() const override;

    void post(const BurnRecord& record) override;
    void post(Dictionary record) override;
    void play(const BurnScript& script) override;
    bool isPlaying() const override;

    void setProperties(Dictionary properties) override;
    void writeLayout(DRLayout layout) override;
    void abort() override;

    /// Sends the next record of the script. Returns false if none is being played.
    bool playNextRecord();
    /// Ends the script that is being played with a failure. Does nothing if there is none.
    void failScript(DRError code);

private:
    void begin(DRLayout layout);
    bool stopScript();
    void fail(DRError code);

    const std::shared_ptr<ScriptedContext> _context;
    const std::shared_ptr<DRDevice> _device;
    mutable std::mutex _mutex;
    Dictionary _properties;
    DRLayout _layout;
    bool _isStarted = false;
    bool _isAborted = false;
    bool _isOver = false;
    std::deque<BurnRecord> _records; // of the script that is being played
};

} // namespace quarner
