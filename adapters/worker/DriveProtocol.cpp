// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/worker/DriveProtocol.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <string>
#include <string_view>

#include "quarner/platform/DRKeys.h"

namespace quarner {
namespace {

constexpr std::int64_t mostBlocks = 0xFFFFFFFF; ///< of any disc: the commands have 32 bits
constexpr std::size_t mostSpeeds = 64;
constexpr std::int64_t mostBlocksPerSecond = 1'000'000;

std::uint32_t sectorsFor(const Dictionary& fields, std::string_view key) {
    const std::int64_t number = valueFor(fields, key).asInt64();
    if (number < 0 || number > std::numeric_limits<std::uint32_t>::max())
        throw BurnFailure(DRError::Internal, "no track has that many sectors");
    return std::uint32_t(number);
}

DiscFacts::State stateFor(std::int64_t number) {
    using State = DiscFacts::State;
    return number >= 0 && number <= std::int64_t(State::Unsuitable) ? State(number) : State::None;
}

std::uint64_t countFor(const Dictionary& fields, std::string_view key) {
    return std::uint64_t(std::clamp<std::int64_t>(valueFor(fields, key).asInt64(), 0, mostBlocks));
}

/// No other text gets into the properties of a drive.
std::string mediaTypeFor(const std::string& text) {
    static constexpr std::string_view types[] = {DRDeviceMediaTypeCDROM, DRDeviceMediaTypeCDR,
                                                 DRDeviceMediaTypeCDRW,  DRDeviceMediaTypeDVDROM,
                                                 DRDeviceMediaTypeDVDR,  DRDeviceMediaTypeDVDRW,
                                                 DRDeviceMediaTypeBD};
    if (text.empty() || std::find(std::begin(types), std::end(types), text) != std::end(types))
        return text;
    return DRDeviceMediaTypeUnknown;
}

std::vector<std::int64_t> speedsOf(const Array& values) {
    std::vector<std::int64_t> speeds;
    for (const Value& value : values)
        if (const std::int64_t speed = value.asInt64();
            speed > 0 && speed <= mostBlocksPerSecond && speeds.size() < mostSpeeds)
            speeds.push_back(speed);
    return speeds;
}

} // namespace

const Dictionary& dictionaryFor(const Dictionary& fields, std::string_view key) {
    static const Dictionary empty;
    const Dictionary* const found = valueFor(fields, key).asDictionary();
    return found == nullptr ? empty : *found;
}

const std::string& textFor(const Dictionary& fields, std::string_view key) {
    static const std::string empty;
    const std::string* const found = valueFor(fields, key).asString();
    return found == nullptr ? empty : *found;
}

Dictionary fieldsOf(const DriveRecord& record) {
    return {{"node", record.node},
            {"sysPath", record.sysPath},
            {"vendor", record.vendor},
            {"product", record.product},
            {"canWriteCD", record.canWriteCD}};
}

DriveRecord driveRecordOf(const Dictionary& fields) {
    return {textFor(fields, "node"), textFor(fields, "sysPath"), textFor(fields, "vendor"),
            textFor(fields, "product"), valueFor(fields, "canWriteCD").asBool()};
}

Dictionary fieldsOf(const DiscFacts& disc) {
    return {{"state", int(disc.state)},
            {"type", disc.type},
            {"isErasable", disc.isErasable},
            {"isOverwritable", disc.isOverwritable},
            {"usedBlocks", disc.usedBlocks},
            {"freeBlocks", disc.freeBlocks},
            {"speeds", Array(disc.speeds.begin(), disc.speeds.end())}};
}

DiscFacts discFactsOf(const Dictionary& fields) {
    DiscFacts disc;
    disc.state = stateFor(valueFor(fields, "state").asInt64());
    disc.type = mediaTypeFor(textFor(fields, "type"));
    disc.isErasable = valueFor(fields, "isErasable").asBool();
    disc.isOverwritable = valueFor(fields, "isOverwritable").asBool();
    disc.usedBlocks = countFor(fields, "usedBlocks");
    disc.freeBlocks = countFor(fields, "freeBlocks");
    if (const Array* const speeds = valueFor(fields, "speeds").asArray())
        disc.speeds = speedsOf(*speeds);
    return disc;
}

Dictionary fieldsOf(const DiscPlan& plan) {
    Array tracks;
    for (const TrackPlan& track : plan.tracks)
        tracks.push_back(Dictionary{{"preGap", track.preGap}, {"length", track.length}});
    return {{"sectorSize", plan.sectorSize}, {"tracks", std::move(tracks)}};
}

DiscPlan discPlanOf(const Dictionary& fields) {
    DiscPlan plan;
    const bool isData = valueFor(fields, "sectorSize").asInt64() == dataBlockSize;
    plan.sectorSize = isData ? dataBlockSize : audioSectorSize;
    const Array* const tracks = valueFor(fields, "tracks").asArray();
    if (tracks == nullptr || tracks->empty() || tracks->size() > mostTracks)
        throw BurnFailure(DRError::Internal, "no disc has that many tracks");
    for (const Value& track : *tracks) {
        static const Dictionary none;
        const Dictionary& found = track.asDictionary() == nullptr ? none : *track.asDictionary();
        plan.tracks.push_back({sectorsFor(found, "preGap"), sectorsFor(found, "length")});
    }
    return plan;
}

Dictionary fieldsOf(const BurnSettings& settings) {
    Dictionary fields = {{"verify", settings.verify},
                         {"overwrite", settings.overwrite},
                         {"appendable", settings.appendable}};
    if (settings.requestedSpeed)
        fields.emplace("requestedSpeed", *settings.requestedSpeed);
    return fields;
}

BurnSettings burnSettingsOf(const Dictionary& fields) {
    BurnSettings settings;
    settings.verify = valueFor(fields, "verify").asBool();
    settings.overwrite = valueFor(fields, "overwrite").asBool();
    settings.appendable = valueFor(fields, "appendable").asBool();
    if (const double speed = valueFor(fields, "requestedSpeed").asDouble(); speed > 0.0)
        settings.requestedSpeed = speed;
    return settings;
}

Dictionary fieldsOf(const BurnFailure& failure) {
    Dictionary fields = {{"error", static_cast<std::uint32_t>(failure.error())},
                         {"info", failure.info()},
                         {"path", failure.path()}};
    if (failure.sector())
        fields.emplace("sector", *failure.sector());
    if (dynamic_cast<const DriveNotTaken*>(&failure) != nullptr)
        fields.emplace("isNotTaken", true);
    return fields;
}

DRError errorFor(std::uint64_t number) {
    const auto code = static_cast<DRError>(static_cast<std::uint32_t>(number));
    constexpr std::int64_t noCode = -1;
    const bool isKnown =
        code != DRError() && textForBurnErrorCode(signedCode(code)) != textForBurnErrorCode(noCode);
    return isKnown ? code : DRError::Internal;
}

void throwFailure(const Dictionary& fields) {
    std::optional<std::uint64_t> sector;
    if (const Value& found = valueFor(fields, "sector");
        found.isNumber() && found.asUInt64() <= std::uint64_t(mostBlocks))
        sector = found.asUInt64();
    const BurnFailure failure(errorFor(valueFor(fields, "error").asUInt64()),
                              textFor(fields, "info"), textFor(fields, "path"), sector);
    if (valueFor(fields, "isNotTaken").asBool())
        throw DriveNotTaken(failure.error(), failure.info());
    throw failure;
}

} // namespace quarner
