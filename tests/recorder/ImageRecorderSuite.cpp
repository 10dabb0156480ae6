// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/recorder/ImageStage.h"
#include "tests/recorder/RecorderTest.h"

namespace quarner {
namespace {

INSTANTIATE_TEST_SUITE_P(Image, Recorder,
                         testing::Values([] { return std::make_unique<ImageStage>(); }),
                         [](const auto&) { return std::string("Disc"); });

} // namespace
} // namespace quarner
