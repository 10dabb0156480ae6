// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/runloop/MainThreadQueue.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <utility>

#include "quarner/platform/Platform.h"

namespace quarner {

/// Lives on the stack of the waiting caller.
struct MainThreadQueue::Job {
    const std::function<void()>& work;
    bool isOver = false;
};

/// The queued work. The sources share it because they may outlive the queue by one turn.
struct MainThreadQueue::Jobs {
    explicit Jobs(std::chrono::milliseconds longestWait) : warnAfter(longestWait) {}

    bool add(Job& job) {
        const std::lock_guard lock(mutex);
        if (!isShutDown)
            waiting.push_back(&job);
        return !isShutDown;
    }

    bool add(std::function<void()> work) {
        const std::lock_guard lock(mutex);
        if (!isShutDown)
            posted.push_back(std::move(work));
        return !isShutDown;
    }

    void waitFor(const Job& job) {
        std::unique_lock lock(mutex);
        const auto isOver = [&] { return job.isOver; };
        if (anyIsOver.wait_for(lock, warnAfter, isOver))
            return;
        if (!std::exchange(hasWarned, true)) {
            lock.unlock();
            currentPlatform()->log->log(
                "the main loop has not run for " + std::to_string(warnAfter.count()) +
                " ms: files are added, and burns and drives reported, only while it runs");
            lock.lock();
        }
        anyIsOver.wait(lock, isOver);
    }

    Job* takeNext() {
        const std::lock_guard lock(mutex);
        if (waiting.empty())
            return nullptr;
        Job* const job = waiting.front();
        waiting.pop_front();
        return job;
    }

    /// Returns whether more jobs are queued.
    bool finish(Job& job) {
        const std::lock_guard lock(mutex);
        job.isOver = true;
        anyIsOver.notify_all();
        return !waiting.empty();
    }

    bool runOne() {
        Job* const job = takeNext();
        if (job == nullptr)
            return false;
        job->work();
        return finish(*job);
    }

    std::function<void()> takePosted() {
        const std::lock_guard lock(mutex);
        if (posted.empty())
            return nullptr;
        std::function<void()> work = std::move(posted.front());
        posted.pop_front();
        return work;
    }

    bool runOnePosted() {
        if (const std::function<void()> work = takePosted())
            work();
        const std::lock_guard lock(mutex);
        return !posted.empty();
    }

    void shutDown() {
        std::deque<std::function<void()>> dropped; // destroyed after the lock is released
        const std::lock_guard lock(mutex);
        isShutDown = true;
        for (Job* const job : waiting)
            job->isOver = true;
        waiting.clear();
        dropped.swap(posted);
        anyIsOver.notify_all();
    }

    const std::chrono::milliseconds warnAfter;
    std::mutex mutex;
    std::condition_variable anyIsOver;
    std::deque<Job*> waiting;
    std::deque<std::function<void()>> posted;
    bool isShutDown = false;
    bool hasWarned = false;
};

// Nesting::Yes, so that work that runs its own loop does not block other callers.
MainThreadQueue::MainThreadQueue(const MakeLoopSource& makeSource,
                                 std::chrono::milliseconds warnAfter)
    : _jobs(std::make_shared<Jobs>(warnAfter)),
      _waitedFor(makeSource(LoopSource::Nesting::Yes, [jobs = _jobs] { return jobs->runOne(); })),
      _posted(
          makeSource(LoopSource::Nesting::No, [jobs = _jobs] { return jobs->runOnePosted(); })) {}

MainThreadQueue::~MainThreadQueue() { shutDown(); }

void MainThreadQueue::runAndWait(const std::function<void()>& work) {
    const auto jobs = _jobs; // a caller may outlive the queue
    const auto source = _waitedFor;
    Job job{work};
    if (!jobs->add(job))
        return;
    source->wake();
    jobs->waitFor(job);
}

void MainThreadQueue::post(std::function<void()> work) {
    const auto source = _posted;
    if (_jobs->add(std::move(work)))
        source->wake();
}

void MainThreadQueue::shutDown() { _jobs->shutDown(); }

} // namespace quarner
