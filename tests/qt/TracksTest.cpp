// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <array>
#include <random>

#include "tests/support/AudioFixtures.h"
#include "tests/support/Program.h"
#include "tests/support/TemporaryFolder.h"

#define main mainOfTheExample // which is one source file
#include "examples/qt/main.cpp"
#undef main

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using Names = std::vector<std::string>;

/// Qt without a display. Ended before `main` returns, as Qt demands.
class QtEnvironment : public ::testing::Environment {
public:
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("LC_ALL", "C.UTF-8");
        _application = std::make_unique<QApplication>(_count, _arguments.data());
    }
    void TearDown() override { _application.reset(); }

private:
    int _count = 1;
    std::string _program = "qt_tests";
    std::array<char*, 2> _arguments = {_program.data(), nullptr};
    std::unique_ptr<QApplication> _application;
};

const auto* const environment = ::testing::AddGlobalTestEnvironment(new QtEnvironment);

/// A program on Qt's loop.
class QtExample : public ::testing::Test {
protected:
    QtExample() {
        installDesktopPlatform({.postToMain = [](std::function<void()> work) {
            QMetaObject::invokeMethod(qApp, std::move(work), Qt::QueuedConnection);
        }});
    }
    ~QtExample() override { uninstallDesktopPlatform(); }

    static bool runUntil(const std::function<bool()>& condition) {
        QDeadlineTimer end(std::chrono::minutes(1));
        while (!condition() && !end.hasExpired())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
        return condition();
    }
    std::string put(const std::string& name) const {
        const AudioRecipe recipe{
            .name = "short.mp3", .encoder = {"-c:a", "libmp3lame"}, .samples = 60000};
        std::filesystem::copy_file(audioFixture(recipe), folder.file(name));
        return folder.file(name);
    }
    /// Files of these names.
    std::vector<std::string> putAll(const Names& names) const {
        std::vector<std::string> paths;
        for (const std::string& name : names)
            paths.push_back(put(name));
        return paths;
    }

    const TemporaryFolder folder;
    std::mt19937 random{3}; // NOLINT(cert-msc51-cpp): the same edits in every run
};

/// The list of the example, which ends the test if it breaks a rule of Qt's models.
class QtExampleList : public QtExample {
protected:
    QtExampleList() { project.addObserver(tracks); }

    void add(const Names& names) {
        project.add(putAll(names));
        ASSERT_TRUE(runUntil([&] { return !project.isAdding(); }));
    }
    std::string cell(int row, Tracks::Column column) const {
        return tracks->index(row, column).data().toString().toStdString();
    }
    Names rows() const {
        Names names;
        for (int row = 0; row < tracks->rowCount(); ++row)
            names.push_back(cell(row, Tracks::Title));
        return names;
    }
    /// What the view takes when the user begins to drag these rows.
    std::unique_ptr<QMimeData> drag(const std::vector<int>& rowNumbers) const {
        QModelIndexList indexes;
        for (const int row : rowNumbers)
            for (int column = 0; column < tracks->columnCount(); ++column)
                indexes.append(tracks->index(row, column));
        return std::unique_ptr<QMimeData>(tracks->mimeData(indexes));
    }
    bool drop(const QMimeData& data, int row, const QModelIndex& parent = {}) const {
        return tracks->canDropMimeData(&data, Qt::MoveAction, row, 0, parent) &&
               tracks->dropMimeData(&data, Qt::MoveAction, row, 0, parent);
    }
    void editAtRandom(const std::vector<std::string>& paths) {
        const std::size_t size = project.items()->size();
        const std::size_t row = random() % (size + 1);
        switch (random() % 4) {
        case 0:
            return project.add({paths[random() % paths.size()], paths[random() % paths.size()]},
                               row);
        case 1:
            return project.remove({row, row + random() % 3});
        default:
            return project.move({row, row / 2}, random() % (size + 1));
        }
    }

    DiscProject project{DiscProject::Kind::Audio};
    const std::shared_ptr<Tracks> tracks = std::make_shared<Tracks>(project);
    const QAbstractItemModelTester tester{tracks.get(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(QtExampleList, ShowsWhatTheTagsSayAndOtherwiseTheName) {
    runProgram({"ffmpeg", "-v", "error", "-i", put("plain.mp3"), "-c", "copy", "-metadata",
                "title=Prélude", "-metadata", "artist=Somebody", folder.file("tagged.mp3")});
    project.add({folder.file("tagged.mp3"), folder.file("plain.mp3")});
    ASSERT_TRUE(runUntil([&] { return !project.isAdding(); }));
    EXPECT_THAT(rows(), ElementsAre("Prélude", "plain.mp3"));
    EXPECT_EQ(cell(0, Tracks::Artist), "Somebody");
    EXPECT_EQ(cell(1, Tracks::Artist), "");
    EXPECT_EQ(cell(1, Tracks::Duration), "00:00:01");
}

TEST_F(QtExampleList, StaysInStepWhileTheListIsEditedAndFilesAreAdded) {
    const std::vector<std::string> paths = putAll({"a.mp3", "b.mp3", "c.mp3", "d.mp3", "e.mp3"});
    for (int edit = 0; edit < 500; ++edit) {
        editAtRandom(paths);
        if (random() % 3 == 0)
            QCoreApplication::processEvents();
    }
    ASSERT_TRUE(runUntil([&] { return !project.isAdding(); }));
    Names names;
    for (const DiscItemRef& item : *project.items())
        names.push_back(item->displayName);
    EXPECT_EQ(rows(), names);
    EXPECT_FALSE(names.empty());
}

TEST_F(QtExampleList, FilesAndPlaylistsAreDroppedBetweenRows) {
    add({"first.mp3", "last.mp3"});
    putAll({"1.mp3", "2.mp3"});
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(QString::fromStdString(
                       folder.write("list.m3u", "2.mp3\nmissing.mp3\n1.mp3\n"))),
                   QUrl::fromLocalFile(QString::fromStdString(put("3.mp3")))});
    ASSERT_TRUE(drop(files, 1));
    ASSERT_TRUE(runUntil([&] { return !project.isAdding(); }));
    EXPECT_THAT(rows(), ElementsAre("first.mp3", "2.mp3", "1.mp3", "3.mp3", "last.mp3"));
}

TEST_F(QtExampleList, ADropBelowTheRowsAddsAtTheEnd) {
    add({"first.mp3"});
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(QString::fromStdString(put("last.mp3")))});
    ASSERT_TRUE(drop(files, -1));
    ASSERT_TRUE(runUntil([&] { return !project.isAdding(); }));
    EXPECT_THAT(rows(), ElementsAre("first.mp3", "last.mp3"));
}

TEST_F(QtExampleList, DraggedRowsStayTheSameRowsUntilTheyAreDropped) {
    add({"a.mp3", "b.mp3", "c.mp3", "d.mp3"});
    const auto dragged = drag({1, 3});
    project.remove({0, 3});
    ASSERT_TRUE(drop(*dragged, 2));
    EXPECT_THAT(rows(), ElementsAre("c.mp3", "b.mp3"));
}

TEST_F(QtExampleList, TakesNothingElseAndNothingOnARow) {
    add({"a.mp3"});
    QMimeData words;
    words.setText("words");
    EXPECT_FALSE(drop(words, 0));
    EXPECT_FALSE(tracks->flags(tracks->index(0, 0)).testFlag(Qt::ItemIsDropEnabled));
    EXPECT_TRUE(tracks->flags({}).testFlag(Qt::ItemIsDropEnabled));
}

TEST_F(QtExampleList, AnUnreadablePlaylistIsRefused) {
    struct Refusals : DiscProjectObserver {
        void fileRefused(const std::string& path, RefusalReason, const std::string&) override {
            paths.push_back(path);
        }
        Names paths;
    };
    const auto refusals = std::make_shared<Refusals>();
    project.addObserver(refusals);
    project.add(pathsOf({QUrl::fromLocalFile("/none.m3u"), QUrl("http://host/a.mp3")}));
    ASSERT_TRUE(runUntil([&] { return !project.isAdding(); }));
    EXPECT_THAT(refusals->paths, ElementsAre("/none.m3u", "http://host/a.mp3"));
}

TEST_F(QtExample, AWindowIsClosedAtAnyMomentOfAddingAndBurning) {
    const std::vector<std::string> paths = putAll({"a.mp3", "b.mp3", "c.mp3"});
    for (int i = 0; i < 40; ++i) {
        const std::string image = addImageDrive({.path = folder.file("mix.cue")});
        auto window = std::make_shared<Window>();
        const auto atOnce = std::make_shared<AtOnce>(window->project, image);
        window->project.addObserver(window);
        window->project.addObserver(atOnce);
        window->show();
        window->project.add(paths);
        for (auto turns = random() % 40; turns > 0; --turns)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 1);
        window.reset();
        QCoreApplication::processEvents();
        removeImageDrive(image);
    }
}

} // namespace
} // namespace quarner::testing
