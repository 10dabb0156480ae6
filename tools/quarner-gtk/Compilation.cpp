// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner-gtk/Compilation.h"

#include <utility>

namespace quarner::window {

struct Compilation::Observer : DiscProjectObserver {
    Observer(TrackModel& shown, Handlers reported) : model(shown), handlers(std::move(reported)) {}

    void rowsInserted(std::size_t first, const DiscItems& items) override {
        model.insert(first, items);
        handlers.changed();
    }
    void rowsRemoved(std::size_t first, std::size_t count) override {
        model.remove(first, count);
        handlers.changed();
    }
    void rowsMoved(std::size_t first, std::size_t count, std::size_t to) override {
        model.move(first, count, to);
        handlers.changed();
    }
    void fileRefused(const std::string& /*path*/, RefusalReason /*reason*/,
                     const std::string& text) override {
        handlers.fileRefused(text);
    }
    void addingProgress(const std::string& name, std::size_t index, std::size_t of) override {
        handlers.addingProgress(name, index, of);
    }
    void addingEnded(bool /*isCanceled*/) override { handlers.changed(); }
    void capacityChanged() override { handlers.changed(); }
    void drivesChanged() override { handlers.changed(); }
    void burnProgress(const DiscBurnProgress& progress) override {
        handlers.burnProgress(progress);
    }
    void burnEnded(const DiscBurnEnd& end) override { handlers.burnEnded(end); }

    TrackModel& model;
    const Handlers handlers;
};

Compilation::Compilation(DiscProject::Kind kind, Handlers handlers, TrackList::Handlers dropped)
    : _project(kind), _list(_model, kind == DiscProject::Kind::Audio, std::move(dropped)),
      _observer(std::make_shared<Observer>(_model, std::move(handlers))) {
    _project.addObserver(_observer);
}

std::vector<std::string> Compilation::paths() const {
    std::vector<std::string> paths;
    for (const DiscItemRef& item : *_project.items())
        paths.push_back(item->path);
    return paths;
}

} // namespace quarner::window
