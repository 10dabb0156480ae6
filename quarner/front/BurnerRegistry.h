// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace quarner {

class Quarner;

/// The burner classes by name, so that `front` can make a burner without including its class.
using BurnerMaker = std::function<std::shared_ptr<Quarner>()>;

/// Registers a class. Used by static objects: `const bool registered = registerBurner(...)`.
bool registerBurner(std::string_view className, BurnerMaker maker);

/// Returns a new burner of a class, or null if no class with that name is registered.
std::shared_ptr<Quarner> makeBurner(std::string_view className);

} // namespace quarner
