// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/ReadAhead.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace quarner {

ReadAhead::ReadAhead(const DiscPlan& plan, TrackSources& sources, unsigned threads,
                     std::stop_token stop)
    : _bufferSize(std::size_t(plan.sectorSize) * sectorsPerBuffer),
      _reserved(threads > 1 ? buffers / 8 : 0), _sources(sources), _tracks(plan.tracks.size()) {
    for (std::size_t i = 0; i < _tracks.size(); ++i)
        _tracks[i].bytes = std::uint64_t(plan.tracks[i].length) * plan.sectorSize;
    _stopWithBurn.emplace(std::move(stop), [this] { _stop.request_stop(); });
    const auto wanted = std::min<std::size_t>(threads, _tracks.size());
    for (std::size_t i = 0; i < wanted; ++i)
        startThread();
}

void ReadAhead::startThread() {
    try {
        _threads.emplace_back([this] { readTracks(); });
    } catch (const std::system_error&) {
        if (_threads.empty()) // one thread is enough, only slower
            throw;
    }
}

ReadAhead::~ReadAhead() {
    _stop.request_stop();
    _threads.clear();
}

void ReadAhead::readTracks() {
    while (const std::optional<std::size_t> index = claimTrack())
        readTrack(*index);
}

std::optional<std::size_t> ReadAhead::claimTrack() {
    const std::lock_guard lock(_mutex);
    if (_stop.stop_requested() || _nextToRead == _tracks.size())
        return std::nullopt;
    return _nextToRead++;
}

void ReadAhead::readTrack(std::size_t index) {
    std::exception_ptr failure;
    try {
        readBuffers(index);
    } catch (...) {
        failure = std::current_exception();
    }
    const std::lock_guard lock(_mutex);
    _tracks[index].isRead = true;
    _tracks[index].failure = std::move(failure);
    _changed.notify_all();
}

void ReadAhead::readBuffers(std::size_t index) {
    TrackSource& source = *_sources[index];
    std::uint64_t left = _tracks[index].bytes;
    while (left > 0) {
        std::unique_ptr<Buffer> buffer = takeFree(index);
        if (!buffer)
            return;
        buffer->size = std::size_t(std::min<std::uint64_t>(_bufferSize, left));
        source.read(buffer->memory.bytes().first(buffer->size));
        left -= buffer->size;
        deliver(index, std::move(buffer));
    }
    source.close();
    source.check();
}

std::unique_ptr<ReadAhead::Buffer> ReadAhead::takeFree(std::size_t index) {
    std::unique_lock lock(_mutex);
    const auto mayTake = [&] {
        const std::size_t available = _free.size() + (buffers - _allocated);
        return available > (index == _nextToWrite ? 0 : _reserved);
    };
    if (!_changed.wait(lock, _stop.get_token(), mayTake) || _stop.stop_requested())
        return nullptr;
    if (_free.empty()) {
        ++_allocated;
        return std::make_unique<Buffer>(Buffer{SectorBuffer(_bufferSize)});
    }
    std::unique_ptr<Buffer> buffer = std::move(_free.back());
    _free.pop_back();
    return buffer;
}

void ReadAhead::deliver(std::size_t index, std::unique_ptr<Buffer> buffer) {
    const std::lock_guard lock(_mutex);
    _tracks[index].ready.push_back(std::move(buffer));
    _changed.notify_all();
}

std::span<const std::byte> ReadAhead::next() {
    std::unique_lock lock(_mutex);
    if (_given)
        recycle();
    Track& track = _tracks.at(_nextToWrite);
    const auto isReady = [&] { return !track.ready.empty() || track.isRead; };
    if (!_changed.wait(lock, _stop.get_token(), isReady) || _stop.stop_requested())
        return {};
    if (!track.ready.empty()) {
        _given = std::move(track.ready.front());
        track.ready.pop_front();
        return _given->memory.bytes().first(_given->size);
    }
    if (track.failure)
        std::rethrow_exception(track.failure);
    ++_nextToWrite;
    _changed.notify_all();
    return {};
}

void ReadAhead::recycle() {
    _free.push_back(std::move(_given));
    _changed.notify_all();
}

} // namespace quarner
