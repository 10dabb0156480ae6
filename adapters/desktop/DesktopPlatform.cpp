// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/desktop/DesktopPlatform.h"

#include "adapters/engine/EngineRecorder.h"
#include "adapters/ffmpeg/FFmpegServices.h"
#include "adapters/glib/GlibServices.h"
#include "adapters/image/ImageDrives.h"
#include "adapters/joliet/JolietDiscs.h"
#include "adapters/optical/OpticalDrives.h"

namespace quarner {

DesktopPlatform::DesktopPlatform(const DesktopOptions& options)
    : _dispatch(makeGlibDispatch(options.postToMain)) {
    const std::shared_ptr<PCMService> pcm = makeFFmpegPCMService();
    const std::shared_ptr<RunLoops> runLoops = makeGlibRunLoops(options.postToMain);
    _opticalDrives = std::make_shared<OpticalDrives>(runLoops);
    _imageDrives = std::make_shared<ImageDrives>(runLoops);
    _services = {
        .recording = std::make_shared<EngineRecorder>(
            RecorderServices{.runLoops = runLoops, .pcm = pcm, .dataDiscs = makeJolietDiscs()},
            DriveLists{_opticalDrives, _imageDrives}),
        .media = makeFFmpegMediaService(pcm),
        .files = makeGlibFileService(),
        .dispatch = _dispatch,
        .text = makeGlibTextService(),
        .log = makeGlibLogSink(options.log)};
}

DesktopPlatform::~DesktopPlatform() = default;

void DesktopPlatform::endBackgroundWork() { _dispatch->shutDown(); }

} // namespace quarner
