// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "adapters/engine/DiscPlan.h"

namespace quarner {

/// Takes the sectors of one burn and returns them for verification. Called in this order:
/// `openSession`, `write` until the plan is complete, `closeSession`, `finish`; if the burn is
/// verified, `verifyTableOfContents`, then `readBack` for each part of the disc; last `commit`.
/// Called on the burn's thread, except `readBack`. Each operation throws `BurnFailure` if it fails;
/// no other follows then. Destroying a writer that was not committed abandons the burn: what can
/// be undone is undone, and nothing stays locked or held.
class SectorWriter {
public:
    SectorWriter() = default;
    virtual ~SectorWriter();
    SectorWriter(const SectorWriter&) = delete;
    SectorWriter& operator=(const SectorWriter&) = delete;

    /// Takes possession of the target and makes it ready for a disc of this plan.
    virtual void openSession(const DiscPlan& plan) = 0;

    /// Takes the next sectors of the disc. The plan says which of them are pre-gaps: they come
    /// here as silence, for writers whose medium does not make them by itself.
    virtual void write(std::span<const std::byte> sectors) = 0;

    /// Every sector was given: adds what the writer itself has to add, as a table of contents.
    virtual void closeSession() = 0;

    /// Returns when everything has reached the medium.
    virtual void finish() = 0;

    /// Compares what `closeSession` added with what it should be, and prepares reading back.
    virtual void verifyTableOfContents() = 0;

    /// The number of threads that may call `readBack` at once.
    virtual unsigned readers() const { return 1; }

    /// Reads sectors from the medium itself, not from a copy in memory: those from `firstSector`
    /// on, which is a multiple of `Checksums::sectorsPerBlock`, until the buffer is full. The
    /// buffer is at least as large and as aligned as a `SectorBuffer`. Called on any thread, in any
    /// order, by as many threads at once as `readers` allows.
    virtual void readBack(std::uint64_t firstSector, std::span<std::byte> buffer) = 0;

    /// Makes the disc valid. A burn is not stopped any more once this was called.
    virtual void commit() = 0;
};

} // namespace quarner
