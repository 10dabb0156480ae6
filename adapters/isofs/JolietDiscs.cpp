// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/isofs/JolietDiscs.h"

#include <utility>

#include "adapters/engine/BurnFailure.h"
#include "adapters/isofs/JolietImage.h"
#include "adapters/isofs/JolietTrackSource.h"

namespace quarner {
namespace {

std::uint64_t blocksOf(const DRFolder& folder) {
    try {
        return JolietImage::ofFolder(folder)->blocks();
    } catch (const BurnFailure&) {
        return 0; // the burn itself says why
    }
}

class JolietDiscs : public DataDiscService {
public:
    std::shared_ptr<DRTrack> trackForRootFolder(std::shared_ptr<const DRFolder> folder) override {
        auto track = std::make_shared<DRTrack>();
        const std::uint64_t blocks = blocksOf(*folder);
        track->setLength(DRMSF::msfWithFrames(static_cast<std::uint32_t>(blocks)));
        track->setEstimateLength(blocks);
        track->rootFolder = std::move(folder);
        return track;
    }

    DiscContent contentOf(const DRTrack& track) override {
        std::unique_ptr<const JolietImage> image = JolietImage::ofFolder(*track.rootFolder);
        DiscContent content;
        content.plan.sectorSize = dataBlockSize;
        content.plan.tracks = {
            {.preGap = 0, .length = static_cast<std::uint32_t>(image->blocks())}};
        content.sources.push_back(
            std::make_unique<JolietTrackSource>(track.rootFolder, std::move(image)));
        return content;
    }
};

} // namespace

std::shared_ptr<DataDiscService> makeJolietDiscs() { return std::make_shared<JolietDiscs>(); }

} // namespace quarner
