// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "adapters/engine/DiscPlan.h"

namespace quarner {

/// Returns the CUE sheet of an audio disc whose sectors are in one BIN file, in the form that all
/// readers understand: INDEX 01 at the true sector in the BIN, the silence before a track also in
/// the BIN and marked by INDEX 00, no PREGAP. `binName` has no folder, no double quote and no line
/// break.
std::string cueSheet(const DiscPlan& plan, std::string_view binName);

/// Returns the name of the BIN file in a CUE sheet, unchanged; `std::nullopt` if there is none.
std::optional<std::string> binNamedBy(std::string_view sheet);

} // namespace quarner
