// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/Mp4Tables.h"

#include <algorithm>
#include <functional>

#include "adapters/ffmpeg/Mp4Boxes.h"

namespace quarner {

namespace {

constexpr std::uint32_t mostEdits = 16;

/// The tables of one track, as far as they were found.
struct Track {
    bool isSound = false;
    std::uint32_t scale = 0;
    std::vector<Mp4Tables::Edit> edits;
    std::uint64_t editCount = 0;
    Mp4Box times;   // stts
    Mp4Box sizes;   // stsz
    Mp4Box runs;    // stsc
    Mp4Box offsets; // stco or co64
};

class Reader {
public:
    explicit Reader(WindowedFile& file) : _boxes(file) {}

    std::optional<Mp4Tables> read();

private:
    void readMovie(const Mp4Box& movie);
    Track readTrack(const Mp4Box& trak);
    void readEdits(const Mp4Box& box, Track& track);
    bool readTimes(const Track& track);
    std::optional<std::uint64_t> bytesOf(const Track& track, std::uint64_t first,
                                         std::uint32_t count);
    bool placesFit(const Track& track);

    Mp4Boxes _boxes;
    Mp4Tables _tables;
    std::vector<Track> _sounds;
    bool _hasFragments = false;
};

std::optional<Mp4Tables> Reader::read() {
    bool isMovie = false;
    _boxes.each({0, _boxes.fileSize()}, [&](const Mp4Box& box) {
        isMovie = isMovie || box.is("moov");
        if (box.is("moov"))
            readMovie(box);
        else if (box.is("moof"))
            _hasFragments = true;
    });
    if (!isMovie || _sounds.size() != 1)
        return std::nullopt;
    const Track& sound = _sounds.front();
    _tables.scale = sound.scale;
    _tables.edits = sound.edits;
    _tables.editCount = sound.editCount;
    const bool isTimed = readTimes(sound);
    _tables.isConsistent = !_hasFragments && isTimed && placesFit(sound) && !_boxes.hasFailed();
    return _tables;
}

void Reader::readMovie(const Mp4Box& movie) {
    _boxes.each(movie, [&](const Mp4Box& box) {
        if (box.is("mvhd")) {
            _tables.movieScale = _boxes.number(box, _boxes.number8(box, 0) == 1 ? 20 : 12);
        } else if (box.is("mvex")) {
            _hasFragments = true;
        } else if (box.is("trak")) {
            const Track track = readTrack(box);
            if (track.isSound)
                _sounds.push_back(track);
        }
    });
}

Track Reader::readTrack(const Mp4Box& trak) {
    Track track;
    const std::function<void(const Mp4Box&)> visit = [&](const Mp4Box& box) {
        if (box.is("mdia") || box.is("minf") || box.is("stbl") || box.is("edts"))
            _boxes.each(box, visit);
        else if (box.is("hdlr"))
            track.isSound = track.isSound || _boxes.number(box, 8) == Mp4Box::code("soun");
        else if (box.is("mdhd"))
            track.scale = _boxes.number(box, _boxes.number8(box, 0) == 1 ? 20 : 12);
        else if (box.is("elst"))
            readEdits(box, track);
        else if (box.is("stts"))
            track.times = box;
        else if (box.is("stsz"))
            track.sizes = box;
        else if (box.is("stsc"))
            track.runs = box;
        else if (box.is("stco") || box.is("co64"))
            track.offsets = box;
    };
    _boxes.each(trak, visit);
    return track;
}

void Reader::readEdits(const Mp4Box& box, Track& track) {
    const bool isWide = _boxes.number8(box, 0) == 1;
    const std::uint64_t size = isWide ? 20 : 12;
    const std::uint32_t count = _boxes.number(box, 4);
    track.editCount += count;
    for (std::uint32_t i = 0; i < std::min(count, mostEdits); ++i) {
        const std::uint64_t at = 8 + i * size;
        Mp4Tables::Edit edit;
        edit.duration = isWide ? _boxes.number64(box, at) : _boxes.number(box, at);
        edit.mediaTime = isWide ? static_cast<std::int64_t>(_boxes.number64(box, at + 8))
                                : static_cast<std::int32_t>(_boxes.number(box, at + 4));
        track.edits.push_back(edit);
    }
}

/// Sums up the durations. False if there are none, or if only a few packets are alike.
bool Reader::readTimes(const Track& track) {
    const std::uint32_t entries = _boxes.number(track.times, 4);
    bool isUniform = entries > 0;
    for (std::uint32_t i = 0; i < entries && !_boxes.hasFailed(); ++i) {
        const std::uint32_t count = _boxes.number(track.times, 8 + 8ULL * i);
        const std::uint32_t ticks = _boxes.number(track.times, 12 + 8ULL * i);
        const bool isLast = i + 1 == entries;
        if (i == 0)
            _tables.packetTicks = ticks;
        isUniform =
            isUniform && count > 0 && ticks > 0 &&
            (ticks == _tables.packetTicks || (isLast && count == 1 && ticks < _tables.packetTicks));
        _tables.lastPacketTicks = ticks;
        _tables.packets += count;
        _tables.ticks += std::uint64_t(count) * ticks;
    }
    if (!isUniform)
        _tables.packetTicks = 0;
    return isUniform && _tables.scale > 0 && !_boxes.hasFailed();
}

/// The bytes of `count` packets from `first` on; nothing if one of them has no size.
std::optional<std::uint64_t> Reader::bytesOf(const Track& track, std::uint64_t first,
                                             std::uint32_t count) {
    if (const std::uint32_t common = _boxes.number(track.sizes, 4); common != 0)
        return std::uint64_t(common) * count;
    std::uint64_t bytes = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint32_t size = _boxes.number(track.sizes, 12 + 4 * (first + i));
        if (size == 0 || _boxes.hasFailed())
            return std::nullopt;
        bytes += size;
    }
    return bytes;
}

/// True if every packet has a size and a place within the file.
bool Reader::placesFit(const Track& track) {
    const std::uint64_t packets = _boxes.number(track.sizes, 8);
    const std::uint32_t runs = _boxes.number(track.runs, 4);
    const std::uint32_t chunks = _boxes.number(track.offsets, 4);
    if (packets != _tables.packets || packets == 0 || runs == 0)
        return false;
    std::uint64_t packet = 0;
    std::uint32_t run = 0;
    for (std::uint32_t chunk = 0; chunk < chunks; ++chunk) {
        while (run + 1 < runs && !_boxes.hasFailed() &&
               _boxes.number(track.runs, 8 + 12ULL * (run + 1)) <= chunk + 1)
            ++run;
        const std::uint32_t inChunk = _boxes.number(track.runs, 12 + 12ULL * run);
        const std::uint64_t start = track.offsets.is("co64")
                                        ? _boxes.number64(track.offsets, 8 + 8ULL * chunk)
                                        : _boxes.number(track.offsets, 8 + 4ULL * chunk);
        if (inChunk == 0 || inChunk > packets - packet || start > _boxes.fileSize() ||
            _boxes.number(track.runs, 16 + 12ULL * run) != 1 || _boxes.hasFailed())
            return false;
        const auto bytes = bytesOf(track, packet, inChunk);
        if (!bytes || *bytes > _boxes.fileSize() - start)
            return false;
        packet += inChunk;
    }
    return packet == packets;
}

} // namespace

std::optional<Mp4Tables::Window> Mp4Tables::edited() const {
    const auto isHeard = [](const Edit& edit) { return edit.mediaTime >= 0; };
    const auto edit = std::find_if(edits.begin(), edits.end(), isHeard);
    if (editCount != edits.size() || edit == edits.end() ||
        std::count_if(edit, edits.end(), isHeard) != 1 || movieScale == 0 || scale == 0)
        return std::nullopt;
    constexpr std::uint64_t longest = 1ULL << 40; // ticks; no file comes near
    if (edit->duration > longest || static_cast<std::uint64_t>(edit->mediaTime) > longest)
        return std::nullopt;
    const auto end = static_cast<std::int64_t>(ticks);
    const auto tick = std::int64_t{scale / movieScale} + 1;
    // Rounded up: a sample that has begun is heard.
    const auto length = static_cast<std::int64_t>(
        (edit->duration / movieScale) * scale +
        ((edit->duration % movieScale) * scale + movieScale - 1) / movieScale);
    Window window = {edit->mediaTime, edit->mediaTime + length};
    const std::int64_t missing = end - window.until;
    const bool endsWhole = packetTicks != 0 && lastPacketTicks == packetTicks;
    if (edit->duration == 0 || missing <= 0 || (missing <= tick && !endsWhole))
        window.until = end;
    window.until = std::max(window.until, window.from);
    return window;
}

std::optional<Mp4Tables> mp4TablesOf(WindowedFile& file) { return Reader(file).read(); }

} // namespace quarner
