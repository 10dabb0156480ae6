// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>

#include "adapters/ffmpeg/Packet.h"

extern "C" {
#include <libavcodec/codec_par.h>
}

namespace quarner {

/// The compressed sound of one file, packet by packet. For one thread at a time.
class PacketSource {
public:
    enum class Reading {
        packet,
        end,
        failure ///< the file cannot be read, or holds more damage than is read through
    };

    /// The most bytes that are read in search of the next packet.
    static constexpr std::uint64_t mostDamage = 16U << 20;

    PacketSource() = default;
    virtual ~PacketSource() = default;
    PacketSource(const PacketSource&) = delete;
    PacketSource& operator=(const PacketSource&) = delete;

    /// Reads the next packet. It may be damaged.
    virtual Reading read(Packet& packet) = 0;

    /// What a decoder has to know before the first packet. Lives as long as this object.
    virtual const AVCodecParameters& parameters() const = 0;
};

} // namespace quarner
