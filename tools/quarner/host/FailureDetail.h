// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <string>

#include "quarner/platform/DRNotificationCenter.h"

namespace quarner::cli {

/// Listens to the status of burns for what a delegate is not told: what exactly failed. Make and
/// destroy it on the main thread, and make it before the burn, so that it receives the failure
/// before the delegate does.
class FailureDetail {
public:
    FailureDetail();
    ~FailureDetail();
    FailureDetail(const FailureDetail&) = delete;
    FailureDetail& operator=(const FailureDetail&) = delete;

    /// The service's own text on the failure, naming the file to blame; empty if there is none.
    const std::string& text() const { return _text; }

private:
    void burnStatusDidChange(const DRNotification& notification);

    const std::shared_ptr<DRNotificationCenter> _center;
    std::string _text;
};

} // namespace quarner::cli
