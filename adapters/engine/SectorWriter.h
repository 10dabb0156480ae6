// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "adapters/engine/DiscPlan.h"

namespace quarner {

/// Takes the sectors of one burn and returns them for verification. Called in this order:
/// `openSession`, `write` until the plan is complete, `closeSession`, `finish`; if the burn is
/// verified, `beginVerification`, then `readBack` for each part of the disc; last `commit`.
/// Called on the burn's thread, except `readBack`. Each operation throws `BurnFailure` if it fails;
/// no other follows then. Destroying a writer that was not committed abandons the burn: what can
/// be undone is undone, and nothing stays locked or held.
class SectorWriter {
public:
    SectorWriter() = default;
    virtual ~SectorWriter();
    SectorWriter(const SectorWriter&) = delete;
    SectorWriter& operator=(const SectorWriter&) = delete;

    /// Opens the target and prepares it for a disc of this plan.
    virtual void openSession(const DiscPlan& plan) = 0;

    /// Writes the next sectors of the disc. Pre-gaps are passed as silence; a writer whose medium
    /// makes its own pre-gaps finds them in the plan and drops them.
    virtual void write(std::span<const std::byte> sectors) = 0;

    /// Called after the last sector. Writes what the writer itself adds, for example a table of
    /// contents.
    virtual void closeSession() = 0;

    /// Returns after everything has reached the medium.
    virtual void finish() = 0;

    /// Compares what `closeSession` added with what it should be, and prepares reading back.
    virtual void beginVerification() = 0;

    /// The number of threads that may call `readBack` at once.
    virtual unsigned readers() const { return 1; }

    /// Fills `buffer` with the sectors from `firstSector` on, read from the medium itself and not
    /// from a copy in memory. `firstSector` is a multiple of `Checksums::sectorsPerChunk`. The
    /// buffer is as aligned as a `SectorBuffer`. Called on any thread, in any order, by as many
    /// threads at once as `readers` allows.
    virtual void readBack(std::uint64_t firstSector, std::span<std::byte> buffer) = 0;

    /// Makes the disc valid. The burn cannot be stopped any more.
    virtual void commit() = 0;
};

} // namespace quarner
