// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/BurnSettings.h"

#include "quarner/platform/DRKeys.h"

namespace quarner {
namespace {

bool boolean(const Dictionary& properties, const char* key, bool byDefault) {
    const Value& value = valueFor(properties, key);
    return value.isNumber() ? value.asBool() : byDefault;
}

std::optional<double> speed(const Dictionary& properties) {
    const double blocks = valueFor(properties, DRBurnRequestedSpeedKey).asDouble();
    return blocks > 0.0 ? std::optional(blocks) : std::nullopt;
}

} // namespace

BurnSettings burnSettings(const Dictionary& properties) {
    const BurnSettings defaults;
    return {.verify = boolean(properties, DRBurnVerifyDiscKey, defaults.verify),
            .overwrite = boolean(properties, DRBurnOverwriteDiscKey, defaults.overwrite),
            .appendable = boolean(properties, DRBurnAppendableKey, defaults.appendable),
            .requestedSpeed = speed(properties)};
}

} // namespace quarner
