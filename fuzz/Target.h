// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>

/// What every target defines: gives one input to the code under test and ends the program if a
/// property does not hold. Called by libFuzzer or by Replay.cpp, always on the same thread. The
/// name is libFuzzer's. Returns 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
