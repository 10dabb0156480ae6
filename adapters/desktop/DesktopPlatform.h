// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <string>

#include "quarner/desktop.h"
#include "quarner/platform/Platform.h"

namespace quarner {

class GlibDispatch;
class ImageDrives;
class OpticalDrives;

/// Combines the adapters to a platform, whose drives are the optical ones of the machine and, after
/// them, the image drives that the host has added. Made on the main thread.
class DesktopPlatform {
public:
    /// The main loop is that of the default GMainContext, unless the options say otherwise.
    explicit DesktopPlatform(const DesktopOptions& options = {});
    /// Cancels the running burns and waits for their end, unless the services have another owner.
    ~DesktopPlatform();
    DesktopPlatform(const DesktopPlatform&) = delete;
    DesktopPlatform& operator=(const DesktopPlatform&) = delete;

    const Platform& services() const { return _services; }
    OpticalDrives& opticalDrives() const { return *_opticalDrives; }
    ImageDrives& imageDrives() const { return *_imageDrives; }

    /// Ends background work: see `GlibDispatch::shutDown`.
    void endBackgroundWork();

private:
    const std::shared_ptr<GlibDispatch> _dispatch;
    std::shared_ptr<OpticalDrives> _opticalDrives;
    std::shared_ptr<ImageDrives> _imageDrives;
    Platform _services;
};

} // namespace quarner
