// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>
#include <vector>

namespace quarner {

/// The file types that both burners accept, in the order of `Quarner::supportedFileTypes`.
std::vector<std::string> supportedAudioTypes();

} // namespace quarner
