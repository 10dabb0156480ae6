// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "quarner/platform/BurnItem.h"
#include "quarner/platform/DRFolder.h"
#include "quarner/platform/DRMSF.h"
#include "quarner/platform/FileStamp.h"

namespace quarner {

/// A track. An audio track records the file that it is made from, its exact length and its pre-gap.
/// A data track has a root folder instead of a file, and an estimate of the blocks that its file
/// system takes. The recording service makes tracks (`trackForAudioFile`, `trackForRootFolder`),
/// and the recorder that writes them reads them.
class QUARNER_EXPORT DRTrack : public BurnItem {
public:
    /// What `className` returns.
    static constexpr std::string_view drClassName = "DRTrack";

    /// Stereo samples at 44.1 kHz in one sector of 2352 bytes (Red Book: 44100 / 75).
    static constexpr std::uint32_t samplesPerSector = 588;
    /// A track lasts at least four seconds (Red Book).
    static constexpr std::uint32_t minimumSectors = 300;

    std::string_view className() const override;
    bool isKindOfClass(std::string_view name) const override;

    /// The file that the track plays, as an absolute path or relative to the working directory.
    std::string path;
    /// The exact number of stereo samples at 44.1 kHz that the file decodes to.
    std::uint64_t sampleCount = 0;
    /// The file's stamp when the track was made. A recorder refuses to write a file with another
    /// stamp.
    FileStamp stamp;
    /// The content of a data track; null for an audio track.
    std::shared_ptr<const DRFolder> rootFolder;

    /// The play length: the samples rounded up to whole sectors, at least `minimumSectors`. The
    /// pre-gap is not included.
    DRMSF length() const { return _length; }
    /// Sets the play length, which is kept as it is given.
    void setLength(DRMSF length) { _length = length; }

    /// The silence before the track.
    DRMSF preGap() const { return _preGap; }
    /// Sets the silence, which the burner chooses: 150 frames on an audio disc.
    void setPreGap(DRMSF preGap) { _preGap = preGap; }

    /// The blocks that the track takes on the disc: its length plus its pre-gap, one block per
    /// frame, unless `setEstimateLength` was called.
    std::uint64_t estimateLength() const;
    /// Sets the blocks that the track takes. Replaces an estimate that takes long.
    void setEstimateLength(std::uint64_t blocks) {
        _laterEstimate.reset();
        _estimateLength = blocks;
    }

    /// Sets an estimate that takes long to make. `estimate` is called once, by the first call that
    /// needs it, on the thread of that call. It must not throw, nor return more than `most`.
    void setEstimateLength(std::function<std::uint64_t()> estimate, std::uint64_t most);

    /// Whether `estimateLength` is below `blocks`. Does not make an estimate that takes long where
    /// the most that it can be decides.
    bool isEstimateBelow(std::uint64_t blocks) const;

private:
    DRMSF _length = DRMSF::msf();
    DRMSF _preGap = DRMSF::msf();
    struct LaterEstimate;

    std::optional<std::uint64_t> _estimateLength;
    std::shared_ptr<LaterEstimate> _laterEstimate;
};

/// Returns the sectors of a track of `sampleCount` stereo samples: whole sectors, the last one
/// filled with silence, and at least `DRTrack::minimumSectors`. Saturates at 2^32 - 1.
QUARNER_EXPORT std::uint32_t sectorsForSamples(std::uint64_t sampleCount);

} // namespace quarner
