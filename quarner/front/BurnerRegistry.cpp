// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/front/BurnerRegistry.h"

#include <map>
#include <utility>

#include "quarner/front/Quarner.h"

namespace quarner {
namespace {

using Makers = std::map<std::string, BurnerMaker, std::less<>>;

// Filled by static objects while the library is loaded, and only read afterwards.
Makers& makers() {
    static Makers map;
    return map;
}

} // namespace

bool registerBurner(std::string_view className, BurnerMaker maker) {
    return makers().emplace(className, std::move(maker)).second;
}

std::shared_ptr<Quarner> makeBurner(std::string_view className) {
    const auto maker = makers().find(className);
    return maker == makers().end() ? nullptr : maker->second();
}

} // namespace quarner
