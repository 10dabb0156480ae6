// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/scripted/ScriptedDispatch.h"

#include <utility>

namespace quarner {

ScriptedQueue::~ScriptedQueue() = default;

ScriptedDispatch::ScriptedDispatch(std::shared_ptr<ScriptedStage> stage)
    : background(stage->pulse), main(stage->pulse), _stage(std::move(stage)) {}

void ScriptedDispatch::asyncGlobal(std::function<void()> work) {
    if (!_stage->fails(ServiceCall::AsyncGlobal))
        background.submit(std::move(work));
}

void ScriptedDispatch::syncMain(std::function<void()> work) {
    if (_stage->fails(ServiceCall::SyncMain))
        return;
    if (isMainThread())
        work();
    else
        main.runAndWait(std::move(work), BackgroundQueue::isOnItsThread());
}

bool ScriptedDispatch::isBackgroundBusy() const {
    const std::size_t running = background.running();
    return running > main.heldBackgroundCallers();
}

void ScriptedDispatch::close() {
    main.close();
    background.close();
}

} // namespace quarner
