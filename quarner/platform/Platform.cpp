// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/Platform.h"

#include <mutex>
#include <utility>

#include "quarner/platform/NullPlatform.h"

namespace quarner {
namespace {

std::shared_ptr<const Platform> completed(Platform platform) {
    Platform null = nullPlatform();
    const auto fill = [](auto& service, auto& substitute) {
        if (!service)
            service = std::move(substitute);
    };
    fill(platform.recording, null.recording);
    fill(platform.media, null.media);
    fill(platform.files, null.files);
    fill(platform.dispatch, null.dispatch);
    fill(platform.text, null.text);
    fill(platform.log, null.log);
    return std::make_shared<const Platform>(std::move(platform));
}

struct Installed {
    std::mutex mutex;
    std::shared_ptr<const Platform> platform = completed({});
};

// Never destroyed: a background thread may still ask for the platform while the process exits.
Installed& installed() {
    static auto* const place = new Installed;
    return *place;
}

} // namespace

void installPlatform(Platform platform) {
    std::shared_ptr<const Platform> next = completed(std::move(platform));
    const std::lock_guard lock(installed().mutex);
    installed().platform.swap(next);
}

std::shared_ptr<const Platform> currentPlatform() {
    const std::lock_guard lock(installed().mutex);
    return installed().platform;
}

} // namespace quarner
