// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

/// The names used by the disc-recording service: notifications, states, and the keys of its
/// dictionaries. All are compared as strings.
namespace quarner {

// Notifications. The object of the first three is a DRDevice, that of the last a DRBurn.
inline constexpr char DRDeviceAppearedNotification[] = "DRDeviceAppearedNotification";
inline constexpr char DRDeviceDisappearedNotification[] = "DRDeviceDisappearedNotification";
inline constexpr char DRDeviceStatusChangedNotification[] = "DRDeviceStatusChangedNotification";
inline constexpr char DRBurnStatusChangedNotification[] = "DRBurnStatusChangedNotification";

// A drive's info dictionary.
inline constexpr char DRDeviceCanWriteCDKey[] = "DRDeviceCanWriteCDKey"; ///< bool

// A drive's status dictionary.
/// Dictionary: information about the disc in the drive. Absent without a disc.
inline constexpr char DRDeviceMediaInfoKey[] = "DRDeviceMediaInfoKey";
/// Number: the current speed of writing or reading, in blocks per second (1x CD = 75). Also an
/// entry of a burn's status record.
inline constexpr char DRStatusCurrentSpeedKey[] = "DRStatusCurrentSpeedKey";

// The media information in a drive's status.
inline constexpr char DRDeviceMediaTypeKey[] = "DRDeviceMediaTypeKey"; ///< one of the types below
/// Numbers: blocks of 2048 bytes.
inline constexpr char DRDeviceMediaBlocksUsedKey[] = "DRDeviceMediaBlocksUsedKey";
inline constexpr char DRDeviceMediaBlocksFreeKey[] = "DRDeviceMediaBlocksFreeKey";
/// Array of numbers: the write speeds of the disc in blocks per second, ascending, so that the last
/// is the fastest.
inline constexpr char DRDeviceBurnSpeedsKey[] = "DRDeviceBurnSpeedsKey";

// Media types. The first three are CDs.
inline constexpr char DRDeviceMediaTypeCDROM[] = "DRDeviceMediaTypeCDROM";
inline constexpr char DRDeviceMediaTypeCDR[] = "DRDeviceMediaTypeCDR";
inline constexpr char DRDeviceMediaTypeCDRW[] = "DRDeviceMediaTypeCDRW";
inline constexpr char DRDeviceMediaTypeDVDROM[] = "DRDeviceMediaTypeDVDROM";
inline constexpr char DRDeviceMediaTypeDVDR[] = "DRDeviceMediaTypeDVDR";
inline constexpr char DRDeviceMediaTypeDVDRW[] = "DRDeviceMediaTypeDVDRW";
inline constexpr char DRDeviceMediaTypeBD[] = "DRDeviceMediaTypeBD";
inline constexpr char DRDeviceMediaTypeUnknown[] = "DRDeviceMediaTypeUnknown";

// The settings of a burn.
inline constexpr char DRBurnAppendableKey[] = "DRBurnAppendableKey";       ///< bool
inline constexpr char DRBurnOverwriteDiscKey[] = "DRBurnOverwriteDiscKey"; ///< bool
inline constexpr char DRBurnVerifyDiscKey[] = "DRBurnVerifyDiscKey";       ///< bool
/// Number, blocks per second.
inline constexpr char DRBurnRequestedSpeedKey[] = "DRBurnRequestedSpeedKey";

// A burn's status record.
inline constexpr char DRStatusStateKey[] = "DRStatusStateKey"; ///< one of the states below
/// Number, 0.0 to 1.0; below 0 if unknown. The fraction of the current phase: 0 to 1 while the
/// whole layout is written, then 0 to 1 again while it is read back.
inline constexpr char DRStatusPercentCompleteKey[] = "DRStatusPercentCompleteKey";
inline constexpr char DRStatusCurrentTrackKey[] = "DRStatusCurrentTrackKey"; ///< number, from 1
inline constexpr char DRStatusTotalTracksKey[] = "DRStatusTotalTracksKey";   ///< number
/// Dictionary in the last record of a failed burn. Its entry is an error code (see DRErrors.h).
inline constexpr char DRErrorStatusKey[] = "DRErrorStatusKey";
inline constexpr char DRErrorStatusErrorKey[] = "DRErrorStatusErrorKey";
/// Text: what failed, and with which file. The service also writes it to the diagnostic log.
inline constexpr char DRErrorStatusErrorInfoKey[] = "DRErrorStatusErrorInfoKey";
/// Text: the path of the file that the error is about. Absent if it is about none.
inline constexpr char DRErrorStatusFileKey[] = "DRErrorStatusFileKey";
/// Number: the first sector of the disc that the error is about. Absent if it is about none.
inline constexpr char DRErrorStatusSectorKey[] = "DRErrorStatusSectorKey";

// The states of a burn, in the order of their records.
inline constexpr char DRStatusStatePreparing[] = "DRStatusStatePreparing";
inline constexpr char DRStatusStateSessionOpen[] = "DRStatusStateSessionOpen";
inline constexpr char DRStatusStateTrackOpen[] = "DRStatusStateTrackOpen";
inline constexpr char DRStatusStateTrackWrite[] = "DRStatusStateTrackWrite";
inline constexpr char DRStatusStateTrackClose[] = "DRStatusStateTrackClose";
inline constexpr char DRStatusStateSessionClose[] = "DRStatusStateSessionClose";
inline constexpr char DRStatusStateFinishing[] = "DRStatusStateFinishing";
inline constexpr char DRStatusStateVerifying[] = "DRStatusStateVerifying";
inline constexpr char DRStatusStateDone[] = "DRStatusStateDone";
inline constexpr char DRStatusStateFailed[] = "DRStatusStateFailed";

// CD-Text.
inline constexpr char DRCDTextTitleKey[] = "DRCDTextTitleKey"; ///< text

} // namespace quarner
