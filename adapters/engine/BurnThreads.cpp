// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/BurnThreads.h"

#include <iterator>
#include <system_error>
#include <utility>

namespace quarner {

BurnThreads::~BurnThreads() { shutDown(); }

bool BurnThreads::run(std::function<void()> work, std::shared_ptr<StopSignal> stop) {
    Entries over; // joined after the lock is released
    const std::lock_guard lock(_mutex);
    if (_isShutDown)
        return false;
    over = takeOver();
    Entry& entry = _entries.emplace_back();
    entry.stop = std::move(stop);
    try {
        entry.thread = std::jthread([this, &entry, work = std::move(work)]() mutable {
            std::exchange(work, nullptr)();
            const std::lock_guard ending(_mutex);
            entry.isOver = true;
        });
        return true;
    } catch (const std::system_error&) {
        _entries.pop_back();
        return false;
    }
}

BurnThreads::Entries BurnThreads::takeOver() {
    Entries over;
    for (auto entry = _entries.begin(); entry != _entries.end();) {
        const auto next = std::next(entry);
        if (entry->isOver)
            over.splice(over.end(), _entries, entry);
        entry = next;
    }
    return over;
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
