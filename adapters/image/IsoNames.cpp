// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/image/IsoNames.h"

#include "adapters/image/ImagePath.h"

namespace quarner {

std::optional<IsoNames> isoNames(const std::string& path) {
    const std::optional<ImagePath> parts = imagePath(path, ".iso");
    if (!parts)
        return std::nullopt;
    const std::string hidden = parts->base() + '.' + parts->stem + ".iso";
    return IsoNames{.folder = parts->folder,
                    .iso = parts->path,
                    .lock = hidden + ".lock",
                    .part = hidden + ".part"};
}

} // namespace quarner
