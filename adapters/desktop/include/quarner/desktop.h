// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "quarner/platform/Export.h"
/// @file
/// The platform of a desktop host: a main loop, GLib's or the host's own, GLib's log, the user's
/// locale, the desktop's files and aliases, sound through FFmpeg, the optical drives of the
/// machine, and drives whose discs are image files.
namespace quarner {

/// Installs the platform. Call it before anything else of the framework, on the main thread. That
/// thread then runs the loop of the default GMainContext: files are added, and burns and drives
/// reported, only while the loop runs. If a run that adds files waits five seconds for it, the log
/// says so once. A thread with its own default GMainContext receives the
/// reports of what it started through that context's loop.
///
/// Names and numbers use the locale that the environment names at the time of this call.
/// Translations come from gettext's default domain: a host that has them calls `setlocale`,
/// `textdomain` and `bindtextdomain` itself. The library's own messages are in the user's language
/// once the host has called `setlocale`; their domain `quarner` is bound here (`bindTranslations`).
///
/// A second call reinstalls the same platform, drives included, if another one was installed in
/// between.
QUARNER_EXPORT void installDesktopPlatform();

/// The options of the desktop platform.
struct DesktopOptions {
    /// Runs a function on the main thread, in a later turn of its loop, in the order of the calls:
    /// what a toolkit calls "invoke" or "post". It is called on any thread, the main thread
    /// included, and must never run the function at once. With Qt:
    ///
    ///     [app](std::function<void()> work) {
    ///         QMetaObject::invokeMethod(app, std::move(work), Qt::QueuedConnection);
    ///     }
    ///
    /// Files are then added, and burns and drives reported, while that loop runs, and the host need
    /// not turn a GMainContext. It must remain callable until `uninstallDesktopPlatform` has
    /// returned; a function that the loop never runs is lost without harm after that. Empty for the
    /// loop of the default GMainContext.
    std::function<void(std::function<void()>)> postToMain = {};

    /// Receives the lines of the library's log, each made safe to show (`safeText`). It is called
    /// on any thread, also on several at once, and must not throw. Empty for GLib's log, in the
    /// domain "Quarn".
    std::function<void(const std::string&)> log = {};
};

/// The same with options, which count if the platform is not installed yet.
QUARNER_EXPORT void installDesktopPlatform(const DesktopOptions& options);

/// Uninstalls the platform and installs the null platform. Main thread only. For a host that ends
/// before its work does.
///
/// Runs that add files end without waiting for the main thread: they report the remaining files as
/// incompatible, and runs that have not begun are dropped. Burns are cancelled and leave no
/// incomplete image. After this has returned, no delegate is called because of them; on a thread
/// with its own loop, a call may still be running. The drives are unplugged: they have no disc, and
/// a burn on a `QuarnerDevice` that the host still has is refused at once, with code 0. When this
/// returns, none of the framework's threads is running. During this call a delegate must not wait
/// for the main thread.
///
/// A host that returns from `main` during a burn without this call ends as if it was killed. The
/// previous image is unchanged. The hidden files of the new one (`.mix.bin.part`, `.mix.bin.lock`)
/// stay until the next burn to this image removes them. A disc that is being written becomes
/// unusable, and the tray may stay locked until the next burn on this drive or `eject`.
QUARNER_EXPORT void uninstallDesktopPlatform();

/// The options of a new image drive.
struct ImageDriveOptions {
    /// The path of the image. It ends in .cue for audio discs; the BIN of the same name beside it
    /// is replaced, whoever made it. It ends in .iso for data discs. A relative path is resolved
    /// against the current working directory when the drive is added.
    std::string path;
    /// The length of a blank disc: 74 (333,000 blocks) or 80 (359,847 blocks).
    int minutes = 80;
    /// Whether an existing image is in the drive as a written disc. Otherwise the disc is blank,
    /// and a burn replaces the image once the new one is complete.
    bool loadExisting = false;
};

/// The reason for which an image cannot be written.
struct ImageProblem {
    std::int64_t code = 0; ///< the code of the failing burn: see
    std::string info;      ///< which file or folder, and what is wrong with it
};

/// Returns the problem that would stop a burn to an image at this path: the folder cannot be
/// written to, something other than a file has the name of the image or of its BIN, or the name is
/// too long. A host can report it before files are added. Returns `std::nullopt` if there is no
/// such problem (the burn may still fail), and for a path that `addImageDrive` does not accept. Any
/// thread, also without the installed platform.
QUARNER_EXPORT std::optional<ImageProblem> findImageProblem(const std::string& path);

// The following need the installed desktop platform. Any thread.

/// Attaches a drive. Returns its display name, which is made from the path and differs from those
/// of the other drives. Returns an empty text if the path is neither a CUE nor an ISO file, or if
/// the minutes are neither 74 nor 80.
QUARNER_EXPORT std::string addImageDrive(const ImageDriveOptions& options);

/// Unplugs the image drive with this name. Returns whether there was one. A burn that is under way
/// on it fails. The image is kept.
QUARNER_EXPORT bool removeImageDrive(const std::string& displayName);

/// Inserts a new blank disc into the image drive with this name, to be burned to the same path. The
/// existing image is kept until then. Returns false if there is no such drive, or if it has a disc
/// (see `QuarnerDevice::eject`).
QUARNER_EXPORT bool insertBlankDisc(const std::string& displayName);

/// Returns why the optical drive with this name cannot be used now, in one sentence without a full
/// stop in the user's language, and in brackets what can be done: the group or permission that this
/// user lacks, another program that has the drive open, a system that forbids access, or a missing
/// device node. Returns an empty text if the drive can be used, while this process burns on it, and
/// for an image drive.
///
/// A drive with such a problem is listed and seems to have no disc, and a burn on it fails. A host
/// can report the problem before. To find out, the drive is opened for a moment. A busy drive is
/// retried for half a second. The call also waits for a query that another thread is making.
QUARNER_EXPORT std::string driveAccessProblem(const std::string& displayName);

/// Returns the device node of the optical drive with this name, "/dev/sr0": by it a host finds out
/// whether its disc is mounted. Returns an empty text for an image drive, and if there is no such
/// drive.
QUARNER_EXPORT std::string opticalDriveNode(const std::string& displayName);

/// Whether a `QuarnerDeviceDelegate` is notified of optical drives and discs that come and go.
/// False if the device manager (udev) is not running: then a host must query the drives again.
QUARNER_EXPORT bool receivesDriveEvents();

} // namespace quarner
