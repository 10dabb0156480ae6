// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <utility>

#include "tests/support/optical/Medium.h"

namespace quarner {

/// What the kernel knows of the disc in a drive. Like the kernel, it reads the size of the disc
/// when the node is opened after the drive has reported another disc, and at no other time.
class KernelDisc {
public:
    /// The size of a disc that reports none: of a blank one, and of one that begins with sound.
    static constexpr std::uint64_t unknownSize = std::uint64_t(0x1FFFFF) * 512;

    /// The drive reports another disc.
    void change() { _isToBeRead = _isOther = true; }

    /// The node is opened while the drive has this disc.
    void open(const std::optional<Medium>& medium) {
        if (std::exchange(_isToBeRead, false))
            _size = sizeOf(medium);
    }

    /// Returns whether the drive has reported another disc since the last call.
    bool takeChange() { return std::exchange(_isOther, false); }

    std::uint64_t size() const { return _size; }

private:
    static std::uint64_t sizeOf(const std::optional<Medium>& medium) {
        if (!medium || medium->tracks.empty() || medium->tracks.front().isAudio)
            return unknownSize;
        return static_cast<std::uint64_t>(medium->end()) * 2048;
    }

    std::uint64_t _size = unknownSize;
    bool _isToBeRead = true;
    bool _isOther = true;
};

} // namespace quarner
