// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <vector>

#include "quarner/front/QuarnDelegate.h"
#include "tools/quarner/host/EventLoop.h"

namespace quarner::cli {

/// Takes every callback of a burner, on whichever thread it comes, and forwards all of them in the
/// same order to other delegates on the main loop. Neither the loop nor the receivers
/// are owned; all of them, and the relay, must outlive the last turn of the loop.
class DelegateRelay : public QuarnDelegate {
public:
    DelegateRelay(EventLoop& loop, std::vector<QuarnDelegate*> receivers);

    void allFilesDidCleared() override;
    void burnItemDidDelete(const BurnItemRef& item) override;
    void burnItemsDidDelete(const BurnItemList& items) override;
    void burnItemDidSorted() override;

    void addFilesProgressDidStarted() override;
    void addFilesProgressDidChanged(const std::string& displayName, std::int64_t index,
                                    std::uint64_t of) override;
    void fileDidAdded(const Dictionary& item) override;
    void addFilesProgressDidCanceled() override;
    void addFilesProgressDidEnd(const EndReport& report) override;

    void burnProgressDidStarted() override;
    void burnProgressDidError(const BurnError& error) override;
    void burnProgressDidChanaged(double fraction, std::uint64_t lefttime) override;
    void burnProgressIsPreparing() override;
    void burnProgressIsOpeningTrack(std::int64_t track, std::int64_t of) override;
    void burnProgressIsWriteingTrack(std::int64_t track, std::int64_t of) override;
    void burnProgressDidCloseTrack(std::int64_t track, std::int64_t of) override;
    void burnProgressDidCloseSession() override;
    void burnProgressIsFinishing() override;
    void burnProgressIsVerifying() override;
    void burnProgressDidDone() override;
    void burnProgressDidCanceled() override;

private:
    template <typename Operation, typename... Arguments>
    void pass(Operation operation, const Arguments&... arguments);

    EventLoop& _loop;
    const std::vector<QuarnDelegate*> _receivers;
};

} // namespace quarner::cli
