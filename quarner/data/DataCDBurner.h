// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "quarner/audio/AudioCDBurner.h"

namespace quarner {

/// Compiles and burns a data CD of compressed audio files. `Quarner` documents the operations. Get
/// one from `Quarner::dataCDBurner`. Every accepted file becomes a file node (`DRFile`); the burn
/// puts all nodes into one root folder with the disc's name.
///
/// The list, its order and the reports of a burn work as for an audio CD, with three differences:
/// no file is protected, the end report has only "incompatible-files", and capacity counts bytes.
class QUARNER_EXPORT DataCDBurner : public AudioCDBurner {
public:
    /// Always "mp3", "MP3", "m4a", "M4A", in this order.
    std::vector<std::string> supportedFileTypes() override;

    /// Removes only file nodes, including those of a derived class.
    void removeItem(const BurnItemRef& item) override;
    /// Returns null also for an item that is not a file node itself, including one of a derived
    /// class.
    std::shared_ptr<const Dictionary> propertyOfBurnItem(const BurnItemRef& item) const override;

    /// The sum of the files' sizes in bytes, not rounded to blocks, without the file system.
    std::uint64_t usedCapacity() const override;
    /// Compares bytes. Content that fills the disc exactly fits.
    bool isContentOverflowForDevice(const QuarnerDevice& device) const override;

    /// Does nothing, and reports nothing, without a drive. Refuses the burn, with error code 0, if
    /// the file system's blocks are not fewer than the disc's free bytes. The time left is always
    /// reported as 0.
    void burnWithDevice(const QuarnerDevice& device,
                        const std::optional<std::string>& discNamed) override;

protected:
    std::optional<std::string> identifyingPath(const BurnItem& item) const override;
    bool isProtected(const std::string& resolvedPath) const override;
    std::shared_ptr<BurnItem> makeItem(const std::string& path, Dictionary& record,
                                       const std::function<bool()>& mayContinue) const override;
    EndReport endReport(const std::vector<std::string>& protectedFiles,
                        const std::vector<std::string>& incompatibleFiles) const override;
};

} // namespace quarner
