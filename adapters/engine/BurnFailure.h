// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <utility>

#include "quarner/platform/DRErrors.h"

namespace quarner {

/// The reason for which a burn fails. Thrown anywhere below the burn thread's main function, which
/// turns it into the Failed record; it never leaves the engine.
class BurnFailure : public std::exception {
public:
    /// `info` is a text for the status record and the diagnostic log. It names the file concerned.
    /// `path` is that file, and `sector` the first sector of the disc that is concerned, for
    /// programs; empty if there is none.
    BurnFailure(DRError error, std::string info, std::string path = {},
                std::optional<std::uint64_t> sector = std::nullopt)
        : _error(error), _info(std::move(info)), _path(std::move(path)), _sector(sector) {}

    DRError error() const { return _error; }
    const std::string& info() const { return _info; }
    const std::string& path() const { return _path; }
    std::optional<std::uint64_t> sector() const { return _sector; }
    const char* what() const noexcept override { return _info.c_str(); }

private:
    DRError _error;
    std::string _info;
    std::string _path;
    std::optional<std::uint64_t> _sector;
};

/// Returns the failure of a system call that could not write to a path. `errorNumber` is its
/// `errno`, `message` says what was attempted ("creating {path}: {error}"), where "{error}" is the
/// system's reason and "{from}" another path.
BurnFailure writeFailure(int errorNumber, const char* message, const std::string& path,
                         const std::string& from = {});

} // namespace quarner
