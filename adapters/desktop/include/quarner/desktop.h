// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "quarner/platform/Export.h"

/// The platform of a desktop host: GLib's main loop and log, the user's locale, files and aliases
/// as the desktop has them, sound through FFmpeg, the optical drives of the machine, and drives
/// whose discs are image files.
namespace quarner {

/// Installs the platform. To be called before anything else of the framework, on the main thread,
/// which then runs the loop of the default GMainContext: files are added, and burns and drives
/// heard of, only while it runs. A thread that has a GMainContext of its own as its default hears
/// of what it started through the loop of that one.
///
/// The locale of names and numbers is the one that the environment names now. Translations come
/// from gettext's default domain: a host that has them calls `setlocale`, `textdomain` and
/// `bindtextdomain` itself.
///
/// Installing it again puts the same platform, drives included, in the place of another one that
/// was installed meanwhile.
QUARNER_EXPORT void installDesktopPlatform();

/// Ends the platform, on the main thread; the null platform takes its place. Runs that add files
/// end without waiting for the main thread any more: they report the files that they did not get
/// to as incompatible, and what had not begun is dropped. Burns are cancelled, which leaves no
/// half image behind. After this has returned, no delegate is called because of them; on a thread
/// with a loop of its own, a call may still be under way. The drives are unplugged: they have no
/// disc, and a burn on a `QuarnerDevice` that the host still has is refused at once, with code 0.
/// When this returns, none of the framework's threads is at work any more. For a host that ends
/// before its work does; while this runs, a delegate must not wait for the main thread.
///
/// A host that returns from `main` during a burn without calling this ends as if it was killed. The
/// image that was there stays as it was. The hidden files of the new one (`.mix.bin.part`,
/// `.mix.bin.lock`) stay until the next burn to this image removes them. A disc that is being
/// written is spoilt, and the tray may stay locked until the next burn on this drive or `eject`.
QUARNER_EXPORT void uninstallDesktopPlatform();

/// A drive whose disc is an image, to be added.
struct ImageDriveOptions {
    /// The image: for audio discs a path that ends in .cue, beside which a BIN of the same name
    /// stands (a file of that name is replaced, whoever made it); for data discs one that ends in
    /// .iso. A relative path counts from the working directory of now.
    std::string path;
    /// The length of a blank disc: 74 (333,000 blocks) or 80 (359,847 blocks).
    int minutes = 80;
    /// Whether an image that is there already is in the drive, as a disc that is written. Otherwise
    /// the disc is blank, and a burn replaces the image once the new one is whole.
    bool loadExisting = false;
};

/// Why an image cannot be written to its place.
struct ImageProblem {
    std::int64_t code = 0; ///< with which a burn fails: see `BurnError::code`
    std::string info;      ///< what is wrong with which file or folder
};

/// Looks whether a burn to an image at this path can be begun, for a host that wants to tell before
/// files are added to it: nothing may be written to the folder, something other than a file bears
/// the name of the image or of its BIN, or the name is too long. Answers nothing where there is no
/// such problem, which does not mean that the burn will go well; and nothing for a path that
/// `addImageDrive` does not accept. Any thread, also without the installed platform.
QUARNER_EXPORT std::optional<ImageProblem> findImageProblem(const std::string& path);

// The following need the installed desktop platform. Any thread.

/// Attaches a drive. Answers its display name, made from the path and unlike those of the other
/// drives, or an empty text when the path names neither a CUE nor an ISO file or the minutes are
/// none of the two.
QUARNER_EXPORT std::string addImageDrive(const ImageDriveOptions& options);

/// Unplugs the image drive of a name; answers whether there was one. A burn under way on it fails.
/// The image stays.
QUARNER_EXPORT bool removeImageDrive(const std::string& displayName);

/// Puts a new blank disc into the image drive of a name, to be burnt to the same path: the image
/// that is there stays until then. Answers false when there is no such drive, or a disc in it (see
/// `QuarnerDevice::eject`).
QUARNER_EXPORT bool insertBlankDisc(const std::string& displayName);

/// Why the optical drive of a name cannot be used now, in one English sentence without its full
/// stop: the group or the permission that this user lacks, another program that has the drive for
/// itself, a system that forbids it, a device node that is missing; and in brackets what can be
/// done. Empty where the drive can be used, while this process burns on it, and for an image drive.
///
/// Such a drive is listed, seems to have no disc, and a burn on it fails; for a host that wants to
/// tell before. To find out, the drive is opened for a moment, and one that is busy waited for:
/// half a second, or as long as another thread asks the drive for something.
QUARNER_EXPORT std::string driveAccessProblem(const std::string& displayName);

/// Whether optical drives that come and go, and discs that are put in and out, are told of to a
/// `QuarnerDeviceDelegate`. Not so where the device manager (udev) does not run: there, a host asks
/// for the drives again.
QUARNER_EXPORT bool hearsOfDrives();

} // namespace quarner
