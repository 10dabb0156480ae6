// SPDX-License-Identifier: LGPL-2.1-or-later
#include <cstdint>
#include <limits>

#include "fuzz/seeds/Seeds.h"

namespace quarner::fuzz {
namespace {

// The places of the words in Values.cpp.
enum Word : unsigned {
    CanWrite,
    MediaInfo,
    Speed,
    MediaType,
    BlocksUsed,
    BlocksFree,
    BurnSpeeds,
    CDROM,
    CDR,
    State,
    Percent,
    Track,
    Tracks,
    ErrorStatus,
    ErrorCode,
    Preparing,
    SessionOpen,
    TrackOpen,
    TrackWrite,
    TrackClose,
    SessionClose,
    Finishing,
    Verifying,
    Done,
    Failed
};

// The types of Values.cpp.
enum Type : unsigned { Null, Truth, Whole, Real, Text, Icon, List, Record };

Bytes& word(Bytes& bytes, Word key, Word value) { return bytes.byte(key).byte(Text).byte(value); }
Bytes& whole(Bytes& bytes, Word key, std::int64_t value) {
    return bytes.byte(key).byte(Whole).number(value);
}
Bytes& real(Bytes& bytes, Word key, double value) {
    return bytes.byte(key).byte(Real).number(value);
}

/// A drive with a blank disc, and a track of `blocks` blocks.
Bytes ordinary(std::uint64_t blocks = 1000) {
    Bytes bytes;
    bytes.number(359847U).number(blocks);
    bytes.byte(1).byte(CanWrite).byte(Truth).byte(1);
    bytes.byte(2);
    real(bytes, Speed, 1800).byte(MediaInfo).byte(Record).byte(4);
    word(bytes, MediaType, CDR);
    whole(bytes, BlocksUsed, 0);
    whole(bytes, BlocksFree, 359847);
    bytes.byte(BurnSpeeds).byte(List).byte(1).byte(Whole).number(std::int64_t(1800));
    return bytes;
}

Bytes& progress(Bytes& bytes, Word state, double fraction, double speed) {
    bytes.byte(5);
    word(bytes, State, state);
    real(bytes, Percent, fraction);
    real(bytes, Speed, speed);
    whole(bytes, Track, 1);
    return whole(bytes, Tracks, 2);
}

Bytes& failure(Bytes& bytes, std::int64_t code) {
    word(bytes.byte(2), State, Failed).byte(ErrorStatus).byte(Record).byte(1);
    return whole(bytes, ErrorCode, code);
}

void putBurns(const SeedFolder& folder) {
    const auto put = [&](std::string_view name, std::string_view bytes) {
        folder.put("status-record", name, bytes);
    };
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    constexpr double endless = std::numeric_limits<double>::infinity();
    Bytes burn = ordinary();
    for (const Word state : {Preparing, SessionOpen, TrackOpen, TrackWrite, TrackClose,
                             SessionClose, Finishing, Verifying, Done})
        progress(burn, state, 0.5, 1800);
    put("a-burn", burn);
    Bytes failed = ordinary();
    put("a-failure", failure(failed, 0x80020063));
    Bytes cancelled = ordinary();
    put("a-cancel", failure(cancelled, 0x80020066));
    Bytes odd = ordinary(std::numeric_limits<std::uint64_t>::max());
    for (const double figure : {0.0, -1.0, 1e-300, 1e300, none, endless, -endless}) {
        progress(odd, TrackWrite, figure, 75);
        progress(odd, TrackWrite, 0.5, figure);
    }
    put("odd-figures", odd);
    Bytes typeless = ordinary();
    for (const unsigned type : {Null, Truth, Icon, List, Record})
        for (const Word key : {State, Percent, Speed, ErrorStatus})
            typeless.byte(1).byte(key).byte(type).byte(0);
    put("other-types", typeless);
}

void putDrives(const SeedFolder& folder) {
    const auto put = [&](std::string_view name, std::string_view bytes) {
        folder.put("status-record", name, bytes);
    };
    put("nothing", "");
    for (const std::int64_t blocks : {std::int64_t(-1), std::int64_t(1) << 53, INT64_MAX}) {
        Bytes bytes;
        bytes.number(0xFFFFFFFFU).number(std::uint64_t(1)).byte(0);
        bytes.byte(1).byte(MediaInfo).byte(Record).byte(2);
        whole(bytes, BlocksUsed, blocks);
        put("blocks-" + std::to_string(blocks), whole(bytes, BlocksFree, blocks));
    }
    Bytes speeds;
    speeds.number(0U).number(std::uint64_t(1)).byte(0);
    speeds.byte(1).byte(MediaInfo).byte(Record).byte(1);
    put("no-speeds", speeds.byte(BurnSpeeds).byte(List).byte(0));
    Bytes text;
    text.number(0U).number(std::uint64_t(1)).byte(0);
    put("a-text-for-a-disc", text.byte(1).byte(MediaInfo).byte(Text).byte(CDROM));
}

} // namespace

void putStatusSeeds(const SeedFolder& folder) {
    putBurns(folder);
    putDrives(folder);
}

} // namespace quarner::fuzz
