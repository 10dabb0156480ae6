// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>

namespace quarner {

/// The calls into a scripted platform that can be counted, watched and made to fail. The subject of
/// a call is a path, text, key or display name.
enum class ServiceCall {
    // The recording service. A failing call returns:
    Devices,            ///< no drives; no subject
    BurnForDevice,      ///< a burn without a drive, which fails when started; subject: the drive
    TrackForAudioFile,  ///< no track; subject: the path
    FileWithPath,       ///< no node; subject: the path
    TrackForRootFolder, ///< no track; subject: the folder's name
    WriteLayout,        ///< a burn that fails with `DRError::WriteFailed`; subject: the drive
    Abort,              ///< has no effect; subject: the drive
    DriveInfo,          ///< an empty dictionary; subject: the drive, as for the next two
    DriveStatus,        ///< an empty dictionary
    EjectMedia,         ///< false, and the disc stays

    // The media service
    MovieWithFile,  ///< null; subject: the path
    MovieFileTypes, ///< an empty list; no subject
    Tags,           ///< empty tags; subject: the path

    // The file service; subject: the path
    DisplayName,  ///< the last component
    Attributes,   ///< `std::nullopt`
    IconOfFile,   ///< an icon without names
    ResolveAlias, ///< `std::nullopt`
    FileProblem,  ///< `std::nullopt`

    // The dispatch service; no subject
    AsyncGlobal, ///< the work is dropped
    SyncMain,    ///< the work is dropped, and the call returns at once
    AsyncMain,   ///< the work is dropped

    // The text service
    CompareTexts,    ///< 0; subject: the first text
    LocalizedNumber, ///< an empty text; no subject
    LocalizedString, ///< the key; subject: the key
};

/// Selects the calls that fail. By default all do.
struct Fault {
    /// Only calls with this subject.
    std::optional<std::string> subject = std::nullopt;
    /// Only the next `times` of them.
    std::optional<int> times = std::nullopt;
};

} // namespace quarner
