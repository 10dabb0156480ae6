// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <algorithm>
#include <memory>
#include <string>

#include "quarner/platform/DiscFormat.h"
#include "tests/recorder/SourceStage.h"
#include "tests/support/Layouts.h"

namespace quarner {

/// Turns a stage into one for audio discs of raw sound, whose tracks have pre-gaps of two seconds.
template <class Stage>
class AudioStage : public Stage {
public:
    using Stage::Stage;

    DRLayout layoutOf(const Paths& paths) override { return audioLayout(*this->service(), paths); }
    DRLayout layoutOfBlocks(std::uint32_t blocks) override {
        return {makeTrack(), trackOfBlocks(blocks - shortest - gap)};
    }
    DRLayout hugeLayout() override {
        return {trackOfBlocks(0x80000000U), trackOfBlocks(0x80000000U)};
    }
    /// Returns a track of a new short file that takes `blocks` sectors.
    std::shared_ptr<DRTrack> trackOfBlocks(std::uint32_t blocks) {
        auto track = makeTrack();
        track->setLength(DRMSF::msfWithFrames(blocks));
        return track;
    }
    /// The sound, padded with silence to whole sectors and to at least four seconds.
    std::string expectedContentOf(const std::string& path) override {
        std::string content = contentOf(path);
        const std::size_t sectors = (content.size() + audioSectorSize - 1) / audioSectorSize;
        content.resize(std::max<std::size_t>(sectors, shortest) * audioSectorSize, '\0');
        return content;
    }

private:
    std::shared_ptr<DRTrack> makeTrack() {
        return audioTrack(*this->service(), this->makeSource(1000));
    }

    static constexpr std::uint32_t gap = 150;
    static constexpr std::uint32_t shortest = 300;
};

} // namespace quarner
