// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <span>

extern "C" {
#include <libavcodec/packet.h>
}

namespace quarner {

/// A run of samples.
struct SampleRange {
    std::uint64_t first = 0;
    std::uint64_t count = 0;
};

/// One packet of sound, as FFmpeg hands it out; reused from read to read.
class Packet {
public:
    Packet() : _packet(av_packet_alloc()) {}
    ~Packet() { av_packet_free(&_packet); }
    Packet(const Packet&) = delete;
    Packet& operator=(const Packet&) = delete;

    /// Owned by this object; null when there was no memory for it.
    AVPacket* get() const { return _packet; }
    AVPacket* operator->() const { return _packet; }

    std::span<const std::uint8_t> bytes() const {
        return {_packet->data, static_cast<std::size_t>(_packet->size)};
    }

    /// The samples that the packet takes at the file's rate, those that are not heard included.
    std::uint64_t samples = 0;
    /// How many of them, at the end, are not heard, beyond what FFmpeg has noted in the packet.
    std::uint64_t unheard = 0;

private:
    AVPacket* _packet;
};

} // namespace quarner
