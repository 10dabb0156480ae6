// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/runloop/LoopSource.h"

#include <mutex>
#include <utility>

namespace quarner {
namespace {

/// The source, shared with the functions that are posted.
class PostedTurns : public std::enable_shared_from_this<PostedTurns> {
public:
    PostedTurns(PostToLoop post, LoopSource::Nesting nesting, LoopSource::Turn turn)
        : _post(std::move(post)), _mayNest(nesting == LoopSource::Nesting::Yes),
          _turn(std::make_shared<const LoopSource::Turn>(std::move(turn))) {}

    void wake() {
        {
            const std::lock_guard lock(_mutex);
            if (std::exchange(_isPosted, true))
                return;
        }
        _post([self = shared_from_this()] { self->run(); });
    }

    void end() {
        std::shared_ptr<const LoopSource::Turn> ended; // destroyed after the lock is released
        const std::lock_guard lock(_mutex);
        ended.swap(_turn);
    }

private:
    void run() {
        const auto turn = begin();
        if (!turn)
            return;
        const bool hasMore = (*turn)();
        if (finish() || hasMore)
            wake();
    }

    /// Returns null if there is no turn to take now.
    std::shared_ptr<const LoopSource::Turn> begin() {
        const std::lock_guard lock(_mutex);
        _isPosted = false;
        if (_running > 0 && !_mayNest) {
            _isMissed = true; // taken after the turn that runs this loop
            return nullptr;
        }
        if (_turn)
            ++_running;
        return _turn;
    }

    bool finish() {
        const std::lock_guard lock(_mutex);
        --_running;
        return std::exchange(_isMissed, false);
    }

    const PostToLoop _post;
    const bool _mayNest;
    std::mutex _mutex;
    std::shared_ptr<const LoopSource::Turn> _turn; // null once the source has ended
    bool _isPosted = false;
    bool _isMissed = false;
    int _running = 0;
};

class PostedSource : public LoopSource {
public:
    explicit PostedSource(std::shared_ptr<PostedTurns> turns) : _turns(std::move(turns)) {}
    ~PostedSource() override { _turns->end(); }
    void wake() override { _turns->wake(); }

private:
    const std::shared_ptr<PostedTurns> _turns;
};

} // namespace

LoopSource::~LoopSource() = default;

MakeLoopSource postedSources(PostToLoop post) {
    return [post = std::move(post)](LoopSource::Nesting nesting, LoopSource::Turn turn) {
        return std::make_unique<PostedSource>(
            std::make_shared<PostedTurns>(post, nesting, std::move(turn)));
    };
}

} // namespace quarner
