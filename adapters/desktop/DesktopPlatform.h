// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <string>

#include "quarner/platform/Platform.h"

namespace quarner {

class DesktopRecorder;
class GlibDispatch;

/// Combines the adapters to a platform. Made on the main thread.
class DesktopPlatform {
public:
    DesktopPlatform();
    /// Cancels the running burns and waits for their end, unless the services have another owner.
    ~DesktopPlatform();
    DesktopPlatform(const DesktopPlatform&) = delete;
    DesktopPlatform& operator=(const DesktopPlatform&) = delete;

    const Platform& services() const { return _services; }
    DesktopRecorder& recorder() const { return *_recorder; }

    /// Ends background work: see `GlibDispatch::shutDown`.
    void endBackgroundWork();

private:
    const std::shared_ptr<GlibDispatch> _dispatch;
    std::shared_ptr<DesktopRecorder> _recorder;
    Platform _services;
};

} // namespace quarner
