// SPDX-License-Identifier: LGPL-2.1-or-later
#include <glib.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>
#include <tuple>
#include <utility>

#include "quarner/playlist.h"

namespace quarner {
namespace {

namespace fs = std::filesystem;

/// Orders names as file managers do: "2" before "10".
std::string sortKey(const fs::path& path) {
    const std::string name = path.filename().string();
    const std::unique_ptr<char, decltype(&g_free)> key(
        g_utf8_collate_key_for_filename(name.data(), static_cast<gssize>(name.size())), g_free);
    return key.get();
}

/// What is in a folder, sorted; `std::nullopt` if it cannot be read.
std::optional<std::vector<fs::directory_entry>> entriesOf(const fs::path& folder,
                                                          const std::stop_token& stop) {
    std::vector<std::pair<std::string, fs::directory_entry>> keyed;
    std::error_code error;
    for (fs::directory_iterator place(folder, error), end;
         !error && place != end && !stop.stop_requested(); place.increment(error))
        if (!place->path().filename().string().starts_with('.'))
            keyed.emplace_back(sortKey(place->path()), *place);
    if (error)
        return std::nullopt;
    std::sort(keyed.begin(), keyed.end(), [](const auto& left, const auto& right) {
        return std::tie(left.first, left.second) < std::tie(right.first, right.second);
    });
    std::vector<fs::directory_entry> entries;
    for (auto& [key, entry] : keyed)
        entries.push_back(std::move(entry));
    return entries;
}

/// Searches folders for files of supported types.
class Search {
public:
    Search(const std::vector<std::string>& extensions, const std::stop_token& stop)
        : _extensions(extensions), _stop(stop) {}

    void addFilesIn(const fs::path& folder) {
        const auto entries = entriesOf(folder, _stop);
        if (!entries) {
            found.push_back(folder.string());
            return;
        }
        std::error_code ignored;
        for (const fs::directory_entry& entry : *entries)
            if (!_stop.stop_requested() && entry.is_regular_file(ignored) &&
                isSupported(entry.path()))
                found.push_back(entry.path().string());
        for (const fs::directory_entry& entry : *entries)
            if (!_stop.stop_requested() && !entry.is_symlink(ignored) &&
                entry.is_directory(ignored))
                addFilesIn(entry.path());
    }

    std::vector<std::string> found;

private:
    bool isSupported(const fs::path& path) const {
        const std::string extension = path.extension().string();
        return std::any_of(_extensions.begin(), _extensions.end(), [&](const std::string& known) {
            return g_ascii_strcasecmp(extension.c_str(), ("." + known).c_str()) == 0;
        });
    }

    const std::vector<std::string>& _extensions;
    const std::stop_token& _stop;
};

} // namespace

std::vector<std::string> filesToAdd(const std::vector<std::string>& paths,
                                    const std::vector<std::string>& searchedExtensions,
                                    const std::stop_token& stop) {
    Search search(searchedExtensions, stop);
    for (const std::string& path : paths) {
        if (stop.stop_requested())
            break;
        std::error_code ignored;
        const auto entries = isPlaylist(path) ? readPlaylist(path) : std::nullopt;
        if (entries)
            search.found.insert(search.found.end(), entries->begin(), entries->end());
        else if (!searchedExtensions.empty() && fs::is_directory(path, ignored))
            search.addFilesIn(path);
        else
            search.found.push_back(path);
    }
    return search.found;
}

} // namespace quarner
