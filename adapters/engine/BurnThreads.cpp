// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/BurnThreads.h"

#include <iterator>
#include <system_error>
#include <utility>

namespace quarner {

BurnThreads::~BurnThreads() { shutDown(); }

bool BurnThreads::run(std::function<void()> work, std::shared_ptr<StopSignal> stop) {
    Entries ended; // joined after the lock is released
    const std::lock_guard lock(_mutex);
    if (_isShutDown)
        return false;
    ended = removeEnded();
    Entry& entry = _entries.emplace_back();
    entry.stop = std::move(stop);
    try {
        entry.thread = std::jthread([this, &entry, work = std::move(work)]() mutable {
            std::exchange(work, nullptr)();
            const std::lock_guard ending(_mutex);
            entry.hasEnded = true;
        });
        return true;
    } catch (const std::system_error&) {
        _entries.pop_back();
        return false;
    }
}

BurnThreads::Entries BurnThreads::removeEnded() {
    Entries ended;
    for (auto entry = _entries.begin(); entry != _entries.end();) {
        const auto next = std::next(entry);
        if (entry->hasEnded)
            ended.splice(ended.end(), _entries, entry);
        entry = next;
    }
    return ended;
}

void BurnThreads::shutDown() {
    Entries entries;
    {
        const std::lock_guard lock(_mutex);
        _isShutDown = true;
        entries.swap(_entries);
    }
    for (const Entry& entry : entries)
        entry.stop->request(DRError::UserCanceled);
}

} // namespace quarner
