// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "adapters/scripted/ScriptedContext.h"
#include "adapters/scripted/ScriptedFiles.h"
#include "quarner/platform/MediaService.h"

namespace quarner {

/// The media service on a `FileStore`.
class ScriptedMedia : public MediaService {
public:
    ScriptedMedia(std::shared_ptr<ScriptedContext> context, std::shared_ptr<FileStore> files);

    std::unique_ptr<QTMovie> movieWithFile(const std::string& path) override;
    std::vector<std::string> movieFileTypes(std::uint32_t flags) override;
    std::optional<MovieProblem> movieProblem(const std::string& path) override;
    MediaTags tags(const std::string& path) override;

    void setMovieFileTypes(std::vector<std::string> types);

private:
    const std::shared_ptr<ScriptedContext> _context;
    const std::shared_ptr<FileStore> _files;
    std::mutex _mutex;
    std::vector<std::string> _types;
};

} // namespace quarner
