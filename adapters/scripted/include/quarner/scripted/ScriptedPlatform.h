// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "quarner/platform/DRNotificationCenter.h"
#include "quarner/platform/Export.h"
#include "quarner/scripted/BurnScripts.h"
#include "quarner/scripted/ScriptedBurn.h"
#include "quarner/scripted/ScriptedDrive.h"
#include "quarner/scripted/ScriptedQueue.h"
#include "quarner/scripted/Scripts.h"
#include "quarner/scripted/ServiceCall.h"

namespace quarner {

/// A platform described by data, for a host's own tests. The constructor installs it; the
/// destructor installs the null platform instead. The thread that constructs it is the main thread.
/// Nothing happens by itself: the test plugs drives in, makes burns send records, and turns the run
/// loop.
///
///     ScriptedPlatform platform;
///     const auto drive = platform.addDrive({.name = "Writer", .disc = DiscScript{}});
///     platform.putSong("/music/one.mp3", {.seconds = 205.0});
///     ... the host adds the file and burns ...
///     platform.lastBurn()->play({.failsAt = 0.4});
///     ASSERT_TRUE(platform.runUntilIdle());
///
/// Background work runs on real threads. The destructor drops the work that has not begun, lets
/// callers that wait for the main thread return, and waits for the threads to end. Whatever such
/// work uses (above all a delegate) must be destroyed after the platform.
///
/// Every operation may be called on any thread, unless its comment says otherwise.
class QUARNER_EXPORT ScriptedPlatform {
public:
    ScriptedPlatform();
    ~ScriptedPlatform();
    ScriptedPlatform(const ScriptedPlatform&) = delete;
    ScriptedPlatform& operator=(const ScriptedPlatform&) = delete;

    // --- Drives ---

    /// Adds a drive without a notification. Drives are listed in the order in which they were
    /// added.
    std::shared_ptr<ScriptedDrive> addDrive(DriveScript script);

    /// Attaches a drive and sends `DRDeviceAppearedNotification`.
    std::shared_ptr<ScriptedDrive> plug(DriveScript script);

    /// Detaches a drive and sends `DRDeviceDisappearedNotification`. Burns that are playing on it
    /// fail with `DRError::DeviceVanished`. Does nothing if the drive is not attached.
    void unplug(const std::shared_ptr<ScriptedDrive>& drive);

    /// Sends a notification to every run loop.
    void post(const DRNotification& notification);

    // --- Files, media and texts ---

    /// Puts a file at a path, replacing the file there. A file without media is no media file.
    void putFile(const std::string& path, FileScript file = {});
    /// Puts media at a path, replacing those there. They can be played also if there is no file.
    void putMedia(const std::string& path, MediaScript media);
    /// Puts the file and its media.
    void putSong(const std::string& path, MediaScript media, FileScript file = {});
    /// Removes the file and its media.
    void removeFile(const std::string& path);

    /// Sets the estimate of every data track, in blocks. The default is the sum of its files.
    void setDataEstimate(std::uint64_t blocks);

    /// Sets the types that the media service can open.
    void setMovieFileTypes(std::vector<std::string> types);

    /// Adds an entry to the host's string table.
    void setText(const std::string& key, const std::string& translation);
    /// Sets the separator of `TextService::localizedNumber`; at first a full stop.
    void setDecimalSeparator(const std::string& separator);
    /// Sets the comparison of texts, which returns a negative number, 0 or a positive number. The
    /// default compares bytes and ignores the case of ASCII letters.
    void setCollation(std::function<int(const std::string&, const std::string&)> compare);

    /// Returns the lines written to the diagnostic log so far.
    std::vector<std::string> log() const;

    // --- Burns ---

    /// Returns all burns made so far, in order, including those not started.
    std::vector<std::shared_ptr<ScriptedBurn>> burns() const;
    /// Returns the burn that was made last; null if there is none.
    std::shared_ptr<ScriptedBurn> lastBurn() const;

    /// Every burn that is started from now on plays `script` by itself. A burn that no recorder
    /// would start fails at once instead: with `DRError::EmptyLayout`; with `DeviceVanished` on a
    /// drive that was unplugged; with `DeviceBusy` while another burn is under way there; with
    /// `MediaNotPresent`; or with `MediaTooSmall` if the tracks take more blocks than the disc has
    /// free.
    void playBurns(const BurnScript& script = {});

    // --- Calls into the services ---

    /// Makes calls fail: `ServiceCall` lists what each then returns. Several faults add up.
    void fail(ServiceCall call, const Fault& fault = {});
    /// Removes all faults of a call.
    void repair(ServiceCall call);
    /// The number of calls, including failed ones.
    std::size_t calls(ServiceCall call) const;
    /// Runs `action` at the beginning of every such call from now on, on the calling thread and
    /// with the subject of the call. It lets something happen at one exact moment. An empty action
    /// removes it.
    void onCall(ServiceCall call, std::function<void(const std::string& subject)> action);

    // --- Queues and run loops ---

    /// The global concurrent queue.
    ScriptedQueue& backgroundQueue();
    /// The main queue, whose work `runOnce` runs.
    ScriptedQueue& mainQueue();

    /// Turns the calling thread's run loop once. On the main thread that runs one item of the main
    /// queue; otherwise it delivers one notification; otherwise a burn that is playing sends its
    /// next record. Returns false if there was nothing to do.
    bool runOnce();

    /// How long `runUntil` and `runUntilIdle` wait if they are not told.
    static constexpr std::chrono::milliseconds defaultTimeout = std::chrono::seconds(20);

    /// Turns the calling thread's run loop until `predicate`, called before every turn, returns
    /// true. Returns false after `timeout`.
    bool runUntil(const std::function<bool()>& predicate,
                  std::chrono::milliseconds timeout = defaultTimeout);

    /// Turns the calling thread's run loop until nothing can happen without the test: no
    /// notification waits for this loop, no burn is playing, and no background work runs, except
    /// work that waits for a held main queue. Returns false after `timeout`.
    bool runUntilIdle(std::chrono::milliseconds timeout = defaultTimeout);

private:
    struct Services;
    bool isIdle() const;

    const std::unique_ptr<Services> _services;
};

} // namespace quarner
