// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <glibmm/dispatcher.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace quarner::window {

/// Finds the files that a user means by paths of files, folders and playlists, on a thread of its
/// own because a disk may be slow. Main thread only.
class FileSearch {
public:
    using Paths = std::vector<std::string>;

    FileSearch();
    /// Stops the search. Nothing is called afterwards.
    ~FileSearch();
    FileSearch(const FileSearch&) = delete;
    FileSearch& operator=(const FileSearch&) = delete;

    /// Calls `done` with the files in a later turn of the main loop; in the order of the calls.
    void find(Paths paths, std::function<void(const Paths& files)> done);
    /// Whether there are calls to come.
    bool isSearching() const { return !_calls.empty(); }

private:
    std::optional<Paths> nextWanted(const std::stop_token& stop);
    void work(const std::stop_token& stop);
    void takeResults();

    std::deque<std::function<void(const Paths&)>> _calls; ///< the main thread's
    std::mutex _mutex;
    std::condition_variable_any _isWanted;
    std::deque<Paths> _wanted;
    std::deque<Paths> _found;
    Glib::Dispatcher _isFound;
    std::jthread _thread; ///< the last member: it ends before what it uses
};

} // namespace quarner::window
