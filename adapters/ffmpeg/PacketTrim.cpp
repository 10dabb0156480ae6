// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/PacketTrim.h"

#include <algorithm>

extern "C" {
#include <libavutil/intreadwrite.h>
}

namespace quarner {

namespace {

constexpr std::size_t skipNoteSize = 10; // two 32-bit counts and two reasons

} // namespace

void PacketTrim::begin(const Packet& packet) {
    _cut = packet.unheard;
    _isDiscarded = (packet->flags & AV_PKT_FLAG_DISCARD) != 0;
    std::size_t size = 0;
    const std::uint8_t* note =
        av_packet_get_side_data(packet.get(), AV_PKT_DATA_SKIP_SAMPLES, &size);
    if (note == nullptr || size < skipNoteSize)
        return;
    _skip = AV_RL32(note) * _skipScale;
    _cut = std::max(_cut, AV_RL32(note + 4) * _skipScale);
}

SampleRange PacketTrim::heard(std::uint64_t samples) {
    const std::uint64_t skipped = std::min(_skip, samples);
    _skip -= skipped;
    if (_isDiscarded)
        return {};
    const std::uint64_t left = samples - skipped;
    return {skipped, left - std::min(_cut, left)};
}

} // namespace quarner
