// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/FileService.h"

namespace quarner {

FileService::~FileService() = default;

std::optional<FileProblem> FileService::problem(const std::string& path) {
    return attributes(path) ? std::nullopt
                            : std::optional(FileProblem{FileProblem::Kind::Missing, {}});
}

} // namespace quarner
