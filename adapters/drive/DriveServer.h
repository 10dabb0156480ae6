// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "adapters/engine/StopSignal.h"
#include "adapters/worker/Channel.h"

namespace quarner {

/// Executes the library's requests, one at a time, until the library closes the connection.
///
/// The requests are executed on the thread that calls `run`. Another thread receives them, so that
/// a stop reaches what is being done. When the connection is closed, whatever is being done is
/// stopped, and the tray unlocked. What was asked before is still executed. If that takes too long,
/// because libburn or the drive does not stop, the process unlocks the tray without libburn and
/// ends. A library that does not
/// say first which version of the protocol it has, and that one once, counts as gone.
class DriveServer {
public:
    /// `timeToEnd` is the time for what is still to do when the library is gone.
    DriveServer(Channel channel, std::chrono::milliseconds timeToEnd)
        : _channel(std::move(channel)), _timeToEnd(timeToEnd) {}
    /// Returns the status of the process.
    int run();

private:
    void reply(const Message& message) const;
    void receiveAll();
    bool receive(Message message);
    bool begin(const Dictionary& hello);
    void libraryIsGone();
    void endUnlessDone();
    std::optional<Message> nextRequest();

    const Channel _channel;
    const std::chrono::milliseconds _timeToEnd;
    const std::shared_ptr<StopSignal> _stop = std::make_shared<StopSignal>();
    std::mutex _mutex;
    std::condition_variable _changed;
    std::deque<Message> _requests;
    bool _hasBegun = false;  ///< used by the receiving thread
    std::string _lockedNode; ///< of the drive whose tray may be locked; used by it too
    bool _isClosed = false;
    bool _isDone = false;
};

} // namespace quarner
