// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "quarner/front/BurnItemKeys.h"
#include "quarner/front/ContentList.h"
#include "quarner/front/QuarnDelegate.h"
#include "quarner/platform/BurnItem.h"
#include "quarner/platform/DRBurn.h"
#include "quarner/platform/Export.h"

namespace quarner {

class QuarnerDevice;

/// A compilation and the way to burn it: the base of the audio and the data burner, and the
/// interface through which a host uses either. Get one from a factory.
///
/// Call every operation on one thread, the main one, unless its comment says otherwise. Reading
/// the list (`numberOfChildrenOfBurnItem`, `child`, `propertyOfBurnItem`, `usedCapacity`) is safe
/// from any thread and while files are being added. Nothing here throws or reports an error by
/// itself: what cannot be answered gets the neutral answer stated with it, which is also what
/// this base class answers.
class QUARNER_EXPORT Quarner : public std::enable_shared_from_this<Quarner> {
public:
    /// A new burner for an audio CD: each accepted file becomes a track, in the order of the list,
    /// after a pre-gap of two seconds. The caller owns it, and a run that adds files keeps it
    /// alive until its end. Null when the library was built without that burner.
    static std::shared_ptr<Quarner> audioCDBurner();
    /// The same for a data CD.
    static std::shared_ptr<Quarner> dataCDBurner();

    /// A burner is to be held by a shared pointer: one that is not adds no files and refuses every
    /// burn. One of this very class has only the neutral answers.
    Quarner();
    virtual ~Quarner();
    Quarner(const Quarner&) = delete;
    Quarner& operator=(const Quarner&) = delete;

    /// `addFile:` The same as `addFiles` with this one path.
    bool addFile(const std::string& path);

    /// `addFiles:` Sorts the paths by the user's locale, sorts out what is already in the list and
    /// what is not supported, and examines and adds the rest in a background run, reporting to the
    /// delegate. Returns whether any path was accepted for that; if none was, nothing is
    /// reported. Neutral answer: false.
    ///
    /// Only what is in the list already counts as a duplicate: a path that the call names twice, or
    /// that a run under way is about to add, is added twice. Paths are compared as texts and kept
    /// as they are given: a relative path is resolved against the working directory of the moment
    /// each time that the file is opened, while it is added and when it is burnt.
    virtual bool addFiles(const std::vector<std::string>& paths);

    /// `cancelToAddFiles` Asks every run under way to stop before its next file. A call of
    /// `addFiles` takes this back: a run that has not noticed it by then goes on. Any thread.
    void cancelToAddFiles();

    /// `removeItem:` Removes an item and reports `burnItemDidDelete`; does nothing for an item
    /// that is not in the list, null included.
    virtual void removeItem(const BurnItemRef& item);

    /// `removeItems:` Removes those of the items that are in the list, and reports
    /// `burnItemsDidDelete` in any case.
    virtual void removeItems(const BurnItemList& items);

    /// `child:ofBurnItem:` The list has one level: the item at an index of the root (a null
    /// parent). Null for an index past the end and for any other parent.
    virtual BurnItemRef child(std::uint64_t index, const BurnItemRef& ofBurnItem) const;

    /// `numberOfChildrenOfBurnItem:` The length of the list for the root (null), otherwise 0.
    virtual std::uint64_t numberOfChildrenOfBurnItem(const BurnItemRef& item) const;

    /// `propertyOfBurnItem:` The item's properties, the record of BurnItemKeys.h among them. Null
    /// for a null item.
    virtual std::shared_ptr<const Dictionary> propertyOfBurnItem(const BurnItemRef& item) const;

    /// `moveBurnItem:to:` Moves the rows at these indexes, in their order, to before the row that
    /// is now at the destination; a destination that is negative or past the end means the end.
    /// Reports `burnItemDidSorted`, also when nothing moves. Does nothing on an empty list. Every
    /// index must lie within the list: with one that does not, nothing is moved or reported.
    virtual void moveBurnItem(const std::set<std::uint64_t>& indexes, std::int64_t to);

    /// `clearAll` Empties the list and reports `allFilesDidCleared`.
    void clearAll();

    /// `usedCapacity` What the compilation takes: an audio CD's whole seconds, all pre-gaps
    /// counted; a data CD's bytes. Neutral answer: all bits set, a burner that is full.
    virtual std::uint64_t usedCapacity() const;

    /// `isContentOverflowForDevice:` Whether the disc in the drive has less room than the
    /// compilation takes. False without a disc. Neutral answer: true.
    virtual bool isContentOverflowForDevice(const QuarnerDevice& device) const;

    /// `isContentBlank` Whether the list is empty. Neutral answer: true.
    virtual bool isContentBlank() const;

    /// `supportedFileTypes` The file-name extensions of the files that can be added.
    virtual std::vector<std::string> supportedFileTypes();

    /// `getMovieDuration:` A media file's play time in whole seconds, truncated; 0 when there is
    /// none. Opens the file on the main thread and waits for that: call it from another thread
    /// while the main thread runs its loop.
    std::int64_t getMovieDuration(const std::string& path) const;

    /// `burnWithDevice:discNamed:` Starts to burn the compilation: closed session, overwriting
    /// what can be overwritten, verified, at the drive's highest speed. Reports
    /// `burnProgressDidStarted` at once, and the rest through the run loop of the calling thread,
    /// which must keep running: call it on the main thread, or on another one that runs a loop
    /// until the burn has ended. A null name leaves the disc without a title.
    ///
    /// A burn may be refused: `burnProgressDidError` with code 0 is then reported before the call
    /// returns, and nothing is started. Without a drive the burn of an audio CD is refused; that of
    /// a data CD reports nothing at all.
    ///
    /// Dropping the last reference to the burner does not stop the burn: it goes on unheard. Call
    /// this only when the burn before has ended: a burn that is replaced runs on and still reports
    /// here, and with its end `stopBurn` loses hold of the new one.
    virtual void burnWithDevice(const QuarnerDevice& device,
                                const std::optional<std::string>& discNamed);

    /// `stopBurn` Cancels the burn under way, which then ends with `burnProgressDidCanceled`.
    /// Without one, nothing happens.
    void stopBurn();

    /// The receiver of all reports, not owned; null for none.
    QuarnDelegate* delegate() const;
    void setDelegate(QuarnDelegate* delegate);

protected:
    /// Calls a delegate operation where there is a delegate.
    template <typename Operation, typename... Arguments>
    void tell(Operation operation, const Arguments&... arguments) const {
        if (QuarnDelegate* const listener = delegate())
            (listener->*operation)(arguments...);
    }

    std::atomic<QuarnDelegate*> _delegate = nullptr;
    std::atomic<bool> _continue2AddFiles = false;
    ContentList _content;
    std::shared_ptr<DRBurn> _burner;
};

} // namespace quarner
