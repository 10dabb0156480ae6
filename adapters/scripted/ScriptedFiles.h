// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "adapters/scripted/ScriptedContext.h"
#include "quarner/platform/FileService.h"
#include "quarner/scripted/Scripts.h"

namespace quarner {

/// The files of a scripted platform and their media. Any thread.
class FileStore {
public:
    void putFile(const std::string& path, FileScript file);
    void putMedia(const std::string& path, MediaScript media);
    void remove(const std::string& path);

    std::optional<FileScript> file(const std::string& path) const;
    std::optional<MediaScript> media(const std::string& path) const;

private:
    mutable std::mutex _mutex;
    std::map<std::string, FileScript> _files;
    std::map<std::string, MediaScript> _media;
};

/// Returns the stereo samples at 44.1 kHz of a file.
std::uint64_t samplesOf(const MediaScript& media);

/// The file service on a `FileStore`.
class ScriptedFiles : public FileService {
public:
    ScriptedFiles(std::shared_ptr<ScriptedContext> context, std::shared_ptr<FileStore> store);

    std::string displayName(const std::string& path) override;
    std::optional<FileAttributes> attributes(const std::string& path) override;
    Icon icon(const std::string& path) override;
    std::optional<std::string> resolveAlias(const std::string& path) override;
    std::optional<FileProblem> problem(const std::string& path) override;

private:
    const std::shared_ptr<ScriptedContext> _context;
    const std::shared_ptr<FileStore> _store;
};

} // namespace quarner
