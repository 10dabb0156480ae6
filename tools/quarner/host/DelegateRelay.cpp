// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/host/DelegateRelay.h"

#include <utility>

namespace quarner::cli {

DelegateRelay::DelegateRelay(EventLoop& loop, std::vector<QuarnDelegate*> receivers)
    : _loop(loop), _receivers(std::move(receivers)) {}

template <typename Operation, typename... Arguments>
void DelegateRelay::pass(Operation operation, const Arguments&... arguments) {
    _loop.post([this, operation, arguments...] {
        for (QuarnDelegate* const receiver : _receivers)
            (receiver->*operation)(arguments...);
    });
}

void DelegateRelay::allFilesDidCleared() { pass(&QuarnDelegate::allFilesDidCleared); }

void DelegateRelay::burnItemDidDelete(const BurnItemRef& item) {
    pass(&QuarnDelegate::burnItemDidDelete, item);
}

void DelegateRelay::burnItemsDidDelete(const BurnItemList& items) {
    pass(&QuarnDelegate::burnItemsDidDelete, items);
}

void DelegateRelay::burnItemDidSorted() { pass(&QuarnDelegate::burnItemDidSorted); }

void DelegateRelay::addFilesProgressDidStarted() {
    pass(&QuarnDelegate::addFilesProgressDidStarted);
}

void DelegateRelay::addFilesProgressDidChanged(const std::string& displayName, std::int64_t index,
                                               std::uint64_t of) {
    pass(&QuarnDelegate::addFilesProgressDidChanged, displayName, index, of);
}

void DelegateRelay::fileDidAdded(const Dictionary& item) {
    pass(&QuarnDelegate::fileDidAdded, item);
}

void DelegateRelay::addFilesProgressDidCanceled() {
    pass(&QuarnDelegate::addFilesProgressDidCanceled);
}

void DelegateRelay::addFilesProgressDidEnd(const EndReport& report) {
    pass(&QuarnDelegate::addFilesProgressDidEnd, report);
}

void DelegateRelay::burnProgressDidStarted() { pass(&QuarnDelegate::burnProgressDidStarted); }

void DelegateRelay::burnProgressDidError(const BurnError& error) {
    pass(&QuarnDelegate::burnProgressDidError, error);
}

void DelegateRelay::burnProgressDidChanaged(double fraction, std::uint64_t lefttime) {
    pass(&QuarnDelegate::burnProgressDidChanaged, fraction, lefttime);
}

void DelegateRelay::burnProgressIsPreparing() { pass(&QuarnDelegate::burnProgressIsPreparing); }

void DelegateRelay::burnProgressIsOpeningTrack(std::int64_t track, std::int64_t of) {
    pass(&QuarnDelegate::burnProgressIsOpeningTrack, track, of);
}

void DelegateRelay::burnProgressIsWriteingTrack(std::int64_t track, std::int64_t of) {
    pass(&QuarnDelegate::burnProgressIsWriteingTrack, track, of);
}

void DelegateRelay::burnProgressDidCloseTrack(std::int64_t track, std::int64_t of) {
    pass(&QuarnDelegate::burnProgressDidCloseTrack, track, of);
}

void DelegateRelay::burnProgressDidCloseSession() {
    pass(&QuarnDelegate::burnProgressDidCloseSession);
}

void DelegateRelay::burnProgressIsFinishing() { pass(&QuarnDelegate::burnProgressIsFinishing); }

void DelegateRelay::burnProgressIsVerifying() { pass(&QuarnDelegate::burnProgressIsVerifying); }

void DelegateRelay::burnProgressDidDone() { pass(&QuarnDelegate::burnProgressDidDone); }

void DelegateRelay::burnProgressDidCanceled() { pass(&QuarnDelegate::burnProgressDidCanceled); }

} // namespace quarner::cli
