// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <bit>
#include <cstdint>
#include <memory>
#include <string>

#include "adapters/engine/TrackSource.h"
#include "quarner/platform/DRBurn.h"
#include "quarner/platform/PCMService.h"

namespace quarner {

/// Converts 16-bit samples, in place, from the byte order `order` to the one that a CD has.
void makeLittleEndian(std::span<std::byte> samples, std::endian order = std::endian::native);

/// An audio track in the format of a CD: the samples of its file as little-endian pairs, then
/// silence up to the track's length. The file is opened by the first `read`.
class PCMTrackSource : public TrackSource {
public:
    PCMTrackSource(std::shared_ptr<PCMService> service, std::shared_ptr<const DRTrack> track);

    void check() override;
    void read(std::span<std::byte> buffer) override;
    void close() override { _stream.reset(); }

private:
    void open();
    void readSamples(std::span<std::byte> buffer);
    void expectEnd();
    [[noreturn]] void fail(const std::string& problem) const;

    const std::shared_ptr<PCMService> _service;
    const std::shared_ptr<const DRTrack> _track;
    std::unique_ptr<PCMStream> _stream;
    std::uint64_t _bytesOfSoundLeft;
};

/// Returns the sources of all tracks of a layout, in order.
TrackSources audioSources(const DRLayout& layout, const std::shared_ptr<PCMService>& service);

} // namespace quarner
