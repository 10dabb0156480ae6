// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "adapters/engine/BurnTarget.h"
#include "adapters/engine/TrackSource.h"
#include "quarner/platform/DRObject.h"

namespace quarner {

/// A drive whose disc lies in memory, and which notes every call that the engine makes.
class MemoryDisc : public DRObject, public BurnTarget {
public:
    /// Names of the calls in order; calls of one name right after each other once.
    std::vector<std::string> calls;
    /// Called with the name of each call before it does anything; may throw.
    std::function<void(const std::string&)> onCall;

    /// Called with each speed, before it is noted.
    std::function<void()> onSpeed;

    std::vector<std::byte> bytes;
    std::vector<std::size_t> writes; ///< the sizes of the parts in which they came
    using ReadBack = std::pair<std::uint64_t, std::size_t>; ///< the first sector, and bytes
    std::vector<ReadBack> readBacks;
    std::vector<double> speeds;
    std::optional<std::uint64_t> released;
    BurnSettings settings;
    std::uint32_t sectorSize = 0;
    unsigned readers = 1;

    std::unique_ptr<SectorWriter> claim(const DiscPlan& plan, const BurnSettings& burnSettings,
                                        const std::shared_ptr<StopSignal>& /*stop*/) override {
        note("claim");
        settings = burnSettings;
        sectorSize = plan.sectorSize;
        return std::make_unique<Writer>(*this);
    }
    void speedChanged(double speed) override {
        if (onSpeed)
            onSpeed();
        speeds.push_back(speed);
    }
    void release(std::optional<std::uint64_t> writtenSectors) override {
        note("release");
        released = writtenSectors;
    }

private:
    class Writer : public SectorWriter {
    public:
        explicit Writer(MemoryDisc& disc) : _disc(disc) {}
        ~Writer() override { _disc.note("end"); }
        void openSession(const DiscPlan& /*plan*/) override { _disc.note("openSession"); }
        void write(std::span<const std::byte> sectors) override {
            _disc.note("write");
            _disc.writes.push_back(sectors.size());
            _disc.bytes.insert(_disc.bytes.end(), sectors.begin(), sectors.end());
        }
        void closeSession() override { _disc.note("closeSession"); }
        void finish() override { _disc.note("finish"); }
        unsigned readers() const override { return _disc.readers; }
        void readBack(std::uint64_t firstSector, std::span<std::byte> buffer) override {
            _disc.readBack(firstSector, buffer);
        }
        void beginVerification() override { _disc.note("beginVerification"); }
        void commit() override { _disc.note("commit"); }

    private:
        MemoryDisc& _disc;
    };

    void note(const std::string& name) {
        {
            const std::lock_guard lock(_mutex);
            if (calls.empty() || calls.back() != name)
                calls.push_back(name);
        }
        if (onCall)
            onCall(name);
    }

    void readBack(std::uint64_t firstSector, std::span<std::byte> buffer) {
        note("readBack");
        const std::lock_guard lock(_mutex);
        readBacks.emplace_back(firstSector, buffer.size());
        const auto start = bytes.begin() + static_cast<std::ptrdiff_t>(firstSector * sectorSize);
        std::copy_n(start, buffer.size(), buffer.begin());
    }

    std::mutex _mutex;
};

/// A track whose bytes count up from its number.
class CountingSource : public TrackSource {
public:
    explicit CountingSource(unsigned number) : _next(number) {}
    void check() override {
        if (onCheck)
            onCheck();
    }
    void read(std::span<std::byte> buffer) override {
        for (std::byte& byte : buffer)
            byte = std::byte(_next++ % 251);
    }
    void close() override {}

    std::function<void()> onCheck;

private:
    unsigned _next;
};

} // namespace quarner
