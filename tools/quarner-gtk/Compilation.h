// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "quarner/project/DiscProject.h"
#include "quarner/project/DiscProjectHistory.h"
#include "tools/quarner-gtk/TrackList.h"
#include "tools/quarner-gtk/TrackModel.h"

namespace quarner::window {

/// What the window edits and burns: a project, the edits that can be undone, and the list that
/// shows it. Another kind of disc takes another compilation.
class Compilation {
public:
    /// What happens in the project; see `DiscProjectObserver`.
    struct Handlers {
        std::function<void()> changed; ///< anything but the burn: rows, drives, capacity
        std::function<void(const std::string& text)> fileRefused;
        std::function<void(const std::string& name, std::size_t index, std::size_t of)>
            addingProgress;
        std::function<void(const DiscBurnProgress&)> burnProgress;
        std::function<void(const DiscBurnEnd&)> burnEnded;
    };

    Compilation(DiscProject::Kind kind, Handlers handlers, TrackList::Handlers dropped);

    DiscProject& project() { return _project; }
    DiscProjectHistory& history() { return _history; }
    TrackModel& model() { return _model; }
    TrackList& list() { return _list; }
    std::vector<std::string> paths() const;

private:
    struct Observer;

    DiscProject _project;
    DiscProjectHistory _history{_project};
    TrackModel _model;
    TrackList _list;
    const std::shared_ptr<Observer> _observer;
};

} // namespace quarner::window
