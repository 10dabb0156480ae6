// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/ReadAhead.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace quarner {

ReadAhead::ReadAhead(const DiscPlan& plan, TrackSources& sources, unsigned threads,
                     std::stop_token stop)
    : _pieceSize(std::size_t(plan.sectorSize) * sectorsPerPiece),
      _kept(threads > 1 ? pieces / 8 : 0), _sources(sources), _tracks(plan.tracks.size()) {
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
        readPieces(index);
    } catch (...) {
        failure = std::current_exception();
    }
    const std::lock_guard lock(_mutex);
    _tracks[index].isRead = true;
    _tracks[index].failure = std::move(failure);
    _changed.notify_all();
}

void ReadAhead::readPieces(std::size_t index) {
    TrackSource& source = *_sources[index];
    std::uint64_t left = _tracks[index].bytes;
    while (left > 0) {
        std::unique_ptr<Piece> piece = takeFree(index);
        if (!piece)
            return;
        piece->size = std::size_t(std::min<std::uint64_t>(_pieceSize, left));
        source.read(piece->buffer.bytes().first(piece->size));
        left -= piece->size;
        deliver(index, std::move(piece));
    }
    source.close();
    source.check();
}

std::unique_ptr<ReadAhead::Piece> ReadAhead::takeFree(std::size_t index) {
    std::unique_lock lock(_mutex);
    const auto mayTake = [&] {
        const std::size_t available = _free.size() + (pieces - _made);
        return available > (index == _nextToWrite ? 0 : _kept);
    };
    if (!_changed.wait(lock, _stop.get_token(), mayTake) || _stop.stop_requested())
        return nullptr;
    if (_free.empty()) {
        ++_made;
        return std::make_unique<Piece>(Piece{SectorBuffer(_pieceSize)});
    }
    std::unique_ptr<Piece> piece = std::move(_free.back());
    _free.pop_back();
    return piece;
}

void ReadAhead::deliver(std::size_t index, std::unique_ptr<Piece> piece) {
    const std::lock_guard lock(_mutex);
    _tracks[index].ready.push_back(std::move(piece));
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
        return _given->buffer.bytes().first(_given->size);
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
