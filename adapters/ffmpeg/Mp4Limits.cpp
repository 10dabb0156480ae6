// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/Mp4Limits.h"

#include <algorithm>
#include <array>
#include <vector>

#include "adapters/ffmpeg/Mp4Boxes.h"

namespace quarner {

namespace {

constexpr std::uint64_t mostPackets = 1'000'000;  // of all tables
constexpr std::uint64_t mostMemory = 24'000'000;  // bytes for all other tables
constexpr std::uint64_t mostSearched = 24U << 20; // bytes outside of the media
constexpr std::uint64_t mostNotes = 20'000;
constexpr std::uint64_t mostNoteBytes = 4U << 20;  // without pictures
constexpr std::uint64_t mostSamples = 160'000'000; // of all chunks, where samples have no packets
constexpr std::uint64_t mostTopBoxes = 100'000;

struct Table {
    std::uint32_t name;
    std::uint64_t countAt;    // the place of the number of entries, from the name on
    std::uint64_t entryBytes; // of the file; 0: an entry is a packet, and may take no bytes
    std::uint64_t memory;     // bytes for an entry
};

constexpr std::array<Table, 12> tables = {{{Mp4Box::code("stsz"), 12, 0, 0},
                                           {Mp4Box::code("stz2"), 12, 0, 0},
                                           {Mp4Box::code("trun"), 8, 0, 0},
                                           {Mp4Box::code("stts"), 8, 8, 8},
                                           {Mp4Box::code("ctts"), 8, 8, 16},
                                           {Mp4Box::code("stsc"), 8, 12, 12},
                                           {Mp4Box::code("stco"), 8, 4, 8},
                                           {Mp4Box::code("co64"), 8, 8, 8},
                                           {Mp4Box::code("stss"), 8, 4, 8},
                                           {Mp4Box::code("stps"), 8, 4, 8},
                                           {Mp4Box::code("elst"), 8, 12, 24},
                                           {Mp4Box::code("dref"), 8, 12, 128}}};

/// Boxes that may hold tables where notes are expected.
constexpr std::array<std::string_view, 24> holders = {
    "moov", "trak", "mdia", "minf", "stbl", "stsd", "udta", "meta", "ilst", "edts", "dinf", "moof",
    "traf", "mvex", "wave", "tref", "sinf", "schi", "cmov", "free", "skip", "hoov", "wide", "uuid"};

const Table* tableNamed(std::uint32_t name) {
    const auto* const found = std::find_if(tables.begin(), tables.end(),
                                           [&](const Table& each) { return each.name == name; });
    return found != tables.end() ? found : nullptr;
}

bool mayBeginName(std::uint32_t letter) {
    return letter == 's' || letter == 'c' || letter == 't' || letter == 'e' || letter == 'd';
}

bool mayHoldTables(const Mp4Box& box) {
    return tableNamed(box.type) != nullptr ||
           std::any_of(holders.begin(), holders.end(),
                       [&](std::string_view name) { return box.is(name); });
}

class Limits {
public:
    explicit Limits(WindowedFile& file) : _file(file), _boxes(file) {}

    bool areKept(std::uint64_t begin);

private:
    bool isOver() const;
    std::uint64_t number(std::uint64_t offset, std::size_t size);
    Mp4Box boxAt(std::uint64_t offset);
    bool isSearched(const Mp4Box& box);
    void findNotes(const Mp4Box& holder);
    void findNotesOfMeta(const Mp4Box& meta);
    void addNote(const Mp4Box& box);
    void search(const Mp4Box& box);
    void searchRange(std::uint64_t from, std::uint64_t until);
    void count(std::uint64_t offset, std::uint64_t until);
    void noteChunks(std::uint64_t entriesAt, std::uint64_t entries, std::uint64_t until);

    WindowedFile& _file;
    Mp4Boxes _boxes;
    std::vector<Mp4Box> _notes; // in the order of the file
    std::uint64_t _noteBytes = 0;
    std::uint64_t _searched = 0;
    std::uint64_t _packets = 0;
    std::uint64_t _memory = 0;
    std::uint64_t _chunks = 0;
    std::uint64_t _mostInChunk = 0;
    bool _isCompressed = false;
};

bool Limits::areKept(std::uint64_t begin) {
    std::uint64_t at = begin;
    for (std::uint64_t i = 0; at + 8 <= _file.size(); ++i) {
        const Mp4Box box = boxAt(at);
        if (box.end <= at) // a size that cannot be right: libavformat stops here, too
            break;
        if (isSearched(box))
            search(box);
        if (i > mostTopBoxes || isOver())
            return false;
        at = box.end;
    }
    return _mostInChunk == 0 || _chunks <= mostSamples / _mostInChunk;
}

bool Limits::isOver() const {
    return _searched > mostSearched || _packets > mostPackets || _memory > mostMemory ||
           _notes.size() > mostNotes || _noteBytes > mostNoteBytes || _isCompressed ||
           _boxes.hasFailed();
}

std::uint64_t Limits::number(std::uint64_t offset, std::size_t size) {
    std::uint64_t value = 0;
    for (const std::uint8_t byte : _file.view(offset, size))
        value = value << 8 | byte;
    return value;
}

/// The box at an offset, cut at the end of the file as libavformat cuts it. It ends at 0 if it is
/// smaller than its header.
Mp4Box Limits::boxAt(std::uint64_t offset) {
    std::uint64_t size = number(offset, 4);
    Mp4Box box = {offset + 8, _file.size(), static_cast<std::uint32_t>(number(offset + 4, 4))};
    if (size == 1) {
        size = number(offset + 8, 8);
        box.begin += 8;
    }
    if (size != 0 && size < box.begin - offset)
        box.end = 0;
    else if (size != 0 && size < _file.size() - offset)
        box.end = offset + size;
    box.begin = std::min(box.begin, box.end);
    return box;
}

/// Whether libavformat may read tables in a box that is in no other box.
bool Limits::isSearched(const Mp4Box& box) {
    if (box.is("free") || box.is("skip") || box.is("hoov")) { // it may be a movie that was freed
        const std::uint64_t inner = number(box.begin + 4, 4);
        return inner == Mp4Box::code("mvhd") || inner == Mp4Box::code("cmov");
    }
    return !box.is("mdat") && !box.is("uuid") && !box.is("wide");
}

/// Finds the notes in a movie or a track.
void Limits::findNotes(const Mp4Box& holder) {
    _boxes.each(holder, [&](const Mp4Box& box) {
        if (box.is("trak"))
            findNotes(box);
        else if (box.is("meta"))
            findNotesOfMeta(box);
        else if (box.is("udta"))
            _boxes.each(box, [&](const Mp4Box& note) {
                if (note.is("meta"))
                    findNotesOfMeta(note);
                else
                    addNote(note);
            });
    });
}

void Limits::findNotesOfMeta(const Mp4Box& meta) {
    // With a version in MP4, without one in QuickTime.
    const bool hasVersion =
        number(meta.begin, 4) == 0 && number(meta.begin + 8, 4) == Mp4Box::code("hdlr");
    if (!hasVersion && number(meta.begin + 4, 4) != Mp4Box::code("hdlr"))
        return;
    const Mp4Box content = {std::min(meta.begin + (hasVersion ? 4 : 0), meta.end), meta.end};
    _boxes.each(content, [&](const Mp4Box& list) {
        if (list.is("ilst"))
            _boxes.each(list, [&](const Mp4Box& note) { addNote(note); });
    });
}

void Limits::addNote(const Mp4Box& box) {
    if (mayHoldTables(box) || _notes.size() > mostNotes)
        return;
    _notes.push_back(box);
    if (!box.is("covr"))
        _noteBytes += box.end - box.begin;
}

/// Searches a box, the notes in it excepted.
void Limits::search(const Mp4Box& box) {
    _notes.clear();
    if (box.is("moov")) {
        _boxes.prefetch(box); // it is read three times: here, by `mp4TablesOf` and by libavformat
        findNotes(box);
    }
    _searched += box.end - box.begin;
    if (isOver())
        return;
    std::uint64_t from = box.begin - 4; // its own name may be that of a table
    for (const Mp4Box& note : _notes) {
        searchRange(from, note.begin);
        from = note.end;
    }
    searchRange(from, box.end);
}

void Limits::searchRange(std::uint64_t from, std::uint64_t until) {
    constexpr std::size_t atOnce = 65536;
    constexpr std::size_t nameSize = 4;
    std::vector<std::uint64_t> found;
    while (from + nameSize <= until && !_file.hasFailed()) {
        const auto bytes = _file.view(
            from, static_cast<std::size_t>(std::min<std::uint64_t>(atOnce, until - from)));
        std::uint32_t name = 0;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            name = name << 8 | bytes[i];
            if (i + 1 < nameSize || !mayBeginName(name >> 24))
                continue;
            if (tableNamed(name) != nullptr)
                found.push_back(from + i + 1 - nameSize);
            _isCompressed = _isCompressed || name == Mp4Box::code("cmov");
        }
        from += bytes.size() - std::min(bytes.size(), nameSize - 1);
    }
    for (const std::uint64_t offset : found)
        count(offset, until);
}

/// Adds the entries of the table whose name is at an offset.
void Limits::count(std::uint64_t offset, std::uint64_t until) {
    const Table* const table = tableNamed(static_cast<std::uint32_t>(number(offset, 4)));
    if (table == nullptr)
        return;
    constexpr std::uint64_t longSize = 8; // bytes behind the name, where the size before it is 1
    const bool isLong = offset >= 4 && number(offset - 4, 4) == 1;
    for (const std::uint64_t shift : {std::uint64_t(0), isLong ? longSize : 0}) {
        const std::uint64_t at = offset + table->countAt + shift;
        std::uint64_t entries = number(at, 4);
        if (table->entryBytes > 0) // libavformat reads them to the end of the file at most
            entries =
                std::min(entries, (_file.size() - std::min(at, _file.size())) / table->entryBytes);
        _memory += entries * table->memory;
        _packets += table->entryBytes == 0 ? entries : 0;
        if (table->name == Mp4Box::code("stco") || table->name == Mp4Box::code("co64"))
            _chunks += entries;
        else if (table->name == Mp4Box::code("stsc") && _memory <= mostMemory)
            noteChunks(at + 4, entries, until);
        if (!isLong)
            return;
    }
}

void Limits::noteChunks(std::uint64_t entriesAt, std::uint64_t entries, std::uint64_t until) {
    constexpr std::uint64_t entrySize = 12;
    for (std::uint64_t i = 0; i < entries && entriesAt + i * entrySize < until; ++i)
        _mostInChunk = std::max(_mostInChunk, number(entriesAt + i * entrySize + 4, 4));
}

} // namespace

bool hasBearableTables(WindowedFile& file, std::uint64_t begin) {
    return Limits(file).areKept(begin);
}

} // namespace quarner
