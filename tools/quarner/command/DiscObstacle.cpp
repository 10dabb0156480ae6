// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/command/DiscObstacle.h"

#include "quarner/platform/DRErrors.h"
#include "tools/quarner/command/BurnAdvice.h"
#include "tools/quarner/command/DriveChoice.h"

namespace quarner::cli {
namespace {

std::string explained(DRError error) { return explainedFailure(signedCode(error), "", 0); }

/// By which a drive seems to have no disc.
std::string reasonForNoDisc(const Host& host, const QuarnerDevice& device) {
    const std::string drive = device.deviceName().value_or("");
    if (!isAttached(drive))
        return std::string(textForBurnErrorCode(signedCode(DRError::DeviceVanished)));
    if (device.isCheckingDisc())
        return "the drive still examines the disc.\nTry again when it is done.";
    const std::string problem = host.accessProblem(drive);
    return problem.empty() ? explained(DRError::MediaNotPresent) : problemText(drive, problem);
}

} // namespace

std::string discObstacle(const Host& host, const QuarnerDevice& device) {
    if (!device.isDiscInDevice())
        return reasonForNoDisc(host, device);
    if (!device.isCDDisc())
        return explained(DRError::WrongMedia);
    const bool isWritable =
        device.isDiscBlank() || device.isDiscErasable() || device.isDiscOverwritable();
    return isWritable ? "" : explained(DRError::MediaNotWritable);
}

} // namespace quarner::cli
