// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quarner::cli {

/// How many columns a safe text takes: wide characters two, combining ones none.
std::size_t displayWidth(std::string_view text);

/// A safe text cut to a number of columns, with "..." at its end when something was left out.
std::string shortened(std::string_view text, std::size_t columns);

/// A safe text shortened and filled with spaces to an exact number of columns.
std::string leftAligned(std::string_view text, std::size_t columns);
std::string rightAligned(std::string_view text, std::size_t columns);

/// What stands before a fact, at the beginning of its line.
enum class Label { None, Drive, Disc, Title, Used, Free, Speeds };

/// A label and a safe text. The texts of all labels begin in the same column.
std::string labelled(Label label, std::string_view text);

} // namespace quarner::cli
