// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/image/IsoNames.h"

#include <string_view>

#include "adapters/image/FittingStem.h"
#include "adapters/image/ImagePath.h"

namespace quarner {

std::optional<IsoNames> isoNames(const std::string& path) {
    const std::optional<ImagePath> parts = imagePath(path, ".iso");
    if (!parts)
        return std::nullopt;
    constexpr std::string_view longestAddition = "..iso.lock";
    const std::size_t longest = longestNameIn(parts->folder);
    const std::string hidden =
        parts->base() + '.' + fittingStem(parts->stem, longest - longestAddition.size()) + ".iso";
    return IsoNames{.folder = parts->folder,
                    .iso = parts->path,
                    .lock = hidden + ".lock",
                    .part = hidden + ".part"};
}

} // namespace quarner
