// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "tools/quarner/text/JsonLine.h"
#include "tools/quarner/view/View.h"

namespace quarner::cli {

/// For programs: one JSON object a line for each call of the burner's delegate, under the name of
/// the operation, for what the project reports beside that, and a last one for the exit status; see
/// docs/json.md. What is meant for people goes to the error stream.
class JsonView : public View {
public:
    using View::View;

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

    void fileRefused(const std::string& path, RefusalReason reason,
                     const std::string& text) override;
    void burnProgress(const DiscBurnProgress& progress) override;
    void burnEnded(const DiscBurnEnd& end) override;

    void compilationIsComplete(const Compilation& compilation) override;
    void waitsFor(const DiscProblem& problem) override;
    void didEnd(ExitStatus status, const std::string& outcome) override;

private:
    void tell(const char* event, const JsonArguments& arguments = {});
    void tellTrack(const char* event, std::int64_t track, std::int64_t of);
};

} // namespace quarner::cli
