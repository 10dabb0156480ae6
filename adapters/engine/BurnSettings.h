// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>

#include "quarner/platform/Value.h"

namespace quarner {

/// The settings of a burn: the DRBurn...Key entries of DRKeys.h. The initial values are used for
/// missing entries.
struct BurnSettings {
    /// Read the written disc back and compare it.
    bool verify = true;
    /// Erase the content of a rewritable disc first.
    bool overwrite = false;
    /// Leave the disc open for further sessions.
    bool appendable = false;
    /// The write speed in blocks per second; `std::nullopt` is the fastest that the drive and the
    /// disc support.
    std::optional<double> requestedSpeed;
};

/// Returns the settings in a burn's properties. An entry of the wrong type counts as missing.
BurnSettings burnSettings(const Dictionary& properties);

} // namespace quarner
