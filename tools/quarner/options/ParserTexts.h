// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <CLI/CLI.hpp>

#include <string>

/// What the parser of the command line says, in the user's language.
namespace quarner::cli {

/// Translates the headings and the help option of a command. Call it before options are added.
void translateHelp(CLI::App& command);

/// Returns what is wrong with a command line.
std::string textOf(const CLI::ParseError& problem);

} // namespace quarner::cli
