// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "quarner/quarner.h"

namespace quarner::testing {

/// A delegate that heeds nothing.
class IdleDelegate : public QuarnDelegate {};

/// A delegate that records every call as a text, as in "burnProgressDidChanaged(0.5, 500)".
/// Arguments that are too long for the text are kept separately. Any thread.
class RecordingDelegate : public QuarnDelegate {
public:
    struct Call {
        std::string text;
        std::thread::id thread;
    };

    std::vector<std::string> calls() const {
        const std::lock_guard lock(_mutex);
        std::vector<std::string> texts;
        for (const Call& call : _calls)
            texts.push_back(call.text);
        return texts;
    }
    std::vector<Call> callsWithThreads() const {
        const std::lock_guard lock(_mutex);
        return _calls;
    }
    std::size_t count(const std::string& text) const {
        const std::lock_guard lock(_mutex);
        std::size_t number = 0;
        for (const Call& call : _calls)
            number += call.text == text ? 1U : 0U;
        return number;
    }
    void forget() {
        const std::lock_guard lock(_mutex);
        _calls.clear();
    }

    /// Called after each call was recorded, on the same thread, with its text.
    std::function<void(const std::string&)> whenCalled;

    std::vector<Dictionary> added() const { return copyOf(_added); }
    std::vector<EndReport> reports() const { return copyOf(_reports); }
    std::vector<BurnError> errors() const { return copyOf(_errors); }
    std::vector<BurnItemRef> deleted() const { return copyOf(_deleted); }
    std::vector<BurnItemList> deletedLists() const { return copyOf(_deletedLists); }

    void allFilesDidCleared() override { keep("allFilesDidCleared"); }
    void burnItemDidDelete(const BurnItemRef& item) override {
        keepIn(_deleted, item);
        keep("burnItemDidDelete");
    }
    void burnItemsDidDelete(const BurnItemList& items) override {
        keepIn(_deletedLists, items);
        keep(text("burnItemsDidDelete", items.size()));
    }
    void burnItemDidSorted() override { keep("burnItemDidSorted"); }

    void addFilesProgressDidStarted() override { keep("addFilesProgressDidStarted"); }
    void addFilesProgressDidChanged(const std::string& displayName, std::int64_t index,
                                    std::uint64_t of) override {
        keep(text("addFilesProgressDidChanged", displayName, index, of));
    }
    void fileDidAdded(const Dictionary& item) override {
        keepIn(_added, item);
        const std::string* path = valueFor(item, kQuarnItemFilePathKey).asString();
        keep(text("fileDidAdded", path == nullptr ? "" : *path));
    }
    void addFilesProgressDidCanceled() override { keep("addFilesProgressDidCanceled"); }
    void addFilesProgressDidEnd(const EndReport& report) override {
        keepIn(_reports, report);
        keep("addFilesProgressDidEnd");
    }

    void burnProgressDidStarted() override { keep("burnProgressDidStarted"); }
    void burnProgressDidError(const BurnError& error) override {
        keepIn(_errors, error);
        keep(text("burnProgressDidError", error.domain, error.code));
    }
    void burnProgressDidChanaged(double fraction, std::uint64_t lefttime) override {
        keep(text("burnProgressDidChanaged", fraction, lefttime));
    }
    void burnProgressIsPreparing() override { keep("burnProgressIsPreparing"); }
    void burnProgressIsOpeningTrack(std::int64_t track, std::int64_t of) override {
        keep(text("burnProgressIsOpeningTrack", track, of));
    }
    void burnProgressIsWriteingTrack(std::int64_t track, std::int64_t of) override {
        keep(text("burnProgressIsWriteingTrack", track, of));
    }
    void burnProgressDidCloseTrack(std::int64_t track, std::int64_t of) override {
        keep(text("burnProgressDidCloseTrack", track, of));
    }
    void burnProgressDidCloseSession() override { keep("burnProgressDidCloseSession"); }
    void burnProgressIsFinishing() override { keep("burnProgressIsFinishing"); }
    void burnProgressIsVerifying() override { keep("burnProgressIsVerifying"); }
    void burnProgressDidDone() override { keep("burnProgressDidDone"); }
    void burnProgressDidCanceled() override { keep("burnProgressDidCanceled"); }

private:
    template <typename... Arguments>
    static std::string text(const char* name, const Arguments&... arguments) {
        std::ostringstream text;
        const char* separator = "";
        text << name << '(';
        ((text << separator << arguments, separator = ", "), ...);
        text << ')';
        return text.str();
    }
    void keep(const std::string& text) {
        std::function<void(const std::string&)> reaction;
        {
            // Another thread that sees the call may set another reaction.
            const std::lock_guard lock(_mutex);
            _calls.push_back({text, std::this_thread::get_id()});
            reaction = whenCalled;
        }
        if (reaction)
            reaction(text);
    }
    template <typename Kept>
    void keepIn(std::vector<Kept>& list, const Kept& kept) {
        const std::lock_guard lock(_mutex);
        list.push_back(kept);
    }
    template <typename Kept>
    std::vector<Kept> copyOf(const std::vector<Kept>& list) const {
        const std::lock_guard lock(_mutex);
        return list;
    }

    mutable std::mutex _mutex;
    std::vector<Call> _calls;
    std::vector<Dictionary> _added;
    std::vector<EndReport> _reports;
    std::vector<BurnError> _errors;
    std::vector<BurnItemRef> _deleted;
    std::vector<BurnItemList> _deletedLists;
};

} // namespace quarner::testing
