// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <random>
#include <thread>

#include "tests/image/ForwardingFiles.h"
#include "tests/image/ImageTest.h"

namespace quarner {
namespace {

/// Kills the process before its n-th change of the disk.
class KillingFiles : public ForwardingFiles {
public:
    KillingFiles(int calls, bool canLink) : _callsLeft(calls), _canLink(canLink) {}

    std::unique_ptr<ImageLock> lock(const std::string& path, const StopSignal& stop) override {
        count();
        return ForwardingFiles::lock(path, stop);
    }
    std::unique_ptr<ImageFile> create(const std::string& path,
                                      const std::string& replaced) override {
        count();
        return std::make_unique<File>(*this, ForwardingFiles::create(path, replaced));
    }
    void rename(const std::string& from, const std::string& to) override {
        count();
        ForwardingFiles::rename(from, to);
    }
    bool link(const std::string& existing, const std::string& name) override {
        count();
        return _canLink && ForwardingFiles::link(existing, name);
    }
    void remove(const std::string& path) override {
        count();
        ForwardingFiles::remove(path);
    }
    void syncFolder(const std::string& folder) override {
        count();
        ForwardingFiles::syncFolder(folder);
    }

private:
    class File : public ForwardingFile {
    public:
        File(KillingFiles& files, std::unique_ptr<ImageFile> file)
            : ForwardingFile(std::move(file)), _files(files) {}
        void append(std::span<const std::byte> bytes) override {
            _files.count();
            ForwardingFile::append(bytes);
        }
        void sync() override {
            _files.count();
            ForwardingFile::sync();
        }

    private:
        KillingFiles& _files;
    };

    void count() {
        if (--_callsLeft == 0)
            raise(SIGKILL);
    }

    int _callsLeft;
    const bool _canLink;
};

class KilledBurn : public AnyImageTest {
protected:
    /// Burns in a child process, which `kill` may end. Returns whether it ended normally.
    bool burnInChild(const Paths& paths, const std::shared_ptr<FileSystem>& files,
                     const std::function<void(pid_t)>& kill = {}) {
        const pid_t child = fork();
        if (child == 0)
            burnAndExit(paths, files);
        if (kill)
            kill(child);
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        if (WIFEXITED(status)) {
            EXPECT_EQ(WEXITSTATUS(status), 0) << "the burn in the child failed";
            return true;
        }
        EXPECT_EQ(WTERMSIG(status), SIGKILL);
        return false;
    }

    [[noreturn]] void burnAndExit(const Paths& paths, const std::shared_ptr<FileSystem>& files) {
        const bool isDone = burnThrough(files, paths).isDone;
        stage->shutDown(); // joins the thread of the burn
        _exit(isDone ? 0 : 1);
    }

    /// All burns run in child processes: a process that has had threads must not fork again.
    void burnWhole(const Paths& paths) { ASSERT_TRUE(burnInChild(paths, posixFileSystem())); }

    /// The image is the old one or the new one, or does not exist if there was no old one.
    void expectOldOrNew(const Paths& old, const Paths& fresh) {
        if (old.empty() && !std::filesystem::exists(stage->image()))
            return;
        EXPECT_TRUE(imageHolds(fresh) || (!old.empty() && imageHolds(old)));
    }

    void expectNextBurnToClearUp() {
        const Paths paths = makeSources({1000});
        burnWhole(paths);
        EXPECT_TRUE(imageHolds(paths));
        EXPECT_EQ(filesInFolder(), stage->filesOfImage());
        for (const std::string& path : paths)
            std::filesystem::remove(path);
    }

    /// Kills a burn before each of its steps in turn, in a folder with or without an old image.
    void killAtEveryStep(const Paths& old, bool canLink) {
        const Paths fresh = makeSources({2000, 1000});
        bool isDone = false;
        for (int step = 1; !isDone; ++step) {
            SCOPED_TRACE("killed before step " + std::to_string(step));
            for (const std::string& name : filesInFolder())
                std::filesystem::remove(stage->folder.file(name));
            if (!old.empty())
                burnWhole(old);
            isDone = burnInChild(fresh, std::make_shared<KillingFiles>(step, canLink));
            expectOldOrNew(old, fresh);
            expectNextBurnToClearUp();
            if (HasFailure())
                return;
            ASSERT_LT(step, 200);
        }
    }
};

TEST_P(KilledBurn, AtAnyStepLeavesNoHalfImage) { killAtEveryStep({}, true); }

TEST_P(KilledBurn, AtAnyStepOfAReplacementLeavesTheOldImageOrTheNew) {
    killAtEveryStep(makeSources({588 * 301, 588 * 302}), true);
}

TEST_P(KilledBurn, AtARandomMomentLeavesTheOldImageOrTheNew) {
    const Paths old = makeSources({1000, 588 * 400});
    burnWhole(old);
    const Paths fresh = makeSources({588 * 1500, 588 * 1000});
    std::minstd_rand random(std::random_device{}());
    for (int i = 0; i < 8; ++i) {
        const std::chrono::microseconds moment(random() % 60'000);
        SCOPED_TRACE("killed after " + std::to_string(moment.count()) + " µs");
        burnInChild(fresh, posixFileSystem(), [&](pid_t child) {
            std::this_thread::sleep_for(moment);
            kill(child, SIGKILL);
        });
        expectOldOrNew(old, fresh);
    }
    burnWhole(fresh);
    EXPECT_EQ(filesInFolder(), stage->filesOfImage());
}

INSTANTIATE_IMAGE_SUITE(KilledBurn);

/// On a file system without hard links, which matters for a BIN file.
class KilledBurnWithoutSecondNames : public KilledBurn {};

TEST_P(KilledBurnWithoutSecondNames, AtAnyStepOfAReplacementLeavesTheOldImageOrTheNew) {
    killAtEveryStep(makeSources({588 * 301, 588 * 302}), false);
}

INSTANTIATE_TEST_SUITE_P(, KilledBurnWithoutSecondNames, testing::Values(cueFormat()),
                         [](const auto& tested) { return tested.param.name; });

} // namespace
} // namespace quarner
