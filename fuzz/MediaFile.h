// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>

namespace quarner::fuzz {

/// Measures an audio file of these bytes and then decodes it, through the service that the burn
/// uses. Property: if the file is accepted, it can be opened and delivers exactly the measured
/// length. `name` is the file's name; its extension is what a host would see.
void checkMediaFile(const char* name, const std::uint8_t* data, std::size_t size);

} // namespace quarner::fuzz
