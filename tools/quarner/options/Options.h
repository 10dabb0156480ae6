// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "tools/quarner/options/DiscKind.h"

namespace quarner::cli {

/// With what the program ends. These numbers are part of its interface.
enum class ExitStatus {
    Success = 0,    ///< burnt and verified; or the question was answered
    Failed = 1,     ///< the burn, or what else was asked for, failed
    Usage = 2,      ///< the command line is wrong, or names a drive or an image that cannot be used
    Refused = 3,    ///< a named file was refused
    DoesNotFit = 4, ///< the compilation does not fit the disc
    Canceled = 130  ///< ended by Ctrl-C or a signal, as shells count it
};

/// On what a command works: an image, or a drive by its name, or neither.
struct Target {
    std::optional<std::string> image;
    std::optional<std::string> drive;
    int capacity = 80; ///< minutes of the image's disc: 74 or 80
};

struct BurnOptions {
    DiscKind kind = DiscKind::Audio;
    Target target;
    std::optional<std::string> title; ///< always there for a data disc
    bool sort = false;
    bool recursive = false; ///< search folders
    bool wait = false;      ///< for a disc
    bool eject = false;     ///< when the disc is burnt
    bool dryRun = false;
    bool keepGoing = false;
    bool yes = false; ///< burn without asking
    std::vector<std::string> files;
};

/// The questions about drives.
enum class Query { Drives, Disc, Eject, Watch };

struct QueryOptions {
    Query query = Query::Drives;
    Target target;
};

struct Command {
    bool json = false;
    bool verbose = false; ///< show the library's log
    std::variant<BurnOptions, QueryOptions> options;
};

/// What to print instead of running a command: help and the version, or what is wrong.
struct Message {
    ExitStatus status = ExitStatus::Success;
    std::string text;  ///< lines, the last one without its end
    bool json = false; ///< whether a program reads the output
};

/// Reads a command line, the program's name left out. Never throws for what the user wrote.
std::variant<Command, Message> parseCommandLine(const std::vector<std::string>& arguments);

} // namespace quarner::cli
