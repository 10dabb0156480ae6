// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>

#include "adapters/ffmpeg/Packet.h"

namespace quarner {

/// Tells which samples of each packet are heard: without what the encoder put before the first
/// sample and after the last one, as the packets themselves note it. What is to be skipped may
/// reach over several packets.
class PacketTrim {
public:
    explicit PacketTrim(int skipScale) : _skipScale(static_cast<std::uint64_t>(skipScale)) {}

    /// Takes note of the next packet. Then `heard` is asked for what it decodes to.
    void begin(const Packet& packet);

    /// The part that is heard of the packet's next `samples` samples.
    SampleRange heard(std::uint64_t samples);

private:
    const std::uint64_t _skipScale;
    std::uint64_t _skip = 0; // still to be skipped at the front
    std::uint64_t _cut = 0;  // of this packet, to be cut off at its end
    bool _isDiscarded = false;
};

} // namespace quarner
