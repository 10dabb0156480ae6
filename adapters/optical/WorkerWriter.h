// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>

#include "adapters/engine/SectorWriter.h"
#include "adapters/optical/DriveWorker.h"

namespace quarner {

/// Writes a disc by the process that has claimed its drive, and reads it back. See `OpticalWriter`,
/// which does it there.
class WorkerWriter : public SectorWriter {
public:
    WorkerWriter(std::shared_ptr<DriveWorker> worker, std::shared_ptr<StopSignal> stop);
    /// Stops the drive and unlocks the tray.
    ~WorkerWriter() override;

    void openSession(const DiscPlan& plan) override;
    void write(std::span<const std::byte> sectors) override;
    void closeSession() override;
    void finish() override;
    void beginVerification() override;
    void readBack(std::uint64_t firstSector, std::span<std::byte> buffer) override;
    void commit() override {}

private:
    const std::shared_ptr<DriveWorker> _worker;
    const std::shared_ptr<StopSignal> _stop;
    DiscPlan _plan;
    bool _isWriting = false;
};

} // namespace quarner
