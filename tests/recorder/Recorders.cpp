// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/recorder/ImageStage.h"
#include "tests/recorder/RecorderTest.h"

namespace quarner {

std::vector<RecorderChoice> recorders() {
    return {{"Image", [] { return std::make_unique<ImageStage>(); }}};
}

} // namespace quarner
