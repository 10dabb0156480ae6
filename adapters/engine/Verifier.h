// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>

#include "adapters/engine/Checksums.h"
#include "adapters/engine/DiscPlan.h"
#include "adapters/engine/SectorWriter.h"
#include "adapters/engine/StopSignal.h"

namespace quarner {

/// Reads a written disc back once and compares every chunk with its checksum, on as many threads as
/// the writer allows.
class Verifier {
public:
    /// `verified` is called for every correct chunk with its number of sectors: on any of the
    /// threads, one call at a time. All references must outlive this object.
    Verifier(const DiscPlan& plan, const Checksums& checksums, SectorWriter& writer,
             const StopSignal& stop, std::function<void(std::uint64_t)> verified);

    /// Returns if every chunk is correct; throws `BurnFailure` otherwise.
    void verify();

private:
    void work();
    std::optional<std::size_t> claimChunk();
    void verifyChunk(std::size_t chunk, std::span<std::byte> buffer);
    [[noreturn]] void fail(std::uint64_t firstSector, std::uint64_t sectors) const;

    const DiscPlan& _plan;
    const Checksums& _checksums;
    SectorWriter& _writer;
    const StopSignal& _stop;
    const std::function<void(std::uint64_t)> _verified;

    std::mutex _mutex;
    std::size_t _nextChunk = 0;
    std::exception_ptr _failure;
};

} // namespace quarner
