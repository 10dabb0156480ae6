// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>

#include "quarner/platform/DispatchService.h"
#include "quarner/platform/Export.h"
#include "quarner/platform/FileService.h"
#include "quarner/platform/LogSink.h"
#include "quarner/platform/MediaService.h"
#include "quarner/platform/RecordingService.h"
#include "quarner/platform/TextService.h"

namespace quarner {

/// The services that the framework runs on. A service left null is replaced by its null form: no
/// drives, no file can be opened, no file has attributes, texts stay untranslated. Background work
/// then runs on a thread of its own, and work for the main thread runs at once on the caller's
/// thread.
struct Platform {
    std::shared_ptr<RecordingService> recording = nullptr; ///< drives and burns
    std::shared_ptr<MediaService> media = nullptr;         ///< which files can be played
    std::shared_ptr<FileService> files = nullptr;          ///< attributes, names and aliases
    std::shared_ptr<DispatchService> dispatch = nullptr;   ///< work on other threads
    std::shared_ptr<TextService> text = nullptr;           ///< the user's locale and language
    std::shared_ptr<LogSink> log = nullptr;                ///< diagnostics for developers
};

/// Installs the platform of this process. Call it once, before anything else of the framework is
/// used (a test may replace it between two test cases). Any thread.
///
/// Work that is under way asks for the platform at each step. An add-files run examines its next
/// file with the services that are installed then, and waits for the main thread of that platform.
/// A burn stays with the recorder that it was started on, and a `QuarnerDevice` with its drive.
QUARNER_EXPORT void installPlatform(Platform platform);

/// Returns the installed platform, in which every service is present. Before `installPlatform` this
/// is the null platform. Any thread.
QUARNER_EXPORT std::shared_ptr<const Platform> currentPlatform();

} // namespace quarner
