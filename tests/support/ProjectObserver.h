// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "quarner/project/DiscProject.h"

namespace quarner::testing {

/// Keeps what a project reports, and a copy of its list that only follows the row events. Fails a
/// test if two calls overlap, or if a call comes on another thread than the one that made it.
class ProjectObserver : public DiscProjectObserver {
public:
    void rowsInserted(std::size_t first, const DiscItems& items) override {
        const Call call(*this);
        ASSERT_LE(first, rows.size());
        ASSERT_FALSE(items.empty());
        rows.insert(at(first), items.begin(), items.end());
        events.push_back("inserted " + std::to_string(first) + "+" + std::to_string(items.size()));
    }
    void rowsRemoved(std::size_t first, std::size_t count) override {
        const Call call(*this);
        ASSERT_LE(first + count, rows.size());
        rows.erase(at(first), at(first + count));
        events.push_back("removed " + std::to_string(first) + "+" + std::to_string(count));
    }
    void rowsMoved(std::size_t first, std::size_t count, std::size_t to) override {
        const Call call(*this);
        ASSERT_LE(first + count, rows.size());
        ASSERT_LE(to, rows.size());
        ASSERT_TRUE(to < first || to > first + count) << first << '+' << count << " to " << to;
        const DiscItems moved(at(first), at(first + count));
        rows.erase(at(first), at(first + count));
        rows.insert(at(to > first ? to - count : to), moved.begin(), moved.end());
        events.push_back("moved " + std::to_string(first) + "+" + std::to_string(count) + " to " +
                         std::to_string(to));
    }
    void fileRefused(const std::string& path, RefusalReason reason,
                     const std::string& text) override {
        const Call call(*this);
        refused.emplace_back(path, reason, text);
    }
    void addingProgress(const std::string& name, std::size_t index, std::size_t of) override {
        const Call call(*this);
        progressOfAdding.emplace_back(name, index, of);
    }
    void addingEnded(bool isCanceled) override {
        const Call call(*this);
        events.emplace_back(isCanceled ? "adding canceled" : "adding ended");
    }
    void capacityChanged() override {
        const Call call(*this);
        ++capacityChanges;
    }
    void drivesChanged() override {
        const Call call(*this);
        ++driveChanges;
    }
    void burnProgress(const DiscBurnProgress& progress) override {
        const Call call(*this);
        burn.push_back(progress);
    }
    void burnEnded(const DiscBurnEnd& end) override {
        const Call call(*this);
        burnEnds.push_back(end);
    }

    /// The names of the copied rows.
    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const DiscItemRef& row : rows)
            names.push_back(row->displayName);
        return names;
    }

    DiscItems rows;
    std::vector<std::string> events;
    std::vector<std::tuple<std::string, RefusalReason, std::string>> refused;
    std::vector<std::tuple<std::string, std::size_t, std::size_t>> progressOfAdding;
    std::vector<DiscBurnProgress> burn;
    std::vector<DiscBurnEnd> burnEnds;
    int capacityChanges = 0;
    int driveChanges = 0;
    std::function<void()> onCall; ///< called inside each call

private:
    struct Call {
        explicit Call(ProjectObserver& observer) : _observer(observer) {
            EXPECT_EQ(std::this_thread::get_id(), observer._thread);
            EXPECT_FALSE(std::exchange(observer._isBusy, true)) << "two calls overlap";
            if (observer.onCall)
                observer.onCall();
        }
        ~Call() { _observer._isBusy = false; }
        ProjectObserver& _observer;
    };

    DiscItems::iterator at(std::size_t row) {
        return rows.begin() + static_cast<std::ptrdiff_t>(row);
    }

    const std::thread::id _thread = std::this_thread::get_id();
    bool _isBusy = false;
};

} // namespace quarner::testing
