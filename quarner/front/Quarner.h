// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "quarner/front/BurnItemKeys.h"
#include "quarner/front/ContentList.h"
#include "quarner/front/FileRefusal.h"
#include "quarner/front/ListChange.h"
#include "quarner/front/QuarnDelegate.h"
#include "quarner/platform/BurnItem.h"
#include "quarner/platform/DRBurn.h"
#include "quarner/platform/Export.h"

namespace quarner {

class QuarnerDevice;

/// A compilation and its burns: the base of the audio and the data burner, and the interface
/// through which a host uses either. Get one from a factory.
///
/// Call every operation on the main thread, unless its comment says otherwise. Reading the list
/// (`numberOfChildrenOfBurnItem`, `child`, `propertyOfBurnItem`, `usedCapacity`) is safe on any
/// thread and while files are being added. Nothing throws. An operation that cannot return a result
/// returns the neutral value that its comment names; this base class always does.
class QUARNER_EXPORT Quarner : public std::enable_shared_from_this<Quarner> {
public:
    /// Returns a new burner for an audio CD. Each accepted file becomes a track, in the order of
    /// the list, after a pre-gap of two seconds. The caller owns the burner; a run that adds files
    /// keeps it alive until its end. Returns null if the library was built without that burner.
    static std::shared_ptr<Quarner> audioCDBurner();
    /// The same for a data CD.
    static std::shared_ptr<Quarner> dataCDBurner();

    /// A burner must be owned by a shared pointer: one that is not adds no files and refuses every
    /// burn. An object of this class itself returns only neutral values.
    Quarner();
    virtual ~Quarner();
    Quarner(const Quarner&) = delete;
    Quarner& operator=(const Quarner&) = delete;

    /// `addFile:` Calls `addFiles` with this one path.
    bool addFile(const std::string& path);

    /// `addFiles:` Sorts the paths by the user's locale, drops files that are already in the list,
    /// and rejects unsupported ones. Examines and adds the rest in the background, and reports to
    /// the delegate. Returns whether any path was accepted for that; if not, nothing is reported.
    /// Neutral value: false.
    ///
    /// Only files that are already in the list count as duplicates: a path that the call names
    /// twice, or that a running run is about to add, is added twice. Paths are compared as texts
    /// and kept unchanged: a relative path is resolved against the working directory each time that
    /// the file is opened, while it is added and when it is burned.
    virtual bool addFiles(const std::vector<std::string>& paths);

    /// As `addFiles`, but keeps the order of the paths. The files of one call stay together, behind
    /// those of earlier calls of `addFilesInOrder`, whatever other runs and edits do to the list
    /// while the call's run is under way.
    bool addFilesInOrder(const std::vector<std::string>& paths);

    /// The same, but inserts the files before the row that is now at `row`, from 0; a row past the
    /// end means the end. The files stay behind the item that is now before that row. If that item
    /// is removed or moved, they stay behind the one before it. If the run of an earlier call has
    /// inserted that item and is still under way, this call's files come behind all of its files.
    bool addFilesInOrder(const std::vector<std::string>& paths, std::uint64_t row);

    /// The same, but names the item before the first file instead of a row, which a run may move at
    /// any time: null inserts at the start. An item that is not in the list means the end.
    bool addFilesBehind(const std::vector<std::string>& paths, const BurnItemRef& item);

    /// Whether the tags of each file that is added from now on are read as well (`BurnItem::tags`).
    /// Off at first: it takes the time of another look at the file. Any thread.
    void readTags(bool isWanted);

    /// Calls `report` for every file that is refused from now on, at the time when it is refused:
    /// inside `addFiles` and its like, on that thread, for the files that are refused there, also
    /// if the call then returns false; on the thread of the run for those that it refuses. Runs
    /// overlap. Working out the reason takes the time of an attempt to open the file. `report` must
    /// not throw; it is kept until the last call of it has returned. A null one ends the reports.
    void reportRefusals(std::function<void(const FileRefusal&)> report);

    /// `cancelToAddFiles` Requests every running run to stop before its next file, or inside its
    /// current one if that takes half a second longer: that file is then neither added nor
    /// reported. A call of `addFiles` takes this back: a run that has not noticed it by then
    /// continues. Any thread.
    void cancelToAddFiles();

    /// `removeItem:` Removes an item and reports `burnItemDidDelete`. Does nothing if the item is
    /// null or not in the list.
    virtual void removeItem(const BurnItemRef& item);

    /// `removeItems:` Removes those of the items that are in the list, and reports
    /// `burnItemsDidDelete` in any case.
    virtual void removeItems(const BurnItemList& items);

    /// `child:ofBurnItem:` Returns the item at an index of the root (a null parent); the list has
    /// one level. Returns null for an index past the end and for any other parent.
    virtual BurnItemRef child(std::uint64_t index, const BurnItemRef& ofBurnItem) const;

    /// `numberOfChildrenOfBurnItem:` Returns the length of the list for the root (null), otherwise
    /// 0.
    virtual std::uint64_t numberOfChildrenOfBurnItem(const BurnItemRef& item) const;

    /// `propertyOfBurnItem:` Returns the item's properties, which include the record of
    /// BurnItemKeys.h. Returns null for a null item.
    virtual std::shared_ptr<const Dictionary> propertyOfBurnItem(const BurnItemRef& item) const;

    /// `moveBurnItem:to:` Moves the rows at these indexes, in their order, to before the row that
    /// is now at the destination. A destination that is negative or past the end means the end.
    /// Reports `burnItemDidSorted`, also if nothing moves. Does nothing if the list is empty, or if
    /// any index is outside the list.
    virtual void moveBurnItem(const std::set<std::uint64_t>& indexes, std::int64_t to);

    /// Moves those of the items that are in the list, in their order there, to right behind an
    /// item, or to the start for null. An item that moves itself stands for the one before it that
    /// does not. Items are named rather than rows because a run may insert rows at any time.
    /// Reports `burnItemDidSorted`, also if the order stays the same. Does nothing if `behind` is
    /// not in the list.
    virtual void moveItems(const BurnItemList& items, const BurnItemRef& behind);

    /// Returns the list as it is now. That copies no item, however long the list is: the items are
    /// shared with the burner and do not change. Any thread.
    ContentList::Snapshot items() const;

    /// Records every change of the list from now on, so that a copy of it, such as the rows of a
    /// window, can follow it (see `takeChanges`). `onFirst` is called after a change if no other
    /// change was waiting to be taken, on the thread that made the change: the main thread, or that
    /// of a run. It must not throw. Recording starts with what `items` then returns: set it before
    /// files are added. A null `onFirst` ends the recording; a call on another thread may still be
    /// running then. Any thread.
    void recordChanges(std::function<void()> onFirst);

    /// Returns the changes that were recorded and not taken yet, in order. Any thread.
    std::vector<ListChange> takeChanges();

    /// `clearAll` Empties the list and reports `allFilesDidCleared`.
    void clearAll();

    /// `usedCapacity` Returns the size of the compilation: whole seconds of an audio CD, including
    /// all pre-gaps; bytes of a data CD. Neutral value: all bits set, as for a full burner.
    virtual std::uint64_t usedCapacity() const;

    /// `isContentOverflowForDevice:` Returns whether the disc in the drive is too small for the
    /// compilation. False without a disc. Neutral value: true.
    virtual bool isContentOverflowForDevice(const QuarnerDevice& device) const;

    /// `isContentBlank` Returns whether the list is empty. Neutral value: true.
    virtual bool isContentBlank() const;

    /// `supportedFileTypes` Returns the file-name extensions of the files that can be added.
    virtual std::vector<std::string> supportedFileTypes();

    /// `getMovieDuration:` Returns a media file's play time in whole seconds, truncated; 0 if it
    /// has none. Opens the file on the main thread and waits for that: call it from another thread
    /// while the main thread runs its loop.
    std::int64_t getMovieDuration(const std::string& path) const;

    /// `burnWithDevice:discNamed:` Starts to burn the compilation: closed session, overwriting if
    /// possible, verified, at the drive's highest speed. Reports `burnProgressDidStarted` at once,
    /// and the rest through the run loop of the calling thread, which must keep running: call it on
    /// the main thread, or on another one that runs a loop until the burn has ended. A null name
    /// leaves the disc without a title.
    ///
    /// A burn may be refused: `burnProgressDidError` with code 0 is then reported before the call
    /// returns, and nothing is started. Without a drive the burn of an audio CD is refused; that of
    /// a data CD reports nothing at all.
    ///
    /// Dropping the last reference to the burner does not stop the burn: it continues without
    /// reports. Call this only after the previous burn has ended. A burn that is replaced continues
    /// and still reports here, and its end makes `stopBurn` lose the new one.
    virtual void burnWithDevice(const QuarnerDevice& device,
                                const std::optional<std::string>& discNamed);

    /// `stopBurn` Cancels the running burn, which then ends with `burnProgressDidCanceled`. Does
    /// nothing if there is none.
    void stopBurn();

    /// Receives all reports. Not owned; may be null.
    QuarnDelegate* delegate() const;
    /// Sets the delegate, or none for null. Any thread; a call that is under way on another thread
    /// may still use the one that is replaced. One that was set by `setSharedDelegate` is kept, but
    /// not called any more.
    void setDelegate(QuarnDelegate* delegate);

    /// The same for a delegate that the burner then owns: it is kept until the burner, which every
    /// run that adds files keeps alive, is destroyed or another delegate is shared. So nobody has
    /// to wait for the end of a run before dropping it. A call that is under way on another thread
    /// may still use the one that is replaced.
    void setSharedDelegate(std::shared_ptr<QuarnDelegate> delegate);

protected:
    /// Calls an operation of the delegate if there is one.
    template <typename Operation, typename... Arguments>
    void tell(Operation operation, const Arguments&... arguments) const {
        if (QuarnDelegate* const listener = delegate())
            (listener->*operation)(arguments...);
    }

    /// Adds files in the order of the paths, at a place of `_content`. Neutral value: false.
    virtual bool addFilesAt(const std::vector<std::string>& paths, ContentList::Place place);

    /// The function that `reportRefusals` was given, kept by every run that may call it.
    using RefusalReport = std::shared_ptr<const std::function<void(const FileRefusal&)>>;
    /// Returns what `reportRefusals` was given; null if refusals are not reported.
    RefusalReport refusalReport() const;

    std::atomic<QuarnDelegate*> _delegate = nullptr; ///< what is called; may be null
    std::shared_ptr<QuarnDelegate> _sharedDelegate;  ///< keeps `_delegate` if the burner owns it
    std::atomic<bool> _continue2AddFiles = false;    ///< false asks every run to stop
    std::atomic<bool> _readsTags = false;            ///< set by `readTags`
    ContentList _content;                            ///< the compilation
    std::shared_ptr<DRBurn> _burner;                 ///< the running burn; null if there is none

private:
    mutable std::mutex _mutex;
    RefusalReport _refusalReport;
};

} // namespace quarner
