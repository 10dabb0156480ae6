// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "quarner/platform/DRDevice.h"

/// What is asked of a drive and about its disc, and derived from the dictionaries of its status.
/// Each call asks again. Any thread.
namespace quarner::disc {

/// Whether the recording service still lists this drive.
bool isAttached(const std::shared_ptr<DRDevice>& drive);

/// The entry `DRDeviceMediaInfoKey` of the drive's status; `std::nullopt` without a disc.
std::optional<Dictionary> mediaInfo(const DRDevice& drive);

/// Whether the disc is a CD-ROM, CD-R or CD-RW.
bool isCompactDisc(const DRDevice& drive);

/// Whole seconds; 0 if unknown.
std::uint64_t usedSeconds(const DRDevice& drive);
std::uint64_t freeSeconds(const DRDevice& drive);

/// Bytes, as blocks of 2048; 0 if unknown.
std::uint64_t usedBytes(const DRDevice& drive);
std::uint64_t freeBytes(const DRDevice& drive);

} // namespace quarner::disc
