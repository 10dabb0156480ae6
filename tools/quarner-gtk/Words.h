// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <libintl.h>

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#define _(message) gettext(message)

namespace quarner::window {
inline std::string filled(std::string message,
                          std::initializer_list<std::pair<std::string_view, std::string>> values) {
    for (const auto& [name, value] : values) {
        const std::string place = "{" + std::string(name) + "}";
        if (const auto at = message.find(place); at != std::string::npos)
            message.replace(at, place.size(), value);
    }
    return message;
}
} // namespace quarner::window
