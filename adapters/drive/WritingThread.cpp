// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/drive/WritingThread.h"

#include <mutex>

namespace quarner {

struct WritingThread::State {
    std::mutex mutex;
    bool isRunning = false;

    void setRunning(bool isSo) {
        const std::lock_guard lock(mutex);
        isRunning = isSo;
    }
};

/// A thread-local object that is destroyed when its thread ends.
struct WritingThread::Exit {
    std::shared_ptr<State> state;

    ~Exit() {
        if (state)
            state->setRunning(false);
    }
};

WritingThread::WritingThread() : _state(std::make_shared<State>()) {}

void WritingThread::touch() {
    thread_local Exit exit;
    if (std::this_thread::get_id() == _maker || exit.state == _state)
        return;
    exit.state = _state;
    _state->setRunning(true);
}

bool WritingThread::isRunning() const {
    const std::lock_guard lock(_state->mutex);
    return _state->isRunning;
}

} // namespace quarner
