// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once
/// @file
/// The names used by the disc-recording service: notifications, states, and the keys of its
/// dictionaries. All are compared as strings.
namespace quarner {

// Notifications.
/// A drive was attached. The object is its DRDevice, which `RecordingService::devices` lists by
/// now.
inline constexpr char DRDeviceAppearedNotification[] = "DRDeviceAppearedNotification";
/// A drive was detached. The object is its DRDevice, which is not listed any more.
inline constexpr char DRDeviceDisappearedNotification[] = "DRDeviceDisappearedNotification";
/// A disc came or went, or a burn began or ended. The object is the DRDevice. May be sent without a
/// visible change.
inline constexpr char DRDeviceStatusChangedNotification[] = "DRDeviceStatusChangedNotification";
/// A burn has a new status record, which is the notification's dictionary. The object is the
/// DRBurn.
inline constexpr char DRBurnStatusChangedNotification[] = "DRBurnStatusChangedNotification";

// A drive's info dictionary.
inline constexpr char DRDeviceCanWriteCDKey[] = "DRDeviceCanWriteCDKey"; ///< bool: it writes CDs

// A drive's status dictionary.
/// Dictionary: information about the disc in the drive. Absent without a disc.
inline constexpr char DRDeviceMediaInfoKey[] = "DRDeviceMediaInfoKey";
/// Number: the current speed of writing or reading, in blocks per second (1x CD = 75). Also an
/// entry of a burn's status record.
inline constexpr char DRStatusCurrentSpeedKey[] = "DRStatusCurrentSpeedKey";

// The media information in a drive's status.
inline constexpr char DRDeviceMediaTypeKey[] = "DRDeviceMediaTypeKey"; ///< one of the types below
/// Number: the recorded blocks of 2048 bytes. Absent if it is unknown.
inline constexpr char DRDeviceMediaBlocksUsedKey[] = "DRDeviceMediaBlocksUsedKey";
/// Number: the free blocks of 2048 bytes. Absent if it is unknown.
inline constexpr char DRDeviceMediaBlocksFreeKey[] = "DRDeviceMediaBlocksFreeKey";
/// Array of numbers: the write speeds of the disc in blocks per second, ascending, so that the last
/// is the fastest.
inline constexpr char DRDeviceBurnSpeedsKey[] = "DRDeviceBurnSpeedsKey";

// Media types: the current profile of the drive (MMC-5, table 89).
/// A pressed CD. Many drives also report a closed CD-R as one.
inline constexpr char DRDeviceMediaTypeCDROM[] = "DRDeviceMediaTypeCDROM";
/// A CD that can be written once (CD-R).
inline constexpr char DRDeviceMediaTypeCDR[] = "DRDeviceMediaTypeCDR";
/// A CD that can be erased (CD-RW).
inline constexpr char DRDeviceMediaTypeCDRW[] = "DRDeviceMediaTypeCDRW";
/// A pressed DVD.
inline constexpr char DRDeviceMediaTypeDVDROM[] = "DRDeviceMediaTypeDVDROM";
/// A DVD that can be written once: DVD-R or DVD+R.
inline constexpr char DRDeviceMediaTypeDVDR[] = "DRDeviceMediaTypeDVDR";
/// A DVD that can be written again: DVD-RW, DVD+RW or DVD-RAM.
inline constexpr char DRDeviceMediaTypeDVDRW[] = "DRDeviceMediaTypeDVDRW";
/// A Blu-ray disc of any kind.
inline constexpr char DRDeviceMediaTypeBD[] = "DRDeviceMediaTypeBD";
/// A disc whose kind the drive does not report.
inline constexpr char DRDeviceMediaTypeUnknown[] = "DRDeviceMediaTypeUnknown";

// The settings of a burn.
inline constexpr char DRBurnAppendableKey[] = "DRBurnAppendableKey";       ///< bool: keep it open
inline constexpr char DRBurnOverwriteDiscKey[] = "DRBurnOverwriteDiscKey"; ///< bool: erase if used
inline constexpr char DRBurnVerifyDiscKey[] = "DRBurnVerifyDiscKey";       ///< bool: read it back
/// Number, blocks per second.
inline constexpr char DRBurnRequestedSpeedKey[] = "DRBurnRequestedSpeedKey";

// A burn's status record.
inline constexpr char DRStatusStateKey[] = "DRStatusStateKey"; ///< one of the states below
/// Number, 0.0 to 1.0; below 0 if unknown. The fraction of the current phase: 0 to 1 while the
/// whole layout is written, then 0 to 1 again while it is read back.
inline constexpr char DRStatusPercentCompleteKey[] = "DRStatusPercentCompleteKey";
inline constexpr char DRStatusCurrentTrackKey[] = "DRStatusCurrentTrackKey"; ///< number, from 1
inline constexpr char DRStatusTotalTracksKey[] = "DRStatusTotalTracksKey";   ///< number
/// Dictionary in the last record of a failed burn, with the entries below.
inline constexpr char DRErrorStatusKey[] = "DRErrorStatusKey";
/// Number: the error code, one of `DRError`.
inline constexpr char DRErrorStatusErrorKey[] = "DRErrorStatusErrorKey";
/// Text: what failed, and with which file. The service also writes it to the diagnostic log.
inline constexpr char DRErrorStatusErrorInfoKey[] = "DRErrorStatusErrorInfoKey";
/// Text: the path of the file that the error is about. Absent if it is about none.
inline constexpr char DRErrorStatusFileKey[] = "DRErrorStatusFileKey";
/// Number: the first sector of the disc that the error is about. Absent if it is about none.
inline constexpr char DRErrorStatusSectorKey[] = "DRErrorStatusSectorKey";

// The states of a burn, in the order of their records.
/// First: the drive is opened, the disc is checked, a rewritable one may be erased.
inline constexpr char DRStatusStatePreparing[] = "DRStatusStatePreparing";
/// The session was begun.
inline constexpr char DRStatusStateSessionOpen[] = "DRStatusStateSessionOpen";
/// A track begins. The record has the current track and the number of tracks.
inline constexpr char DRStatusStateTrackOpen[] = "DRStatusStateTrackOpen";
/// A track is being written. Repeated, with the fraction of the whole layout that is written.
inline constexpr char DRStatusStateTrackWrite[] = "DRStatusStateTrackWrite";
/// A track was written.
inline constexpr char DRStatusStateTrackClose[] = "DRStatusStateTrackClose";
/// The session was closed, after the last track.
inline constexpr char DRStatusStateSessionClose[] = "DRStatusStateSessionClose";
/// The disc is being completed.
inline constexpr char DRStatusStateFinishing[] = "DRStatusStateFinishing";
/// The disc is being read back. Repeated, with the fraction that was read. Only if verification was
/// asked for.
inline constexpr char DRStatusStateVerifying[] = "DRStatusStateVerifying";
/// Last: the disc is complete, and verified if that was asked for.
inline constexpr char DRStatusStateDone[] = "DRStatusStateDone";
/// Last: the burn failed or was cancelled. The record has `DRErrorStatusKey`. May follow any state.
inline constexpr char DRStatusStateFailed[] = "DRStatusStateFailed";

// CD-Text.
inline constexpr char DRCDTextTitleKey[] = "DRCDTextTitleKey"; ///< text

} // namespace quarner
