// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "adapters/engine/EngineDrive.h"
#include "adapters/image/FileSystem.h"

namespace quarner {

/// A drive whose blank disc is a CD-R. A burn makes it a file: a BIN and a CUE file for an audio
/// disc, an ISO file for a data disc. Every operation may be called on any thread.
class ImageDrive : public EngineDrive {
public:
    /// The disc in the tray.
    struct Disc {
        bool isBlank = true;
        std::uint64_t usedBlocks = 0;
    };

    /// The path ends in .cue for audio discs and in .iso for data discs. `capacity` is the size in
    /// blocks of this disc and of every blank one inserted later.
    ImageDrive(std::string displayName, std::string path, std::uint32_t capacity, Disc disc,
               std::shared_ptr<FileSystem> files, std::weak_ptr<RunLoops> runLoops);

    const std::string& path() const { return _path; }

    Dictionary info() const override;
    Dictionary status() const override;
    bool mediaIsPresent() const override;
    bool mediaIsTransitioning() const override { return false; }
    bool mediaIsBlank() const override;
    /// A blank disc is appendable; a written one is closed.
    bool mediaIsAppendable() const override { return mediaIsBlank(); }
    bool mediaIsErasable() const override { return false; }
    bool mediaIsOverwritable() const override { return false; }
    std::optional<DRMSF> mediaSpaceUsed() const override;
    std::optional<DRMSF> mediaSpaceFree() const override;
    bool ejectMedia() override;

    /// Inserts a blank disc into the empty tray. Returns false if there is a disc already, or if
    /// the drive is unplugged. The image of the last burn is kept until the next one replaces it.
    bool insertBlank();

    std::unique_ptr<SectorWriter> claim(const DiscPlan& plan, const BurnSettings& settings,
                                        const std::shared_ptr<StopSignal>& stop) override;
    void release(std::optional<std::uint64_t> writtenSectors) override;

private:
    std::optional<Disc> disc() const;
    std::optional<Disc> lockedDisc() const;
    std::uint64_t freeBlocks(const Disc& disc) const;
    std::unique_ptr<SectorWriter> writerFor(const DiscPlan& plan,
                                            const std::shared_ptr<StopSignal>& stop) const;
    void refuseUnlessReady(const DiscPlan& plan) const;

    const std::string _path;
    const std::uint32_t _capacity;
    const std::shared_ptr<FileSystem> _files;
    std::optional<Disc> _disc;
};

} // namespace quarner
