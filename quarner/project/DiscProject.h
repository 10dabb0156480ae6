// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "quarner/platform/Export.h"
#include "quarner/project/DiscCapacity.h"
#include "quarner/project/DiscDrive.h"
#include "quarner/project/DiscItem.h"
#include "quarner/project/DiscProjectObserver.h"

namespace quarner {

class ProjectCore;

/// A compilation that a user interface can show: a list of files for an audio CD or a data CD, the
/// drives, and the burn. It owns a burner and does what every host would otherwise write itself: it
/// hands every report to the main thread, keeps the list in step, and puts reasons, problems and
/// progress into words.
///
/// Make, use and destroy it on the main thread, after a platform was installed. The main loop must
/// run for files to be added and for anything to be reported. `add` looks up each path, and `burn`
/// asks the drive for its state; nothing else waits for a file or a drive. Nothing throws.
///
/// Destroying a project at any moment, also from inside a call of an observer, cancels what it
/// does; no observer is called afterwards. Once the platform was uninstalled, a project can only be
/// destroyed.
class QUARNER_EXPORT DiscProject {
public:
    /// What becomes of the files.
    enum class Kind {
        Audio, ///< each one is a track of an audio CD
        Data   ///< they are stored unchanged on a data CD
    };

    /// An empty compilation. The drives are examined in the background: `drivesChanged`.
    explicit DiscProject(Kind kind);
    /// Cancels what the project does, see above.
    ~DiscProject();
    DiscProject(const DiscProject&) = delete;
    DiscProject& operator=(const DiscProject&) = delete;

    /// The kind as given.
    Kind kind() const;

    /// Adds an observer, which is held weakly. Observers are called in the order in which they were
    /// added.
    void addObserver(std::weak_ptr<DiscProjectObserver> observer);

    /// Forwards every call that the burner makes to its delegate, in the same order, but all of
    /// them on the main thread, each before the observers are called for the same event. For a
    /// host that has a delegate; nothing of it is needed beside an observer. The delegate is held
    /// weakly, and must not throw. Replaces the one before.
    void setDelegate(std::weak_ptr<QuarnDelegate> delegate);

    /// The extensions of the files that can be added, each once and in lower case: "m4a".
    static std::vector<std::string> fileExtensions();

    // --- The list ---

    /// Adds files in the order of the paths, so that the first one gets the number `row`; a row
    /// past the end means the end. Files are examined in the background, and each row appears once
    /// its file was examined: `rowsInserted`. A file that cannot be added is reported with its
    /// reason: `fileRefused`. May be called again while files are being added.
    ///
    /// The rows of one call stay together behind the row that was before `row` at the time of the
    /// call, however the list changes while the files are examined.
    void add(const std::vector<std::string>& paths, std::size_t row);
    /// The same at the end.
    void add(const std::vector<std::string>& paths);
    /// Adds files at the end, sorted by the user's locale.
    void addSorted(const std::vector<std::string>& paths);
    /// True from a call of `add` until `addingEnded`.
    bool isAdding() const;
    /// Stops the adding of files within a second. Files that were added stay in the list. Those of
    /// a later call are added once this has ended: `addingEnded`.
    void cancelAdding();

    /// Removes the rows with these numbers; numbers past the end are ignored.
    void remove(const std::set<std::size_t>& rows);
    /// Moves the rows with these numbers, in their order, to before the row `to`; a number past the
    /// end means the end. Does nothing if a number in `rows` is past the end.
    void move(const std::set<std::size_t>& rows, std::size_t to);
    /// Removes all rows. Files that are still being examined are added nevertheless.
    void clear();

    /// The rows, shared with later calls until the list changes. Never null.
    std::shared_ptr<const DiscItems> items() const;

    // --- Drives ---

    /// The attached drives, in the order of the recording service.
    std::vector<DiscDrive> drives() const;
    /// `std::nullopt` for a drive that is not attached any more.
    std::optional<DiscDrive> drive(DiscDrive::Id id) const;
    /// The drive with this display name; of several the last one. `std::nullopt` if there is none.
    std::optional<DiscDrive::Id> driveNamed(const std::string& name) const;
    /// Examines a drive and its disc again, in the background. `done` is called on the main thread,
    /// after the observers were notified of what has changed; never inside this call.
    void examine(DiscDrive::Id id, std::function<void()> done);
    /// Ejects the disc in the background. `done` is called on the main thread, never inside this
    /// call: with an empty text if the disc was ejected, otherwise with the reason, a sentence.
    void eject(DiscDrive::Id id, std::function<void(const std::string& problem)> done = {});

    // --- What fits ---

    /// What the compilation takes, and what the disc in the drive does. Without the drive, and for
    /// a drive without a disc, only what the compilation takes is known.
    DiscCapacity capacity(std::optional<DiscDrive::Id> drive = std::nullopt) const;
    /// What would make a burn on this drive fail, by what is known now, the weightiest first.
    std::vector<DiscProblem> problems(DiscDrive::Id drive) const;

    // --- The burn ---

    /// Burns the compilation as it is now: closed session, an erasable disc is overwritten,
    /// verified, at the highest speed. An empty title leaves the disc without one. Reports
    /// `burnProgress` and at last `burnEnded`, also for a burn that cannot start. Returns false,
    /// and reports nothing, if a burn of this project is under way.
    bool burn(DiscDrive::Id drive, const std::string& title = {});
    /// Cancels the burn, which ends with `burnEnded`. Does nothing if there is none.
    void cancelBurn();
    /// True from a call of `burn` until `burnEnded` is reported.
    bool isBurning() const;

private:
    const std::shared_ptr<ProjectCore> _core;
};

} // namespace quarner
