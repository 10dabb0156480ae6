// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "adapters/worker/Message.h"
#include "fuzz/Input.h"

namespace quarner::fuzz {

/// A message with a name and keys of the protocols, and values of any type. A node is one of a few
/// that are no drive, so that no drive of this machine is touched.
Message messageFrom(Input& input);

/// Fields with keys of the protocols.
Dictionary fieldsFrom(Input& input);

} // namespace quarner::fuzz
