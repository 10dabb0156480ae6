// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>

#include "quarner/platform/Value.h"

namespace quarner {

/// What is asked of a burn: the DRBurn...Key entries of DRKeys.h, with what holds where one is
/// missing.
struct BurnSettings {
    /// The written disc is read back and compared.
    bool isVerified = true;
    /// What a rewritable disc holds may be replaced.
    bool overwritesDisc = false;
    /// The disc takes further sessions afterwards.
    bool staysAppendable = false;
    /// Blocks per second; nothing asks for what the drive and the disc can do.
    std::optional<double> requestedSpeed;
};

/// The settings that a burn's properties stand for. Entries of other kinds count as missing.
BurnSettings burnSettings(const Dictionary& properties);

} // namespace quarner
