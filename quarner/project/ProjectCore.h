// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "quarner/front/Quarner.h"
#include "quarner/project/ContentSize.h"
#include "quarner/project/DataSize.h"
#include "quarner/project/DiscProject.h"
#include "quarner/project/DriveBoard.h"
#include "quarner/project/ObserverList.h"
#include "quarner/project/OverallProgress.h"
#include "quarner/project/ProjectRelay.h"
#include "quarner/project/RowList.h"

namespace quarner {

/// What a `DiscProject` does. It may outlive the project for the end of a call; from `close` on it
/// calls no observer. Main thread only.
class ProjectCore : public std::enable_shared_from_this<ProjectCore> {
public:
    explicit ProjectCore(DiscProject::Kind kind);

    void start();
    /// Cancels what is under way and drops the observers.
    void close();

    // --- Operations of `DiscProject` ---

    DiscProject::Kind kind() const { return _kind; }
    ObserverList& observers() { return _observers; }
    void setDelegate(std::weak_ptr<QuarnDelegate> delegate) { _delegate = std::move(delegate); }
    /// Null if there is none, and once the project is closed.
    std::shared_ptr<QuarnDelegate> delegate() const { return _delegate.lock(); }
    void add(const std::vector<std::string>& paths, std::optional<std::size_t> row);
    void addSorted(const std::vector<std::string>& paths);
    bool isAdding() const { return _startedRuns != 0; } // so too while further adds are deferred
    void cancelAdding();
    void remove(const std::set<std::size_t>& rows);
    void move(const std::set<std::size_t>& rows, std::size_t to);
    void clear();
    std::shared_ptr<const DiscItems> items() const { return _rows.snapshot(); }
    const DriveBoard& drives() const { return *_drives; }
    void examine(DiscDrive::Id id, std::function<void()> done);
    void eject(DiscDrive::Id id, std::function<void(const std::string&)> done);
    DiscCapacity capacity(std::optional<DiscDrive::Id> drive) const;
    std::vector<DiscProblem> problems(DiscDrive::Id drive) const;
    bool burn(DiscDrive::Id drive, const std::string& title);
    void cancelBurn();
    bool isBurning() const { return _isBurning; }

    // --- Reports of the relay ---

    void applyChanges();
    using Run = std::thread::id;
    void runDidStart(Run run);
    void runDidProceed(Run run, const std::string& displayName, std::size_t index, std::size_t of);
    void runDidCancel() { _isAddingCanceled = true; }
    void runDidEnd(Run run);
    void refuse(const FileRefusal& refusal);

    void burnDidEnter(DiscBurnProgress::Phase phase, std::int64_t track, std::int64_t of);
    void burnDidProceed(double fraction);
    void burnDidFail(const BurnError& error);
    void endBurn(DiscBurnEnd end);

private:
    struct RunProgress {
        std::size_t index = 0;
        std::size_t of = 0;
    };

    template <typename... Arguments>
    std::function<void(Arguments...)> whileOpen(std::function<void(Arguments...)> call);
    void tell(ObserverList::Event event) { _observers.send(std::move(event)); }
    void beginRun(bool isAnyAccepted);
    void drivesDidChange();
    void capacityDidChange();
    ContentSize contentSize() const;
    bool isDeferred(std::function<void()> add);
    void beginBurn(const std::string& title);
    void reportProgress();
    void refuseBurn(const BurnErrorInfo& info);
    void fail(DRError code, const BurnErrorInfo& info);

    const DiscProject::Kind _kind;
    const std::shared_ptr<Quarner> _burner;
    std::shared_ptr<ProjectRelay> _relay;
    bool _isClosed = false;
    ObserverList _observers;
    std::weak_ptr<QuarnDelegate> _delegate;
    RowList _rows;
    std::shared_ptr<DriveBoard> _drives;
    std::shared_ptr<DataSize> _dataSize; // null for an audio CD

    std::size_t _startedRuns = 0;
    std::map<Run, RunProgress> _runs; // those that have reported their start and not their end
    RunProgress _endedRuns;           // of those that ended since the adding began
    bool _isAddingCanceled = false;
    bool _isCanceling = false; // until the runs under way have ended
    std::vector<std::function<void()>> _deferredAdds;

    bool _isBurning = false;
    bool _isCancelWanted = false;   // since the burn began
    DiscDrive::Id _burnedDrive = 0; // of the last burn; 0 before it
    DiscBurnProgress _progress;
    std::optional<double> _newFraction; // of the phase that is reported next
    OverallProgress _overall;
};

} // namespace quarner
