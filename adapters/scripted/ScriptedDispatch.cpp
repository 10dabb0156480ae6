// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/scripted/ScriptedDispatch.h"

#include <utility>

namespace quarner {

ScriptedDispatch::ScriptedDispatch(std::shared_ptr<ScriptedContext> context)
    : background(context->ticker), main(context->ticker), _context(std::move(context)) {}

void ScriptedDispatch::asyncGlobal(std::function<void()> work) {
    if (!_context->fails(ServiceCall::AsyncGlobal))
        background.submit(std::move(work));
}

void ScriptedDispatch::syncMain(std::function<void()> work) {
    if (_context->fails(ServiceCall::SyncMain))
        return;
    if (isMainThread())
        work();
    else
        main.runAndWait(std::move(work), BackgroundQueue::isOnItsThread());
}

void ScriptedDispatch::asyncMain(std::function<void()> work) {
    if (!_context->fails(ServiceCall::AsyncMain))
        main.post(std::move(work));
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
