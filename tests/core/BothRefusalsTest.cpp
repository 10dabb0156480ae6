// SPDX-License-Identifier: LGPL-2.1-or-later
#include <mutex>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "quarner/platform/Platform.h"
#include "tests/support/BurnerFixture.h"

namespace quarner {

// NOLINTNEXTLINE(readability-identifier-naming): GoogleTest looks for this name
void PrintTo(const FileRefusal& refusal, std::ostream* out) {
    *out << refusal.path << " " << static_cast<int>(refusal.reason) << " " << refusal.detail;
}

} // namespace quarner

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

template <typename Burner>
class BothRefusals : public BurnerTest<Burner> {
protected:
    BothRefusals() {
        this->burner->reportRefusals([this](const FileRefusal& refusal) {
            const std::lock_guard lock(_mutex);
            _refusals.push_back(refusal);
            _threads.push_back(std::this_thread::get_id());
        });
    }

    /// What is refused of these paths.
    std::vector<FileRefusal> refusals(const std::vector<std::string>& paths) {
        this->burner->addFilesInOrder(paths);
        this->finishRuns();
        const std::lock_guard lock(_mutex);
        return std::exchange(_refusals, {});
    }
    std::vector<std::thread::id> threads() {
        const std::lock_guard lock(_mutex);
        return _threads;
    }

private:
    std::mutex _mutex;
    std::vector<FileRefusal> _refusals;
    std::vector<std::thread::id> _threads;
};

TYPED_TEST_SUITE(BothRefusals, Burners, BurnerNames);

TYPED_TEST(BothRefusals, AFileThatIsMissingOrCannotBeReadIsSaidToBe) {
    this->platform.putSong("/secret.mp3", {.seconds = 10}, {.isReadable = false});
    this->platform.putFile("/folder.mp3",
                           {.problem = FileProblem{FileProblem::Kind::NotAFile, "a folder"}});
    EXPECT_THAT(this->refusals({"/none.mp3", "/none.txt"}),
                UnorderedElementsAre(FileRefusal{"/none.mp3", RefusalReason::Missing, ""},
                                     FileRefusal{"/none.txt", RefusalReason::Missing, ""}));
    EXPECT_THAT(this->refusals({"/folder.mp3"}),
                ElementsAre(FileRefusal{"/folder.mp3", RefusalReason::NotAFile, "a folder"}));
    if constexpr (TestFixture::isAudio) { // a node of scripted data needs no permission
        EXPECT_THAT(this->refusals({"/secret.mp3"}),
                    ElementsAre(FileRefusal{"/secret.mp3", RefusalReason::Unreadable,
                                            "Permission denied"}));
    }
}

TYPED_TEST(BothRefusals, OtherTypesAndProtectedFilesAreRefusedInTheCall) {
    this->platform.putFile("/a.txt");
    this->platform.putFile("/a.m4p");
    EXPECT_FALSE(this->burner->addFilesInOrder({"/a.txt", "/a.m4p"}));
    EXPECT_THAT(this->refusals({}),
                ElementsAre(FileRefusal{"/a.txt", RefusalReason::UnsupportedType, ""},
                            FileRefusal{"/a.m4p",
                                        this->isAudio ? RefusalReason::Protected
                                                      : RefusalReason::UnsupportedType,
                                        ""}));
    EXPECT_THAT(this->threads(), ::testing::Each(std::this_thread::get_id()));
}

TYPED_TEST(BothRefusals, WhatTheRunRefusesIsReportedOnItsThread) {
    this->platform.putSong("/none.mp3", {.isPlayable = false});
    this->platform.putSong("/short.mp3", {.seconds = 0.5});
    const MovieProblem damage = {MovieProblem::Kind::Damaged, "holes"};
    this->platform.putSong("/damaged.mp3", {.isPlayable = false, .problem = damage});
    const MovieProblem error = {MovieProblem::Kind::Unreadable, "Input/output error"};
    this->platform.putSong("/broken.mp3", {.isPlayable = false, .problem = error});
    EXPECT_THAT(
        this->refusals({"/none.mp3", "/short.mp3", "/damaged.mp3", "/broken.mp3"}),
        ElementsAre(
            FileRefusal{"/none.mp3", RefusalReason::NoSound, "no sound could be found in it"},
            FileRefusal{"/short.mp3", RefusalReason::TooShort, ""},
            FileRefusal{"/damaged.mp3", RefusalReason::Damaged, "holes"},
            FileRefusal{"/broken.mp3", RefusalReason::Unreadable, "Input/output error"}));
    EXPECT_THAT(this->threads(), ::testing::Each(::testing::Ne(std::this_thread::get_id())));
}

TYPED_TEST(BothRefusals, AFileOfWhichNoItemCanBeMadeIsUnreadable) {
    this->platform.putSong("/a.mp3", {.seconds = 10, .makesTrack = false}, {.makesNode = false});
    EXPECT_THAT(this->refusals({"/a.mp3"}),
                ElementsAre(FileRefusal{"/a.mp3", RefusalReason::Unreadable, ""}));
}

TYPED_TEST(BothRefusals, AFileThatTheListHasIsReportedAsTheCallerWroteIt) {
    this->putSongs({"/a.mp3"});
    this->platform.putFile("/alias.mp3", {.aliasOf = "/a.mp3"});
    this->compile({"/a.mp3"});
    EXPECT_THAT(this->refusals({"/alias.mp3"}),
                ElementsAre(FileRefusal{"/alias.mp3", RefusalReason::AlreadyInList, ""}));
    EXPECT_THAT(this->delegate.calls(), IsEmpty());
}

TYPED_TEST(BothRefusals, AnAliasIsJudgedByWhatItStandsFor) {
    this->platform.putFile("/a.txt");
    this->platform.putFile("/alias.mp3", {.aliasOf = "/a.txt"});
    EXPECT_THAT(this->refusals({"/alias.mp3"}),
                ElementsAre(FileRefusal{"/alias.mp3", RefusalReason::UnsupportedType, ""}));
}

TYPED_TEST(BothRefusals, NothingIsWorkedOutIfNobodyListens) {
    this->burner->reportRefusals(nullptr);
    EXPECT_THAT(this->refusals({"/none.mp3", "/none.txt"}), IsEmpty());
    EXPECT_EQ(this->platform.calls(ServiceCall::FileProblem), 0U);
    this->platform.putSong("/none.mp3", {.isPlayable = false});
    this->refusals({"/none.mp3"});
    EXPECT_EQ(this->platform.calls(ServiceCall::SyncMain), 1U + (this->isAudio ? 0U : 1U));
}

} // namespace
} // namespace quarner::testing
