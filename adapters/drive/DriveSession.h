// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/drive/DiscReload.h"
#include "adapters/drive/OpticalWriter.h"
#include "adapters/engine/DiscPlan.h"
#include "adapters/engine/StopSignal.h"
#include "adapters/worker/Channel.h"

namespace quarner {

/// What the library asks of one drive. The requests of a burn must come in their order; the others
/// may come at any time without a burn.
class DriveSession {
public:
    /// `channel` must outlive this object.
    DriveSession(const Channel& channel, std::shared_ptr<StopSignal> stop);
    ~DriveSession();

    /// Executes a request and returns the fields of the reply. Throws `BurnFailure`.
    Dictionary execute(const Message& request);
    /// Sends the bytes that belong to the last reply. Call it after each reply.
    void afterReply();

private:
    /// The last step of a burn that was completed; `Failed` after one that was not.
    enum class Step { Claim, OpenSession, Write, CloseSession, Finish, BeginVerification, Failed };

    Dictionary facts(const Dictionary& fields);
    Dictionary accessProblem(const Dictionary& fields);
    Dictionary eject(const Dictionary& fields);
    Dictionary unlock(const Dictionary& fields);
    Dictionary claim(const Dictionary& fields);
    Dictionary openSession(const Dictionary&);
    Dictionary write(const Dictionary&);
    Dictionary closeSession(const Dictionary&);
    Dictionary finish(const Dictionary&);
    Dictionary beginVerification(const Dictionary&);
    Dictionary readBack(const Dictionary& fields);
    Dictionary release(const Dictionary&);
    Dictionary reload(const Dictionary&);

    OpticalWriter& writer();
    void perform(Step step, const std::function<void(OpticalWriter&)>& act);
    void writeAll(OpticalWriter& target);

    const Channel& _channel;
    const std::shared_ptr<StopSignal> _stop;
    std::string _node;
    DiscPlan _plan;
    std::unique_ptr<OpticalWriter> _writer;
    Step _step = Step::Claim;
    std::optional<DiscReload> _reload;
    std::vector<std::byte> _buffer;
    std::size_t _readBytes = 0; ///< of the buffer, still to be sent
};

} // namespace quarner
