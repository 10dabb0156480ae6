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
    const BurnFailure failure = writeFailure(ENOSPC, "creating {path}: {error}", "mix.bin");
    EXPECT_EQ(failure.path(), "mix.bin");
    EXPECT_EQ(failure.info(), "creating mix.bin: No space left on device");
}

} // namespace
} // namespace quarner
