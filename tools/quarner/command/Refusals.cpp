// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/command/Refusals.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <system_error>
#include <vector>

#include "quarner/platform/Platform.h"
#include "quarner/util/Paths.h"

namespace quarner::cli {
namespace {

/// What keeps a file from being opened, if anything does.
std::optional<std::string> obstacle(const std::string& path) {
    struct stat file = {};
    if (TEMP_FAILURE_RETRY(stat(path.c_str(), &file)) != 0 && (errno == ENOENT || errno == ENOTDIR))
        return "no such file";
    if (S_ISDIR(file.st_mode))
        return "unsupported type (a folder)";
    if (file.st_mode != 0 && !S_ISREG(file.st_mode))
        return "unsupported type (not a file on disk)";
    constexpr int flags = O_RDONLY | O_NONBLOCK | O_CLOEXEC;
    const auto descriptor = static_cast<int>(TEMP_FAILURE_RETRY(open(path.c_str(), flags)));
    if (descriptor < 0)
        return "not readable: " + std::generic_category().message(errno);
    close(descriptor);
    return std::nullopt;
}

bool hasSupportedType(Quarner& burner, const std::string& path) {
    const std::vector<std::string> types = burner.supportedFileTypes();
    const auto isSupported = [&](const std::string& type) {
        return std::find(types.begin(), types.end(), type) != types.end();
    };
    return isSupported(Paths::lowercaseExtension(path)) ||
           isSupported(Paths::hfsType(path).value_or(""));
}

std::string soundObstacle(const std::string& path) {
    const std::string problem = currentPlatform()->media->problemWithMovie(path);
    return problem.empty() ? "unreadable: it could not be added" : problem;
}

} // namespace

std::string reasonForRefusal(DiscKind kind, Quarner& burner, const std::string& path) {
    const std::string resolved = Paths::realPath(path);
    if (const auto reason = obstacle(resolved))
        return *reason;
    if (traitsOf(kind).refusesProtected && Paths::isQuickTimeProtectedFile(resolved))
        return "copy-protected";
    if (!hasSupportedType(burner, resolved))
        return "unsupported type (" + supportedTypes(burner, " and ") + " can be added)";
    return soundObstacle(resolved);
}

} // namespace quarner::cli
