// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "quarner/platform/BurnItem.h"
#include "quarner/platform/DRErrors.h"
#include "quarner/platform/Export.h"

namespace quarner {

/// The report at the end of an add-files run: rejected paths by reason. An audio burner gives both
/// keys below, a data burner only the second; look a key up before reading it. Paths that were
/// rejected before the run began are as the caller wrote them, the others are resolved.
using EndReport = std::map<std::string, std::vector<std::string>, std::less<>>;

/// Copy-protected media, and files that cannot be examined at all.
inline constexpr char protectedFilesReportKey[] = "protected-files";
/// Files of an unsupported type, unreadable ones, and ones shorter than a second.
inline constexpr char incompatibleFilesReportKey[] = "incompatible-files";

/// The reason why a burn could not start or failed.
struct BurnError {
    std::string domain; ///< always `burnErrorDomain`
    /// 0: the content does not fit (or the failure carried no code); otherwise the recording
    /// service's 32-bit code read as signed, see DRErrors.h.
    std::int64_t code = 0;
    BurnErrorInfo info = {}; ///< empty for a burn that is refused before it starts

    /// Compares every member.
    bool operator==(const BurnError&) const = default;
};

/// The domain of every error of a burn.
inline constexpr char burnErrorDomain[] = "Quarn";

/// The reports of a burner to its host. Every operation does nothing by default: override those
/// that you want. The spelling of the names is part of the interface.
///
/// The burner does not own its delegate, which must outlive every call to it. Before destroying a
/// delegate, set the burner's delegate to null, and wait for the end of a running add-files run.
///
/// An operation must not throw. On a background thread an exception ends the program.
class QUARNER_EXPORT QuarnDelegate {
public:
    virtual ~QuarnDelegate();

    // --- Editing. Called at once, on the thread that called the burner. ---

    /// `clearAll` has emptied the list.
    virtual void allFilesDidCleared() {}

    /// `burnItemDidDelete:` An item was removed by `removeItem`.
    virtual void burnItemDidDelete(const BurnItemRef& /*item*/) {}

    /// `burnItemsDidDelete:` The list passed to `removeItems`, whether or not any of its items was
    /// in the compilation.
    virtual void burnItemsDidDelete(const BurnItemList& /*items*/) {}

    /// `moveBurnItem` has ended; also called if the order stayed the same.
    virtual void burnItemDidSorted() {}

    // --- Adding files. Called on the background thread of the run, in this order; a run in which
    // --- no file was accepted sends nothing. Every call of `addFiles` starts a run of its own, and
    // --- runs overlap: two of them may call the delegate on two threads at the same time. Never
    // --- block the main thread while a run is under way: the run waits for it once per file.

    /// First, once. It may come before the call of `addFiles` returns.
    virtual void addFilesProgressDidStarted() {}

    /// `addFilesProgressDidChanged:index:of:` Called once per file, before the file is examined:
    /// its display name, its position from 1, and the number of files in the run.
    virtual void addFilesProgressDidChanged(const std::string& /*displayName*/,
                                            std::int64_t /*index*/, std::uint64_t /*of*/) {}

    /// `fileDidAdded:` A file is now in the compilation: its record (BurnItemKeys.h).
    virtual void fileDidAdded(const Dictionary& /*item*/) {}

    /// `cancelToAddFiles` stopped the run; `addFilesProgressDidEnd` follows.
    virtual void addFilesProgressDidCanceled() {}

    /// `addFilesProgressDidEnd:` Last, once, also after a cancellation.
    virtual void addFilesProgressDidEnd(const EndReport& /*report*/) {}

    // --- Burning. `burnProgressDidStarted` and the error of a burn that is refused at once come
    // --- on the thread that called `burnWithDevice`, before it returns; everything else on the
    // --- run loop of that same thread. The last call is one of Done, Canceled, Error. A burn that
    // --- is started from inside the last call is reported like any other, but `stopBurn` has no
    // --- effect on it: start it after the call has returned.

    /// First, once, also for a burn that is then refused. The burn cannot be stopped from inside
    /// this call: `stopBurn` has no effect on it until `burnWithDevice` has returned.
    virtual void burnProgressDidStarted() {}

    /// `burnProgressDidError:` The burn could not start or failed. Ends the burn.
    virtual void burnProgressDidError(const BurnError& /*error*/) {}

    /// `burnProgressDidChanaged:lefttime:` The fraction complete of the phase under way (writing,
    /// then verifying), 0.0 to 1.0, and the time left in it: the estimated blocks of the burn over
    /// the current speed in blocks per second, times the fraction left, which gives whole seconds.
    /// The time left is 0 on a data CD, while the speed is unknown or 0, and in the last second.
    virtual void burnProgressDidChanaged(double /*fraction*/, std::uint64_t /*lefttime*/) {}

    /// The drive is opened and the disc is checked; a rewritable disc may be erased.
    virtual void burnProgressIsPreparing() {}

    /// `burnProgressIsOpeningTrack:of:` A track begins: its number, from 1, and the number of
    /// tracks.
    virtual void burnProgressIsOpeningTrack(std::int64_t /*track*/, std::int64_t /*of*/) {}
    /// `burnProgressIsWriteingTrack:of:` The track, from 1, of `of` is being written. Called again
    /// after each `burnProgressDidChanaged`.
    virtual void burnProgressIsWriteingTrack(std::int64_t /*track*/, std::int64_t /*of*/) {}
    /// `burnProgressDidCloseTrack:of:` The track, from 1, of `of` was written.
    virtual void burnProgressDidCloseTrack(std::int64_t /*track*/, std::int64_t /*of*/) {}

    /// All tracks were written, and the session was closed.
    virtual void burnProgressDidCloseSession() {}
    /// The disc is being completed.
    virtual void burnProgressIsFinishing() {}

    /// The written disc is being read back and compared.
    virtual void burnProgressIsVerifying() {}

    /// The disc is written and verified. Ends the burn.
    virtual void burnProgressDidDone() {}

    /// The burn was cancelled, for example by `stopBurn`. Ends the burn.
    virtual void burnProgressDidCanceled() {}
};

} // namespace quarner
