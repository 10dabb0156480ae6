// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "fuzz/Input.h"
#include "quarner/platform/Value.h"

namespace quarner::fuzz {

/// A value of any type, lists and dictionaries nested up to a fixed depth. Texts are often states
/// or media types that the framework knows.
Value valueFrom(Input& input);

/// A dictionary of any values under keys that the framework knows, and others.
Dictionary dictionaryFrom(Input& input);

} // namespace quarner::fuzz
