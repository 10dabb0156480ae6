// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <string>

#include "adapters/engine/SectorWriter.h"
#include "adapters/image/FileSystem.h"
#include "adapters/image/ImageNames.h"

namespace quarner {

/// Writes a disc as a BIN file and a CUE sheet.
///
/// Invariant: at every moment the CUE under the image's name either does not exist or refers to a
/// complete BIN that belongs to it. The steps:
/// 1. The BIN and the sheet are written, synced and verified under hidden names.
/// 2. `commit` renames the BIN to a name that no CUE refers to: mix.bin if that is free, otherwise
/// mix.bin.new.
/// 3. It renames the sheet to mix.cue, which replaces the image in one step.
/// 4. A BIN called mix.bin.new gets mix.bin as a second name, a sheet that refers to mix.bin
/// replaces the first one, and the name mix.bin.new is removed. Without hard links it is kept.
class CueWriter : public SectorWriter {
public:
    CueWriter(std::shared_ptr<FileSystem> files, CueNames names,
              std::shared_ptr<const StopSignal> stop);
    ~CueWriter() override;

    void openSession(const DiscPlan& plan) override;
    void write(std::span<const std::byte> sectors) override { _bin->append(sectors); }
    void closeSession() override;
    void finish() override;
    unsigned readers() const override { return ImageFile::readers; }
    void readBack(std::uint64_t firstSector, std::span<std::byte> buffer) override;
    void beginVerification() override;
    void commit() override;

private:
    void removeParts();
    std::string replacedBin() const;
    bool sheetNames(const std::string& binPath) const;
    bool needsSecondStep() const { return _firstBin == _names.newBin; }
    void writeSheet(const std::string& path, const std::string& binPath);
    void verifySheet(const std::string& path, const std::string& binPath);
    void switchOver();
    void removeFirstBin();
    void moveToPlainName();

    const std::shared_ptr<FileSystem> _files;
    const CueNames _names;
    const std::shared_ptr<const StopSignal> _stop;
    std::unique_ptr<ImageLock> _lock;
    DiscPlan _plan;
    std::unique_ptr<ImageFile> _bin;
    std::string _firstBin; ///< the first name of the new BIN, which no CUE refers to
};

} // namespace quarner
