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

/// A platform made of data, for a host's own tests. It installs itself when it is made, and the
/// null platform takes its place when it is destroyed. The thread that makes it is the main
/// thread. Nothing happens by itself: the test plugs drives, lets burns speak, and turns the run
/// loop.
///
///     ScriptedPlatform platform;
///     const auto drive = platform.addDrive({.name = "Writer", .disc = DiscScript{}});
///     platform.putSong("/music/one.mp3", {.seconds = 205.0});
///     ... the host adds the file and burns ...
///     platform.lastBurn()->play({.failsAt = 0.4});
///     ASSERT_TRUE(platform.runUntilIdle());
///
/// Background work runs on real threads. Destroying the platform drops the work that has not
/// begun, lets callers that wait for the main thread return, and waits for the threads to end:
/// whatever such work uses (a delegate above all) must be destroyed after the platform.
///
/// Every operation may be called on any thread, except where its comment says otherwise.
class QUARNER_EXPORT ScriptedPlatform {
public:
    ScriptedPlatform();
    ~ScriptedPlatform();
    ScriptedPlatform(const ScriptedPlatform&) = delete;
    ScriptedPlatform& operator=(const ScriptedPlatform&) = delete;

    // --- Drives ---

    /// A drive that has always been there: nothing is announced. Drives are listed in the order
    /// in which they came.
    std::shared_ptr<ScriptedDrive> addDrive(DriveScript script);

    /// Attaches a drive, and sends `DRDeviceAppearedNotification`.
    std::shared_ptr<ScriptedDrive> plug(DriveScript script);

    /// Detaches a drive, and sends `DRDeviceDisappearedNotification`. Burns that play on it fail
    /// with `DRError::DeviceVanished`. Does nothing for a drive that is not attached.
    void unplug(const std::shared_ptr<ScriptedDrive>& drive);

    /// Sends any notification to every run loop.
    void post(const DRNotification& notification);

    // --- Files, media and texts ---

    /// Puts a file at a path, in place of one that is there. A file that has no media is none.
    void putFile(const std::string& path, FileScript file = {});
    void putMedia(const std::string& path, MediaScript media);
    /// Both at once.
    void putSong(const std::string& path, MediaScript media, FileScript file = {});
    /// Takes away the file and what it plays.
    void removeFile(const std::string& path);

    /// The blocks that every data track is estimated at, instead of those of its files.
    void setDataEstimate(std::uint64_t blocks);

    /// The types that the media service says it can open.
    void setMovieFileTypes(std::vector<std::string> types);

    /// An entry of the host's string table.
    void setText(const std::string& key, const std::string& translation);
    void setDecimalSeparator(const std::string& separator);
    /// The order of texts, in place of the comparison of bytes that ignores the case of ASCII
    /// letters; negative, 0 or positive.
    void setCollation(std::function<int(const std::string&, const std::string&)> compare);

    /// The lines written to the diagnostic log so far.
    std::vector<std::string> log() const;

    // --- Burns ---

    /// All burns made so far, the unstarted ones included, in order. The last one, or null.
    std::vector<std::shared_ptr<ScriptedBurn>> burns() const;
    std::shared_ptr<ScriptedBurn> lastBurn() const;

    /// Every burn that is started from now on plays this story by itself. One that no recorder
    /// would begin fails at once instead: with `DRError::EmptyLayout`, `DeviceVanished` on a drive
    /// that was unplugged, `DeviceBusy` while another burn is under way there, `MediaNotPresent`,
    /// or `MediaTooSmall` where the tracks take more blocks than the disc says that it has free.
    void playBurns(const BurnStory& story = {});

    // --- Calls into the services ---

    /// Makes calls fail: what each then answers stands with `ServiceCall`. Several faults add up.
    void fail(ServiceCall call, const Fault& fault = {});
    /// Takes all faults of a call back.
    void mend(ServiceCall call);
    /// How many calls there were, failed ones included.
    std::size_t calls(ServiceCall call) const;
    /// Runs an action at the beginning of every such call from now on, on the calling thread and
    /// with the subject of the call: the way to let something happen at one exact moment. An
    /// empty action ends that.
    void onCall(ServiceCall call, std::function<void(const std::string& subject)> action);

    // --- Queues and run loops ---

    /// The global concurrent queue, and the main queue, which `runOnce` serves.
    ScriptedQueue& backgroundQueue();
    ScriptedQueue& mainQueue();

    /// One turn of the calling thread's run loop: on the main thread a piece of work of the main
    /// queue, otherwise a notification, otherwise the next record of a burn that plays. False when
    /// there was nothing to do.
    bool runOnce();

    static constexpr std::chrono::milliseconds patience = std::chrono::seconds(20);

    /// Turns the calling thread's run loop until the predicate, asked before every turn, is true.
    /// False when that has not come within the timeout.
    bool runUntil(const std::function<bool()>& predicate,
                  std::chrono::milliseconds timeout = patience);

    /// Turns the calling thread's run loop until nothing can go on without a verb of the test: no
    /// notification waits for this loop, no burn plays, and no background work runs, except for
    /// work that waits for a held main queue. False when that has not come within the timeout.
    bool runUntilIdle(std::chrono::milliseconds timeout = patience);

private:
    struct Services;
    bool isIdle() const;

    const std::unique_ptr<Services> _services;
};

} // namespace quarner
