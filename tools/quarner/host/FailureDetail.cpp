// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/host/FailureDetail.h"

#include "quarner/platform/DRKeys.h"
#include "quarner/platform/Platform.h"

namespace quarner::cli {

FailureDetail::FailureDetail() : _center(currentPlatform()->recording->currentRunLoopCenter()) {
    _center->addObserver(
        this, [this](const DRNotification& notification) { burnStatusDidChange(notification); },
        DRBurnStatusChangedNotification, nullptr);
}

FailureDetail::~FailureDetail() {
    _center->removeObserver(this, DRBurnStatusChangedNotification, nullptr);
}

void FailureDetail::burnStatusDidChange(const DRNotification& notification) {
    const Dictionary* const error =
        valueFor(notification.userInfo, DRErrorStatusKey).asDictionary();
    if (error == nullptr)
        return;
    if (const std::string* const text = valueFor(*error, DRErrorStatusErrorInfoKey).asString())
        _text = *text;
}

} // namespace quarner::cli
