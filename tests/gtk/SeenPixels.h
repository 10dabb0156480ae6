// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

namespace quarner::testing {

/// How bright a part of the screen is on average: 0 is black and 1 is white. The part must be on
/// the screen.
double brightnessOfScreen(int x, int y, int width, int height);

} // namespace quarner::testing
