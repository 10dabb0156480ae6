// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/StopSignal.h"

#include <string>

#include "adapters/engine/BurnFailure.h"

namespace quarner {

void StopSignal::request(DRError reason) {
    {
        const std::lock_guard lock(_mutex);
        if (_isSealed || _reason)
            return;
        _reason = reason;
    }
    _source.request_stop();
}

void StopSignal::seal() {
    const std::lock_guard lock(_mutex);
    if (_reason)
        throw BurnFailure(*_reason, std::string(textForBurnErrorCode(signedCode(*_reason))));
    _isSealed = true;
}

void StopSignal::throwIfRequested() const {
    const std::lock_guard lock(_mutex);
    if (_reason)
        throw BurnFailure(*_reason, std::string(textForBurnErrorCode(signedCode(*_reason))));
}

std::optional<DRError> StopSignal::reason() const {
    const std::lock_guard lock(_mutex);
    return _reason;
}

} // namespace quarner
