// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <vector>

#include "adapters/engine/EngineRecorder.h"

namespace quarner {

class ImageRecorder;
class OpticalRecorder;

/// The services that a recorder needs.
struct RecorderServices {
    std::shared_ptr<RunLoops> runLoops;
    std::shared_ptr<PCMService> pcm;
    std::shared_ptr<DataDiscService> dataDiscs;
};

/// The recorder of a desktop: the optical drives of the machine, then the image drives that the
/// host has added.
class DesktopRecorder : public EngineRecorder {
public:
    explicit DesktopRecorder(const RecorderServices& services);
    ~DesktopRecorder() override;

    std::vector<std::shared_ptr<DRDevice>> devices() override;

    OpticalRecorder& optical() const { return *_optical; }
    ImageRecorder& images() const { return *_images; }

private:
    const std::shared_ptr<OpticalRecorder> _optical;
    const std::shared_ptr<ImageRecorder> _images;
};

} // namespace quarner
