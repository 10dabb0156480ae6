// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <limits>

extern "C" {
#include <libavcodec/packet.h>
}

namespace quarner {

/// A run of samples.
struct SampleRange {
    std::uint64_t first = 0;
    std::uint64_t count = 0;
};

/// One packet of sound; reused from read to read. Times are counted in ticks of `timeBase` from the
/// first sample of the packet on.
class Packet {
public:
    static constexpr std::int64_t open = std::numeric_limits<std::int64_t>::max();

    Packet() : _packet(av_packet_alloc()) {}
    ~Packet() { av_packet_free(&_packet); }
    Packet(const Packet&) = delete;
    Packet& operator=(const Packet&) = delete;

    /// Owned by this object; null if out of memory.
    AVPacket* get() const { return _packet; }
    AVPacket* operator->() const { return _packet; }

    AVRational timeBase = {1, 1};
    std::uint32_t rate = 0;         ///< samples per second; 0: only the decoder knows
    std::int64_t duration = 0;      ///< ticks; 0: not known
    std::int64_t heardFrom = 0;     ///< ticks; what lies before is not heard
    std::int64_t heardUntil = open; ///< ticks; what lies behind is not heard
    std::uint64_t cut = 0;          ///< samples at the end that are not heard besides
    bool hasTail = false; ///< what lies behind the end belongs to the sound's last samples
    bool isLost = false;  ///< damage without data: silence of the packet's duration

private:
    AVPacket* _packet;
};

} // namespace quarner
