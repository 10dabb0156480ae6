// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "adapters/engine/DiscPlan.h"

namespace quarner {

/// The CUE sheet of an audio disc whose sectors lie in one BIN file, in the form that every reader
/// understands: INDEX 01 at the true sector in the BIN, the silence before a track in the BIN as
/// well and marked by INDEX 00, no PREGAP. `binName` has no folder, no double quote and no line
/// break.
std::string cueSheet(const DiscPlan& plan, std::string_view binName);

/// The BIN file that a CUE sheet names, as it stands there; nothing when it names none.
std::optional<std::string> binNamedBy(std::string_view sheet);

} // namespace quarner
