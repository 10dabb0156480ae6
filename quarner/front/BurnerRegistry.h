// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <string_view>

namespace quarner {

class Quarner;

/// Returns a new burner of a class, or null if there is no burner class with that name. So `front`
/// makes burners without including their classes.
std::shared_ptr<Quarner> makeBurner(std::string_view className);

// The makers in the registry, each defined beside its class. They are named, and do not register
// themselves, because a host that links a static library gets only the objects that it refers to.
std::shared_ptr<Quarner> makeAudioCDBurner();
std::shared_ptr<Quarner> makeDataCDBurner();

} // namespace quarner
