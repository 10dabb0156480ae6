// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/BurnFailure.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace quarner {
namespace {

TEST(WriteFailure, HasTheCodeOfTheSystemsReason) {
    for (const int full : {ENOSPC, EDQUOT})
        EXPECT_EQ(writeFailure(full, "x", "/y").error(), DRError::NoSpace) << full;
    for (const int forbidden : {EACCES, EPERM, EROFS})
        EXPECT_EQ(writeFailure(forbidden, "x", "/y").error(), DRError::PermissionDenied)
            << forbidden;
    for (const int other : {EIO, ENODEV, EFBIG})
        EXPECT_EQ(writeFailure(other, "x", "/y").error(), DRError::WriteFailed) << other;
}

TEST(WriteFailure, NamesTheAttemptAndTheReason) {
    EXPECT_EQ(writeFailure(ENOSPC, "creating ", "mix.bin").path(), "mix.bin");
    EXPECT_EQ(writeFailure(ENOSPC, "creating ", "mix.bin").info(),
              "creating mix.bin: No space left on device");
}

} // namespace
} // namespace quarner
