// SPDX-License-Identifier: LGPL-2.1-or-later
#include "fuzz/Values.h"

#include <array>

#include "quarner/platform/DRKeys.h"

namespace quarner::fuzz {
namespace {

constexpr int deepest = 6;

// The place of each word is part of the inputs' format: add new ones at the end.
constexpr std::array<const char*, 25> knownWords = {
    DRDeviceCanWriteCDKey,   DRDeviceMediaInfoKey,       DRStatusCurrentSpeedKey,
    DRDeviceMediaTypeKey,    DRDeviceMediaBlocksUsedKey, DRDeviceMediaBlocksFreeKey,
    DRDeviceBurnSpeedsKey,   DRDeviceMediaTypeCDROM,     DRDeviceMediaTypeCDR,
    DRStatusStateKey,        DRStatusPercentCompleteKey, DRStatusCurrentTrackKey,
    DRStatusTotalTracksKey,  DRErrorStatusKey,           DRErrorStatusErrorKey,
    DRStatusStatePreparing,  DRStatusStateSessionOpen,   DRStatusStateTrackOpen,
    DRStatusStateTrackWrite, DRStatusStateTrackClose,    DRStatusStateSessionClose,
    DRStatusStateFinishing,  DRStatusStateVerifying,     DRStatusStateDone,
    DRStatusStateFailed};

std::string wordFrom(Input& input) {
    const std::size_t choice = input.byte();
    return choice < knownWords.size() ? knownWords[choice] : input.text();
}

Dictionary dictionaryFrom(Input& input, int depth);
Value valueFrom(Input& input, int depth);

Array arrayFrom(Input& input, int depth) {
    Array list;
    for (int count = input.byte() % 8; count > 0; --count)
        list.push_back(valueFrom(input, depth));
    return list;
}

Icon iconFrom(Input& input) {
    Icon icon;
    for (int count = input.byte() % 3; count > 0; --count)
        icon.names.push_back(input.text());
    return icon;
}

Value valueFrom(Input& input, int depth) {
    switch (input.byte() % (depth < deepest ? 8 : 6)) {
    case 0:
        return Value();
    case 1:
        return Value(input.byte() % 2 == 1);
    case 2:
        return Value(input.number<std::int64_t>());
    case 3:
        return Value(input.number<double>());
    case 4:
        return Value(wordFrom(input));
    case 5:
        return Value(iconFrom(input));
    case 6:
        return Value(arrayFrom(input, depth + 1));
    default:
        return Value(dictionaryFrom(input, depth + 1));
    }
}

Dictionary dictionaryFrom(Input& input, int depth) {
    Dictionary dictionary;
    for (int count = input.byte() % 8; count > 0; --count) {
        const std::string key = wordFrom(input);
        dictionary[key] = valueFrom(input, depth);
    }
    return dictionary;
}

} // namespace

Value valueFrom(Input& input) { return valueFrom(input, 0); }

Dictionary dictionaryFrom(Input& input) { return dictionaryFrom(input, 0); }

} // namespace quarner::fuzz
