// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/scripted/ScriptedFiles.h"

#include <cmath>
#include <set>
#include <utility>

namespace quarner {
namespace {

constexpr double discRate = 44100.0;

template <typename Script>
std::optional<Script> found(const std::map<std::string, Script>& scripts, const std::string& path) {
    const auto entry = scripts.find(path);
    return entry == scripts.end() ? std::nullopt : std::optional(entry->second);
}

std::string lastComponent(const std::string& path) {
    return path.substr(path.find_last_of('/') + 1);
}

} // namespace

void FileStore::putFile(const std::string& path, FileScript file) {
    const std::lock_guard lock(_mutex);
    _files.insert_or_assign(path, std::move(file));
}

void FileStore::putMedia(const std::string& path, MediaScript media) {
    const std::lock_guard lock(_mutex);
    _media.insert_or_assign(path, std::move(media));
}

void FileStore::remove(const std::string& path) {
    const std::lock_guard lock(_mutex);
    _files.erase(path);
    _media.erase(path);
}

std::optional<FileScript> FileStore::file(const std::string& path) const {
    const std::lock_guard lock(_mutex);
    return found(_files, path);
}

std::optional<MediaScript> FileStore::media(const std::string& path) const {
    const std::lock_guard lock(_mutex);
    return found(_media, path);
}

std::uint64_t samplesOf(const MediaScript& media) {
    const double samples = std::round(std::max(media.seconds, 0.0) * discRate);
    return media.samples.value_or(static_cast<std::uint64_t>(samples));
}

ScriptedFiles::ScriptedFiles(std::shared_ptr<ScriptedContext> context,
                             std::shared_ptr<FileStore> store)
    : _context(std::move(context)), _store(std::move(store)) {}

std::string ScriptedFiles::displayName(const std::string& path) {
    const bool isFailing = _context->fails(ServiceCall::DisplayName, path);
    const std::optional<FileScript> file = _store->file(path);
    return isFailing || !file ? lastComponent(path)
                              : file->displayName.value_or(lastComponent(path));
}

std::optional<FileAttributes> ScriptedFiles::attributes(const std::string& path) {
    const bool isFailing = _context->fails(ServiceCall::Attributes, path);
    const std::optional<FileScript> file = _store->file(path);
    if (isFailing || !file || !file->isReadable)
        return std::nullopt;
    return FileAttributes{.size = file->size, .hfsTypeCode = file->typeCode};
}

Icon ScriptedFiles::icon(const std::string& path) {
    const bool isFailing = _context->fails(ServiceCall::IconOfFile, path);
    return isFailing ? Icon() : _store->file(path).value_or(FileScript{}).icon;
}

std::optional<std::string> ScriptedFiles::resolveAlias(const std::string& path) {
    const bool isFailing = _context->fails(ServiceCall::ResolveAlias, path);
    std::optional<FileScript> file = _store->file(path);
    if (isFailing || !file || !file->aliasOf)
        return std::nullopt;
    std::string target = path;
    std::set<std::string> visited;
    while (file && file->aliasOf) {
        if (!visited.insert(target).second)
            return std::nullopt; // the aliases form a cycle
        target = *file->aliasOf;
        file = _store->file(target);
    }
    return file ? std::optional(target) : std::nullopt;
}

std::optional<FileProblem> ScriptedFiles::problem(const std::string& path) {
    const std::optional<FileScript> file = _store->file(path);
    if (_context->fails(ServiceCall::FileProblem, path))
        return std::nullopt;
    if (!file)
        return FileProblem{FileProblem::Kind::Missing, {}};
    if (file->problem || file->isReadable)
        return file->problem;
    return FileProblem{FileProblem::Kind::Unreadable, "Permission denied"};
}

} // namespace quarner
