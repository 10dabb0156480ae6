// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/WorkerWriter.h"

#include <utility>

namespace quarner {

WorkerWriter::WorkerWriter(std::shared_ptr<DriveWorker> worker, std::shared_ptr<StopSignal> stop)
    : _worker(std::move(worker)), _stop(std::move(stop)) {}

WorkerWriter::~WorkerWriter() {
    try {
        _worker->ask(drive::release, _stop.get());
    } catch (const std::exception&) { // said in the log; the drive is released by now
    }
}

void WorkerWriter::openSession(const DiscPlan& plan) {
    _plan = plan;
    _worker->ask(drive::openSession, _stop.get());
}

void WorkerWriter::write(std::span<const std::byte> sectors) {
    if (!std::exchange(_isWriting, true))
        _worker->tell(drive::write, {}, _stop.get());
    _worker->give(sectors, drive::write, _stop.get());
}

void WorkerWriter::closeSession() {
    _worker->await(drive::write, _stop.get());
    _worker->ask(drive::closeSession, _stop.get());
}

void WorkerWriter::finish() { _worker->ask(drive::finish, _stop.get()); }

void WorkerWriter::beginVerification() { _worker->ask(drive::beginVerification, _stop.get()); }

void WorkerWriter::readBack(std::uint64_t firstSector, std::span<std::byte> buffer) {
    _worker->ask(drive::readBack,
                 {{"first", firstSector}, {"count", buffer.size() / _plan.sectorSize}},
                 _stop.get());
    _worker->take(buffer, drive::readBack, _stop.get());
}

} // namespace quarner
