// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace quarner {

class Quarner;

/// The burner classes by name, so that the front makes a burner without knowing its class.
using BurnerMaker = std::function<std::shared_ptr<Quarner>()>;

/// Enters a class; made for static objects: `const bool registered = registerBurner(...)`.
bool registerBurner(std::string_view className, BurnerMaker maker);

/// A new burner of a class, or null when no class of that name has been entered.
std::shared_ptr<Quarner> makeBurner(std::string_view className);

} // namespace quarner
