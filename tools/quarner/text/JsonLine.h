// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "quarner/platform/Value.h"

namespace quarner::cli {

/// The arguments of an event by their keys, in order.
using JsonArguments = std::vector<std::pair<std::string, Value>>;

/// A JSON object on one line: the event's name under "event", then the arguments. An icon becomes
/// the list of its names, a number that is none becomes null, bytes that are not UTF-8 become
/// U+FFFD.
std::string jsonLine(std::string_view event, const JsonArguments& arguments = {});

/// The last line of every command.
std::string jsonExitLine(int status);

} // namespace quarner::cli
