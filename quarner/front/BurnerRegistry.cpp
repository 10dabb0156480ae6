// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/front/BurnerRegistry.h"

#include <array>
#include <utility>

#include "quarner/front/Quarner.h"

namespace quarner {

std::shared_ptr<Quarner> makeBurner(std::string_view className) {
    using Maker = std::shared_ptr<Quarner> (*)();
    static constexpr std::array<std::pair<std::string_view, Maker>, 2> makers = {{
        {"AudioCDBurner", makeAudioCDBurner},
        {"DataCDBurner", makeDataCDBurner},
    }};
    for (const auto& [name, make] : makers)
        if (name == className)
            return make();
    return nullptr;
}

} // namespace quarner
