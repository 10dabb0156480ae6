// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/Checksums.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <algorithm>

namespace quarner {

class Checksums::State {
public:
    State() { reset(); }
    void reset() { XXH3_64bits_reset(&_state); }
    void add(std::span<const std::byte> bytes) {
        XXH3_64bits_update(&_state, bytes.data(), bytes.size());
    }
    std::uint64_t sum() const { return XXH3_64bits_digest(&_state); }

private:
    XXH3_state_t _state = {};
};

Checksums::Checksums(std::uint32_t sectorSize)
    : _chunkSize(std::size_t(sectorSize) * sectorsPerChunk), _state(std::make_unique<State>()) {}

Checksums::~Checksums() = default;

void Checksums::add(std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const auto part = bytes.first(std::min(bytes.size(), _chunkSize - _bytesInChunk));
        _state->add(part);
        _bytesInChunk += part.size();
        if (_bytesInChunk == _chunkSize)
            endChunk();
        bytes = bytes.subspan(part.size());
    }
}

void Checksums::endChunk() {
    _sums.push_back(_state->sum());
    _state->reset();
    _bytesInChunk = 0;
}

void Checksums::finish() {
    if (_bytesInChunk > 0)
        endChunk();
}

bool Checksums::matches(std::size_t chunk, std::span<const std::byte> bytes) const {
    return XXH3_64bits(bytes.data(), bytes.size()) == _sums.at(chunk);
}

} // namespace quarner
