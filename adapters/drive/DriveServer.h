// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "adapters/engine/StopSignal.h"
#include "adapters/worker/Channel.h"

namespace quarner {

/// Executes the library's requests, one at a time, until the library closes the connection.
///
/// The requests are executed on the thread that calls `run`. Another thread receives them, so that
/// a stop reaches what is being done. When the connection is closed, whatever is being done is
/// stopped, and the tray unlocked. What was asked before is still executed. A library that does not
/// say first which version of the protocol it has, and that one once, counts as gone.
class DriveServer {
public:
    /// `handleEnd` is called once, on the thread that receives, when the library is gone: a process
    /// that then cannot stop what it does within some seconds must be ended.
    DriveServer(Channel channel, std::function<void()> handleEnd)
        : _channel(std::move(channel)), _handleEnd(std::move(handleEnd)) {}
    /// Returns the status of the process.
    int run();

private:
    void reply(const Message& message) const;
    void receiveAll();
    bool receive(Message message);
    bool begin(const Dictionary& hello);
    void libraryIsGone();
    std::optional<Message> nextRequest();

    const Channel _channel;
    const std::function<void()> _handleEnd;
    const std::shared_ptr<StopSignal> _stop = std::make_shared<StopSignal>();
    std::mutex _mutex;
    std::condition_variable _changed;
    std::deque<Message> _requests;
    bool _hasBegun = false; ///< used by the receiving thread
    bool _isClosed = false;
};

} // namespace quarner
