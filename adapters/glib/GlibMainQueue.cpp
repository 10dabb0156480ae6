// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/glib/GlibMainQueue.h"

#include <condition_variable>
#include <deque>
#include <mutex>

#include "adapters/glib/WakeSource.h"

namespace quarner {

/// Lives on the stack of the waiting caller.
struct GlibMainQueue::Job {
    const std::function<void()>& work;
    bool isOver = false;
};

/// The queued jobs. The source shares them because it may outlive the queue by one turn.
struct GlibMainQueue::Jobs {
    std::mutex mutex;
    std::condition_variable anyIsOver;
    std::deque<Job*> waiting;
    bool isShutDown = false;

    bool add(Job& job) {
        const std::lock_guard lock(mutex);
        if (!isShutDown)
            waiting.push_back(&job);
        return !isShutDown;
    }

    void waitFor(const Job& job) {
        std::unique_lock lock(mutex);
        anyIsOver.wait(lock, [&] { return job.isOver; });
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

    void shutDown() {
        const std::lock_guard lock(mutex);
        isShutDown = true;
        for (Job* const job : waiting)
            job->isOver = true;
        waiting.clear();
        anyIsOver.notify_all();
    }
};

// Nesting::Yes, so that work that runs its own loop does not block other callers.
GlibMainQueue::GlibMainQueue()
    : _makerThread(std::this_thread::get_id()), _jobs(std::make_shared<Jobs>()),
      _source(std::make_shared<WakeSource>(g_main_context_default(), WakeSource::Nesting::Yes,
                                           [jobs = _jobs] { return jobs->runOne(); })) {}

GlibMainQueue::~GlibMainQueue() { shutDown(); }

void GlibMainQueue::runAndWait(const std::function<void()>& work) {
    if (isMainThread()) {
        work();
        return;
    }
    const auto jobs = _jobs;
    const auto source = _source;
    Job job{work};
    if (!jobs->add(job))
        return;
    source->wake();
    jobs->waitFor(job);
}

void GlibMainQueue::shutDown() { _jobs->shutDown(); }

bool GlibMainQueue::isMainThread() const {
    return std::this_thread::get_id() == _makerThread ||
           g_main_context_is_owner(g_main_context_default());
}

} // namespace quarner
