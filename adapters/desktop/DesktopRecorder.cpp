// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/desktop/DesktopRecorder.h"

#include "adapters/image/ImageRecorder.h"
#include "adapters/optical/OpticalRecorder.h"

namespace quarner {

DesktopRecorder::DesktopRecorder(const RecorderServices& services)
    : EngineRecorder(services.runLoops, services.pcm, services.dataDiscs,
                     std::chrono::steady_clock::now),
      _optical(std::make_shared<OpticalRecorder>(
          services.runLoops, services.pcm, OpticalRecorderParts{.dataDiscs = services.dataDiscs})),
      _images(std::make_shared<ImageRecorder>(
          services.runLoops, services.pcm, ImageRecorderParts{.dataDiscs = services.dataDiscs})) {}

DesktopRecorder::~DesktopRecorder() { endBurns(); } // before the two lose their drives

std::vector<std::shared_ptr<DRDevice>> DesktopRecorder::devices() {
    std::vector<std::shared_ptr<DRDevice>> all = _optical->devices();
    const std::vector<std::shared_ptr<DRDevice>> images = _images->devices();
    all.insert(all.end(), images.begin(), images.end());
    return all;
}

} // namespace quarner
