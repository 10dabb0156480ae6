// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>

#include "adapters/engine/SectorWriter.h"
#include "adapters/image/FileSystem.h"
#include "adapters/image/ImageNames.h"

namespace quarner {

/// Writes a data disc as an ISO file. The file is written, synced and verified under a hidden name,
/// and then renamed to the image's own.
class IsoWriter : public SectorWriter {
public:
    IsoWriter(std::shared_ptr<FileSystem> files, IsoNames names,
              std::shared_ptr<const StopSignal> stop);
    ~IsoWriter() override;

    void openSession(const DiscPlan& plan) override;
    void write(std::span<const std::byte> sectors) override { _iso->append(sectors); }
    void closeSession() override {}
    void finish() override { _iso->sync(); }
    unsigned readers() const override { return ImageFile::readers; }
    void readBack(std::uint64_t firstSector, std::span<std::byte> buffer) override;
    void beginVerification() override {}
    void commit() override;

private:
    const std::shared_ptr<FileSystem> _files;
    const IsoNames _names;
    const std::shared_ptr<const StopSignal> _stop;
    std::unique_ptr<ImageLock> _lock;
    std::uint32_t _blockSize = 0;
    std::unique_ptr<ImageFile> _iso;
};

} // namespace quarner
