// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/desktop/DesktopPlatform.h"

#include "adapters/desktop/DesktopRecorder.h"
#include "adapters/ffmpeg/FFmpegServices.h"
#include "adapters/glib/GlibServices.h"
#include "adapters/isofs/JolietDiscs.h"

namespace quarner {

DesktopPlatform::DesktopPlatform() : _dispatch(makeGlibDispatch()) {
    const std::shared_ptr<PCMService> pcm = makeFFmpegPCMService();
    _recorder = std::make_shared<DesktopRecorder>(RecorderServices{
        .runLoops = makeGlibRunLoops(), .pcm = pcm, .dataDiscs = makeJolietDiscs()});
    _services = {.recording = _recorder,
                 .media = makeFFmpegMediaService(pcm),
                 .files = makeGlibFileService(),
                 .dispatch = _dispatch,
                 .text = makeGlibTextService(),
                 .log = makeGlibLogSink()};
}

DesktopPlatform::~DesktopPlatform() = default;

void DesktopPlatform::endBackgroundWork() { _dispatch->shutDown(); }

} // namespace quarner
