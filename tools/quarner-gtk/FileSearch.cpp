// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner-gtk/FileSearch.h"

#include <utility>

#include "quarner/playlist.h"
#include "quarner/project/DiscProject.h"

namespace quarner::window {

FileSearch::FileSearch() {
    _isFound.connect([this] { takeResults(); });
    _thread = std::jthread([this](const std::stop_token& stop) { work(stop); });
}

FileSearch::~FileSearch() = default;

void FileSearch::find(Paths paths, std::function<void(const Paths&)> done) {
    _calls.push_back(std::move(done));
    const std::lock_guard lock(_mutex);
    _wanted.push_back(std::move(paths));
    _isWanted.notify_one();
}

void FileSearch::work(const std::stop_token& stop) {
    const std::vector<std::string> extensions = DiscProject::fileExtensions();
    while (const auto paths = nextWanted(stop)) {
        Paths files = filesToAdd(*paths, extensions, stop);
        std::unique_lock lock(_mutex);
        _found.push_back(std::move(files));
        lock.unlock(); // emitting may wait for the main thread
        _isFound.emit();
    }
}

/// Waits for paths. `std::nullopt` once it is stopped.
std::optional<FileSearch::Paths> FileSearch::nextWanted(const std::stop_token& stop) {
    std::unique_lock lock(_mutex);
    if (!_isWanted.wait(lock, stop, [this] { return !_wanted.empty(); }))
        return std::nullopt;
    Paths paths = std::move(_wanted.front());
    _wanted.pop_front();
    return paths;
}

void FileSearch::takeResults() {
    while (true) {
        std::unique_lock lock(_mutex);
        if (_found.empty())
            return;
        const Paths files = std::move(_found.front());
        _found.pop_front();
        lock.unlock();
        const auto done = std::move(_calls.front());
        _calls.pop_front();
        done(files);
    }
}

} // namespace quarner::window
