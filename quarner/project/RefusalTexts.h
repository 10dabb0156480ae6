// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

#include "quarner/front/FileRefusal.h"

namespace quarner {

/// Why a file was not added and what the user can do, as sentences that name the file.
std::string textForRefusal(const FileRefusal& refusal);

} // namespace quarner
