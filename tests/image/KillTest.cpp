// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>

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

using testing::ElementsAre;

/// Kills the process when it is about to change the disk for the so-manieth time.
class KillingFiles : public ForwardingFiles {
public:
    KillingFiles(int calls, bool canLink) : _callsLeft(calls), _canLink(canLink) {}

    std::unique_ptr<ImageLock> lock(const std::string& path) override {
        count();
        return ForwardingFiles::lock(path);
    }
    std::unique_ptr<ImageFile> create(const std::string& path) override {
        count();
        return std::make_unique<File>(*this, ForwardingFiles::create(path));
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

class KilledBurn : public ImageTest {
protected:
    /// Burns in a process of its own, which `kill` may end; answers whether it came to its end.
    bool burnInChild(const DRLayout& layout, const std::shared_ptr<FileSystem>& files,
                     const std::function<void(pid_t)>& kill = {}) {
        const pid_t child = fork();
        if (child == 0)
            burnAndExit(layout, files);
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

    [[noreturn]] void burnAndExit(const DRLayout& layout,
                                  const std::shared_ptr<FileSystem>& files) {
        _exit(burnHere(layout, files) ? 0 : 1);
    }

    bool burnHere(const DRLayout& layout, const std::shared_ptr<FileSystem>& files) {
        const auto loops = std::make_shared<StepLoops>();
        ImageRecorder recorder(loops, stage->sound, {.files = files});
        const auto burn = recorder.burnForDevice(recorder.add({.path = stage->cue()}));
        BurnLog log(recorder.currentRunLoopCenter(), burn.get());
        burn->writeLayout(layout);
        loops->runUntil([&] { return log.isOver(); });
        return log.isDone();
    }

    /// All burns are made in other processes: one that has had threads is not forked again.
    void burnWhole(const DRLayout& layout) { ASSERT_TRUE(burnInChild(layout, posixFileSystem())); }

    /// The image is the old one, or the new one, or (without an old one) not there at all.
    void expectOldOrNew(const DRLayout& old, const DRLayout& fresh) {
        if (old.empty() && !std::filesystem::exists(stage->cue()))
            return;
        const std::vector<std::string> tracks = stage->tracksOnDisc();
        EXPECT_TRUE(tracks == tracksOf(fresh) || (!old.empty() && tracks == tracksOf(old)));
    }

    void expectNextBurnToClearUp(std::initializer_list<const char*> names) {
        const DRLayout layout = makeLayout({1000});
        burnWhole(layout);
        EXPECT_TRUE(stage->tracksOnDisc() == tracksOf(layout));
        EXPECT_EQ(filesInFolder(), std::vector<std::string>(names.begin(), names.end()));
        for (const auto& track : layout)
            std::filesystem::remove(track->path);
    }

    /// Kills a burn before each of its steps in turn, from a folder with or without an old image.
    void killAtEveryStep(const DRLayout& old, bool canLink) {
        const DRLayout fresh = makeLayout({2000, 1000});
        bool isDone = false;
        for (int step = 1; !isDone; ++step) {
            SCOPED_TRACE("killed before step " + std::to_string(step));
            for (const std::string& name : filesInFolder())
                std::filesystem::remove(stage->folder.file(name));
            if (!old.empty())
                burnWhole(old);
            isDone = burnInChild(fresh, std::make_shared<KillingFiles>(step, canLink));
            expectOldOrNew(old, fresh);
            expectNextBurnToClearUp({"mix.bin", "mix.cue"});
            if (HasFailure())
                return;
            ASSERT_LT(step, 200);
        }
    }
};

TEST_F(KilledBurn, AtAnyStepLeavesNoHalfImage) { killAtEveryStep({}, true); }

TEST_F(KilledBurn, AtAnyStepOfAReplacementLeavesTheOldImageOrTheNew) {
    killAtEveryStep(makeLayout({588 * 301, 588 * 302}), true);
}

TEST_F(KilledBurn, AtAnyStepOfAReplacementWithoutSecondNamesLeavesTheOldImageOrTheNew) {
    killAtEveryStep(makeLayout({588 * 301, 588 * 302}), false);
}

TEST_F(KilledBurn, AtARandomMomentLeavesTheOldImageOrTheNew) {
    const DRLayout old = makeLayout({1000, 588 * 400});
    burnWhole(old);
    const DRLayout fresh = makeLayout({588 * 1500, 588 * 1000});
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
    EXPECT_THAT(filesInFolder(), ElementsAre("mix.bin", "mix.cue"));
}

} // namespace
} // namespace quarner
