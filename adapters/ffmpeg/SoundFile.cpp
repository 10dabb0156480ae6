// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/SoundFile.h"

#include <array>
#include <utility>

#include "adapters/ffmpeg/ContainerSource.h"
#include "adapters/ffmpeg/MpegSource.h"

namespace quarner {

namespace {

using Kind = AudioDecoder::Chunk::Kind;
using MayContinue = WindowedFile::MayContinue;

/// The sound of a file as an MPEG stream; null if it is something else.
std::unique_ptr<MpegSource> openMpeg(WindowedFile& file) {
    auto source = std::make_unique<MpegSource>(file);
    const ByteRange range = bytesBetweenTags(file);
    return source->isCertain() || formatFound(file, range.begin) == "mp3" ? std::move(source)
                                                                          : nullptr;
}

std::unique_ptr<PacketSource> openSource(WindowedFile& file) {
    if (auto mpeg = openMpeg(file))
        return mpeg;
    return ContainerSource::open(file);
}

/// Whether one of the first chunks of the file is sound rather than damage.
bool startsToSound(AudioDecoder& decoder) {
    constexpr int mostChunks = 32;
    for (int i = 0; i < mostChunks; ++i) {
        const Kind kind = decoder.next().kind;
        if (kind != Kind::silence)
            return kind == Kind::sound;
    }
    return false;
}

PCMLength lengthOf(const SoundLength& sound) {
    return {sound.samples, sound.rate, resampledLength(sound.samples, sound.rate)};
}

/// The length of an MPEG stream without decoding more of it than its start.
std::optional<PCMLength> measureMpeg(MpegSource& source, WindowedFile& file) {
    if (const auto proven = source.provenLength())
        return lengthOf(*proven);
    const auto scanned = source.scannedLength();
    const auto decoder = scanned ? AudioDecoder::open(std::make_unique<MpegSource>(file)) : nullptr;
    const bool fits = decoder && startsToSound(*decoder) && decoder->emptyPackets() == 0;
    return fits ? std::optional(lengthOf(*scanned)) : std::nullopt;
}

/// A codec whose packets all decode to the same number of samples.
bool hasEqualPackets(AVCodecID codec) { return codec == AV_CODEC_ID_AAC; }

bool hasProvableLength(AVCodecID codec) {
    return hasEqualPackets(codec) || codec == AV_CODEC_ID_ALAC;
}

/// The ticks of the media that are heard by its tables.
std::int64_t ticksHeard(const Mp4Tables& tables, Mp4Tables::Window heard, bool hasEqual,
                        std::int64_t priming) {
    auto end = static_cast<std::int64_t>(tables.ticks);
    if (heard.until == Packet::open && hasEqual) // the decoder leaves the tail in
        end = static_cast<std::int64_t>(tables.packets * tables.packetTicks);
    const std::int64_t from = std::max(heard.from, priming);
    return std::max<std::int64_t>(std::min(heard.until, end) - from, 0);
}

/// Whether the next packet decodes to as many samples as its table says.
bool fitsTable(const AudioDecoder::Chunk& chunk, const AudioDecoder& decoder,
               const Mp4Tables& tables) {
    return chunk.kind == Kind::sound && decoder.decodedOfPacket() * tables.scale ==
                                            std::uint64_t(tables.packetTicks) * chunk.rate;
}

/// The length of an MP4 file by its tables, which have to fit what its first packets decode to.
std::optional<PCMLength> measureMp4(WindowedFile& file) {
    auto source = ContainerSource::open(file);
    if (!source || !source->tables() || !source->tables()->areProof() ||
        !hasProvableLength(source->parameters().codec_id))
        return std::nullopt;
    const ContainerSource& container = *source;
    const Mp4Tables tables = *source->tables();
    const bool hasEqual = hasEqualPackets(source->parameters().codec_id);
    const auto decoder = AudioDecoder::open(std::move(source));
    if (!decoder)
        return std::nullopt;
    std::uint32_t rate = 0;
    for (int i = 0; i < 2; ++i) {
        const AudioDecoder::Chunk chunk = decoder->next();
        if (!fitsTable(chunk, *decoder, tables) || (rate != 0 && chunk.rate != rate))
            return std::nullopt;
        rate = chunk.rate;
    }
    const std::uint64_t priming =
        decoder->priming() * tables.scale / rate + decoder->emptyPackets() * tables.packetTicks;
    const std::int64_t ticks =
        ticksHeard(tables, container.heard(), hasEqual, static_cast<std::int64_t>(priming));
    return lengthOf({static_cast<std::uint64_t>(ticks) * rate / tables.scale, rate});
}

/// Decodes a file from its start to its end.
std::optional<PCMLength> measureByDecoding(const std::string& path, const MayContinue& mayContinue,
                                           Measurement& result) {
    const auto stream = openSound(path, std::nullopt, mayContinue, &result.problem);
    if (!stream)
        return std::nullopt;
    std::array<std::int16_t, 8192> values = {};
    std::uint64_t pairs = 0;
    for (;;) {
        const auto count = stream->read(values);
        if (!count) {
            result.problem = stream->problem();
            result.isDamaged = stream->isDamaged();
        }
        if (!count || (mayContinue && !mayContinue()))
            return std::nullopt;
        pairs += *count / 2;
        if (*count < values.size())
            break;
    }
    const auto source = stream->source();
    return source ? PCMLength{source->samples, source->rate, pairs}
                  : PCMLength{pairs, Resampler::discRate, pairs};
}

/// Whether there is any sound near the start: noise is not decoded to its end.
bool isSound(const std::string& path, const MayContinue& mayContinue, std::string& problem) {
    const auto file = WindowedFile::open(path, mayContinue, &problem);
    auto source = file ? openSource(*file) : nullptr;
    const auto decoder = source ? AudioDecoder::open(std::move(source)) : nullptr;
    const bool isFound = decoder && startsToSound(*decoder);
    if (file && !isFound)
        problem = file->problem();
    return isFound;
}

} // namespace

std::unique_ptr<FFmpegPCMStream> openSound(const std::string& path,
                                           std::optional<std::uint64_t> length,
                                           MayContinue mayContinue, std::string* problem) {
    auto file = WindowedFile::open(path, std::move(mayContinue), problem);
    auto source = file ? openSource(*file) : nullptr;
    auto decoder = source ? AudioDecoder::open(std::move(source)) : nullptr;
    if (decoder)
        return std::make_unique<FFmpegPCMStream>(path, std::move(file), std::move(decoder), length);
    if (file && problem != nullptr)
        *problem = file->problem();
    return nullptr;
}

Measurement measureSound(const std::string& path, const MayContinue& mayContinue) {
    Measurement result;
    const auto file = WindowedFile::open(path, mayContinue, &result.problem);
    if (!file)
        return result;
    const auto mpeg = openMpeg(*file);
    result.length = mpeg ? measureMpeg(*mpeg, *file) : measureMp4(*file);
    if (!result.length && file->hasFailed())
        result.problem = file->problem();
    else if (!result.length && isSound(path, mayContinue, result.problem))
        result.length = measureByDecoding(path, mayContinue, result);
    result.wasStopped = !result.length && mayContinue && !mayContinue();
    return result;
}

} // namespace quarner
