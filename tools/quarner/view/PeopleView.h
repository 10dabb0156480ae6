// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tools/quarner/host/Console.h"
#include "tools/quarner/view/View.h"

namespace quarner::cli {

/// What is being done, in words, and how far it has come.
struct BurnStep {
    /// The stages of a burn. Each has a progress of its own, or none.
    enum class Stage { Preparing, Writing, Closing, Finishing, Verifying };

    Stage stage = Stage::Preparing;
    std::int64_t track = 0; ///< from 1, while writing
    std::int64_t of = 0;
    double fraction = 0;
    std::optional<std::uint64_t> lefttime = 0; ///< nothing where it is never told

    bool hasProgress() const { return stage == Stage::Writing || stage == Stage::Verifying; }
    std::string text() const; ///< "Writing track 2 of 9"
};

/// What the two views for people have in common.
class PeopleView : public View {
public:
    /// The console must outlive the view.
    explicit PeopleView(Console& console) : _console(console) {}

    void addFilesProgressDidCanceled() override;

    void burnProgressDidChanaged(double fraction, std::uint64_t lefttime) override;
    void burnProgressIsPreparing() override;
    void burnProgressIsOpeningTrack(std::int64_t track, std::int64_t of) override;
    void burnProgressIsWriteingTrack(std::int64_t track, std::int64_t of) override;
    void burnProgressDidCloseTrack(std::int64_t track, std::int64_t of) override;
    void burnProgressDidCloseSession() override;
    void burnProgressIsFinishing() override;
    void burnProgressIsVerifying() override;

    void compilationIsComplete(const Compilation& compilation) override;
    void didEnd(ExitStatus status, const std::string& outcome) override;

protected:
    /// Shows how far the burn has come. Called for each state that the drive reports.
    virtual void show(const BurnStep& step) = 0;

    Console& console() { return _console; }

private:
    void keepTimeLeft(std::uint64_t seconds);
    void enter(BurnStep::Stage stage, std::int64_t track = 0, std::int64_t of = 0);

    Console& _console;
    BurnStep _step;
    bool _hasNewProgress = false;
};

/// For a file or a pipe: a line for each file that is added, for each step of the burn, and for
/// every tenth of its progress.
class PlainView : public PeopleView {
public:
    using PeopleView::PeopleView;

    void addFilesProgressDidChanged(const std::string& displayName, std::int64_t index,
                                    std::uint64_t of) override;

protected:
    void show(const BurnStep& step) override;

private:
    std::string _lastStep;
    int _lastTenth = 0;
};

/// For a terminal: the file being added, and later the progress bar, in one line that is drawn
/// over and over.
class TerminalView : public PeopleView {
public:
    using PeopleView::PeopleView;

    void addFilesProgressDidChanged(const std::string& displayName, std::int64_t index,
                                    std::uint64_t of) override;

protected:
    void show(const BurnStep& step) override;
};

} // namespace quarner::cli
