// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/front/BurnItemRecord.h"

#include "quarner/front/BurnItemKeys.h"
#include "quarner/platform/Platform.h"
#include "quarner/util/MultiMedia.h"

namespace quarner {

Dictionary burnItemRecord(const std::string& path, std::int64_t seconds) {
    const auto files = currentPlatform()->files;
    const std::int64_t size = files->attributes(path).value_or(FileAttributes{}).size;
    return {
        {kQuarnItemDisplayNameKey, files->displayName(path)},
        {kQuarnItemFilePathKey, path},
        {kQuarnItemRealDurationKey, seconds},
        {kQuarnItemDurationKey, MultiMedia::stringWithDuration(seconds, false)},
        {kQuarnItemRealFileSizeKey, size},
        {kQuarnItemFileSizeKey, MultiMedia::stringWithFilesize(size)},
        {kQuarnItemIconKey, files->icon(path)},
    };
}

} // namespace quarner
