// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/Verifier.h"

#include <algorithm>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "adapters/engine/BurnFailure.h"
#include "adapters/engine/SectorBuffer.h"
#include "quarner/platform/Texts.h"

namespace quarner {

Verifier::Verifier(const DiscPlan& plan, const Checksums& checksums, SectorWriter& writer,
                   const StopSignal& stop, std::function<void(std::uint64_t)> verified)
    : _plan(plan), _checksums(checksums), _writer(writer), _stop(stop),
      _verified(std::move(verified)) {}

void Verifier::verify() {
    std::vector<std::jthread> helpers;
    for (unsigned i = 1; i < _writer.readers(); ++i)
        helpers.emplace_back([this] { work(); });
    work();
    helpers.clear();
    if (_failure)
        std::rethrow_exception(_failure);
}

void Verifier::work() {
    try {
        SectorBuffer buffer(std::size_t(Checksums::sectorsPerChunk) * _plan.sectorSize);
        while (const std::optional<std::size_t> chunk = claimChunk())
            verifyChunk(*chunk, buffer.bytes());
    } catch (...) {
        const std::lock_guard lock(_mutex);
        if (!_failure)
            _failure = std::current_exception();
    }
}

std::optional<std::size_t> Verifier::claimChunk() {
    const std::lock_guard lock(_mutex);
    if (_failure || _nextChunk == _checksums.chunks())
        return std::nullopt;
    return _nextChunk++;
}

void Verifier::verifyChunk(std::size_t chunk, std::span<std::byte> buffer) {
    _stop.throwIfRequested();
    const std::uint64_t firstSector = std::uint64_t(chunk) * Checksums::sectorsPerChunk;
    const std::uint64_t sectors =
        std::min<std::uint64_t>(Checksums::sectorsPerChunk, _plan.sectors() - firstSector);
    const auto bytes = buffer.first(std::size_t(sectors * _plan.sectorSize));
    _writer.readBack(firstSector, bytes);
    if (!_checksums.matches(chunk, bytes))
        fail(firstSector, sectors);
    const std::lock_guard lock(_mutex);
    _verified(sectors);
}

void Verifier::fail(std::uint64_t firstSector, std::uint64_t sectors) const {
    throw BurnFailure(
        DRError::VerifyFailed,
        text("the {count} sectors from {sector} on (track {track}) differ from what was sent",
             {{"count", std::to_string(sectors)},
              {"sector", std::to_string(firstSector)},
              {"track", std::to_string(_plan.trackAtSector(firstSector))}}),
        {}, firstSector);
}

} // namespace quarner
