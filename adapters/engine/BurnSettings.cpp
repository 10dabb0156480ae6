// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/BurnSettings.h"

#include "quarner/platform/DRKeys.h"

namespace quarner {
namespace {

bool boolean(const Dictionary& properties, const char* key, bool otherwise) {
    const Value& value = valueFor(properties, key);
    return value.isNumber() ? value.asBool() : otherwise;
}

std::optional<double> speed(const Dictionary& properties) {
    const double blocks = valueFor(properties, DRBurnRequestedSpeedKey).asDouble();
    return blocks > 0.0 ? std::optional(blocks) : std::nullopt;
}

} // namespace

BurnSettings burnSettings(const Dictionary& properties) {
    const BurnSettings otherwise;
    return {.isVerified = boolean(properties, DRBurnVerifyDiscKey, otherwise.isVerified),
            .overwritesDisc = boolean(properties, DRBurnOverwriteDiscKey, otherwise.overwritesDisc),
            .staysAppendable = boolean(properties, DRBurnAppendableKey, otherwise.staysAppendable),
            .requestedSpeed = speed(properties)};
}

} // namespace quarner
