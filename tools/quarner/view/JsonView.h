// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "tools/quarner/host/Console.h"
#include "tools/quarner/text/JsonLine.h"
#include "tools/quarner/view/View.h"

namespace quarner::cli {

/// For programs: one JSON object a line for everything that a burner tells, under the name of the
/// delegate's operation, then one for the compilation, and a last one for the exit status. What is
/// meant for people goes to the error stream.
class JsonView : public View {
public:
    /// The console must outlive the view.
    explicit JsonView(Console& console) : _console(console) {}

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

    void compilationIsComplete(const Compilation& compilation) override;
    void didEnd(ExitStatus status, const std::string& outcome) override;

private:
    void tell(const char* event, const JsonArguments& arguments = {});
    void tellTrack(const char* event, std::int64_t track, std::int64_t of);

    Console& _console;
};

} // namespace quarner::cli
