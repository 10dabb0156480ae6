// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>

namespace quarner {

/// The calls into a scripted platform that can be counted, watched and told to fail. The subject
/// is the path, text, key or display name that a call is about.
enum class ServiceCall {
    // The recording service. A call that fails answers:
    Devices,            ///< no drives; no subject
    BurnForDevice,      ///< a burn without a drive, which fails when started; subject: the drive
    TrackForAudioFile,  ///< no track; subject: the path
    FileWithPath,       ///< no node; subject: the path
    TrackForRootFolder, ///< no track; subject: the folder's name
    WriteLayout,        ///< a burn that fails with `DRError::WriteFailed`; subject: the drive
    Abort,              ///< nothing happens; subject: the drive
    DriveInfo,          ///< an empty dictionary; subject: the drive, also of the next ones
    DriveStatus,        ///< an empty dictionary
    EjectMedia,         ///< false, and the disc stays

    // The media service
    MovieWithFile,  ///< null; subject: the path
    MovieFileTypes, ///< an empty list; no subject

    // The file services; subject: the path
    DisplayName,  ///< the last component
    Attributes,   ///< nothing
    IconOfFile,   ///< no names
    ResolveAlias, ///< nothing

    // The dispatch service; no subject
    AsyncGlobal, ///< the work is dropped
    SyncMain,    ///< the work is dropped, and the call returns at once

    // The text service
    CompareTexts,    ///< 0; subject: the first text
    LocalizedNumber, ///< an empty text; no subject
    LocalizedString, ///< the key; subject: the key
};

/// Which of the calls fail: all, unless this narrows them.
struct Fault {
    /// Only calls about this.
    std::optional<std::string> subject = std::nullopt;
    /// Only so many of them from now on.
    std::optional<int> times = std::nullopt;
};

} // namespace quarner
