// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/joliet/JolietDiscs.h"

#include <utility>

#include "adapters/engine/BurnFailure.h"
#include "adapters/joliet/JolietImage.h"
#include "adapters/joliet/JolietTrackSource.h"

namespace quarner {
namespace {

std::uint64_t blocksOf(const DRFolder& folder) {
    try {
        return JolietImage::ofFolder(folder, nullptr)->blocks();
    } catch (const BurnFailure&) {
        return 0; // the burn reports the reason
    }
}

/// Never less than `blocksOf`. What the file system adds to the files: descriptors, path tables and
/// the padding at the end, well below a thousand blocks, and at most 162 bytes a file in each of
/// the two trees.
std::uint64_t mostBlocksOf(const DRFolder& folder) {
    constexpr std::uint64_t mostFixed = 1000;
    constexpr std::uint64_t recordsInABlock = dataBlockSize / 162;
    std::uint64_t blocks = mostFixed + 2 * folder.children().size() / recordsInABlock;
    for (const auto& node : folder.children())
        blocks += node->stamp().size / dataBlockSize + 1;
    return blocks;
}

class JolietDiscs : public DataDiscService {
public:
    std::shared_ptr<DRTrack> trackForRootFolder(std::shared_ptr<const DRFolder> folder) override {
        auto track = std::make_shared<DRTrack>();
        track->setEstimateLength([folder] { return blocksOf(*folder); }, mostBlocksOf(*folder));
        track->rootFolder = std::move(folder);
        return track;
    }

    DiscContent contentOf(const DRTrack& track, const StopSignal& stop) override {
        std::unique_ptr<const JolietImage> image = JolietImage::ofFolder(*track.rootFolder, &stop);
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
