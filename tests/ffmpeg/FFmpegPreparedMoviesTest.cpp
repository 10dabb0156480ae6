// SPDX-License-Identifier: LGPL-2.1-or-later
#include <filesystem>

#include "tests/ffmpeg/Measuring.h"
#include "tests/support/AudioFixtures.h"

namespace quarner::testing {
namespace {

/// The media service as a run that adds files uses it.
class FFmpegPreparedMovies : public Measuring {
protected:
    void prepare(const std::string& path) const {
        EXPECT_TRUE(media->prepareMovie(path, [] { return true; }));
    }

    std::int64_t ticks(const std::string& path) const {
        const auto movie = media->movieWithFile(path);
        return movie ? movie->duration().value : 0;
    }

    /// Why a file with this content is refused.
    std::string problemOf(const std::string& content) const {
        open(content);
        return media->problemWithMovie(refused);
    }
    std::optional<MovieProblem::Kind> kindOf(const std::string& content) const {
        open(content);
        const std::optional<MovieProblem> problem = media->movieProblem(refused);
        return problem ? std::optional(problem->kind) : std::nullopt;
    }
    void open(const std::string& content) const {
        folder.write("refused.mp3", content);
        prepare(refused);
        media->movieWithFile(refused);
    }

    const std::shared_ptr<MediaService> media = makeFFmpegMediaService(service);
    const std::string refused = folder.file("refused.mp3");
    const std::string song = contentOf(audioFixture(mp3Recipe()));
};

TEST_F(FFmpegPreparedMovies, AFileThatChangesAfterItWasPreparedIsNotMeasuredAgainForItsMovie) {
    const std::string path = folder.write("growing.mp3", song);
    prepare(path);
    folder.write("growing.mp3", "it has become something else");
    EXPECT_EQ(ticks(path), 441441);
    EXPECT_EQ(ticks(path), 0) << "what was prepared counts for one movie";
}

TEST_F(FFmpegPreparedMovies, EachOfTwoRunsThatPrepareTheSameFileGetsItsMovie) {
    const std::string path = folder.write("twice.mp3", song);
    prepare(path);
    prepare(path);
    std::filesystem::remove(path);
    EXPECT_EQ(ticks(path), 441441);
    EXPECT_EQ(ticks(path), 441441);
    EXPECT_EQ(ticks(path), 0);
}

TEST_F(FFmpegPreparedMovies, NothingIsKeptOfAFileWhosePreparationWasEnded) {
    const std::string path = folder.write("long.mp3", song);
    EXPECT_FALSE(media->prepareMovie(path, [] { return false; }));
    EXPECT_EQ(ticks(path), 441441);
}

TEST_F(FFmpegPreparedMovies, TheProblemOfEachRefusedFileIsKnownWithoutTheFile) {
    std::vector<std::string> paths;
    for (int i = 0; i < 600; ++i) {
        paths.push_back(folder.write(std::to_string(i) + ".mp3", "no sound"));
        prepare(paths.back());
        media->movieWithFile(paths.back());
    }
    for (const std::string& path : paths) {
        std::filesystem::remove(path);
        EXPECT_EQ(media->problemWithMovie(path), "unreadable: no sound could be found in it");
    }
}

TEST_F(FFmpegPreparedMovies, TheProblemSaysWhatIsTheMatterWithAFile) {
    AudioRecipe instant = mp3Recipe();
    instant.samples = 22050;
    EXPECT_EQ(problemOf(contentOf(audioFixture(instant))), "shorter than a second");
    EXPECT_EQ(problemOf(song + std::string(17U << 20, '\x55') + song),
              "unreadable: more than 16 MiB of damage in one place");
    EXPECT_EQ(problemOf(song), "");
    EXPECT_EQ(problemOf("no sound"), "unreadable: no sound could be found in it");
}

TEST_F(FFmpegPreparedMovies, TheProblemHasAKind) {
    AudioRecipe instant = mp3Recipe();
    instant.samples = 22050;
    EXPECT_EQ(kindOf(contentOf(audioFixture(instant))), MovieProblem::Kind::TooShort);
    EXPECT_EQ(kindOf(song + std::string(17U << 20, '\x55') + song), MovieProblem::Kind::Damaged);
    EXPECT_EQ(kindOf(song), std::nullopt);
    EXPECT_EQ(kindOf("no sound"), MovieProblem::Kind::NoSound);
}

TEST_F(FFmpegPreparedMovies, AFileThatIsGoneHasAReasonOfItsOwn) {
    const std::string path = folder.file("none.mp3");
    EXPECT_EQ(media->movieWithFile(path), nullptr);
    EXPECT_EQ(media->problemWithMovie(path), "unreadable: No such file or directory");
    EXPECT_EQ(media->movieProblem(path),
              (MovieProblem{MovieProblem::Kind::Unreadable, "No such file or directory"}));
}

} // namespace
} // namespace quarner::testing
