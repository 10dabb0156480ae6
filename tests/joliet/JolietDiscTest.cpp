// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <map>
#include <optional>
#include <thread>

#include "adapters/engine/BurnFailure.h"
#include "adapters/isofs/IsofsTree.h"
#include "adapters/joliet/JolietDiscs.h"
#include "adapters/posix/FileStamps.h"
#include "quarner/platform/DiscFormat.h"
#include "tests/support/Program.h"
#include "tests/support/TemporaryFolder.h"

namespace quarner {
namespace {

using testing::ProgramResult;
using testing::runProgram;

/// Random bytes, so that no two files are equal and none repeats itself.
std::string noise(std::size_t size, std::uint32_t seed) {
    std::string bytes(size, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>((seed = seed * 1664525U + 1013904223U) >> 24);
    return bytes;
}

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// The contents of all files below a folder, in order.
std::vector<std::string> contentsIn(const std::filesystem::path& folder) {
    std::vector<std::string> contents;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.is_regular_file())
            contents.push_back(contentOf(entry.path()));
    std::sort(contents.begin(), contents.end());
    return contents;
}

std::shared_ptr<DRFolder> rootNamed(const std::string& name) {
    auto root = std::make_shared<DRFolder>(name);
    root->setExplicitFilesystemMask(DRFilesystemMaskJoliet);
    return root;
}

class JolietDisc : public ::testing::Test {
protected:
    std::string add(const std::string& name, const std::string& content) {
        std::filesystem::create_directories((sources.path() / name).parent_path());
        const std::string path = sources.write(name, content);
        addPath(path);
        return path;
    }
    void addPath(const std::string& path) {
        root->addChild(std::make_shared<DRFile>(path, *stampOfFile(path)));
    }

    /// Expects the results around the exact number, which would show too low an upper bound.
    void expectEstimate(std::uint64_t blocks) const {
        EXPECT_FALSE(discs->trackForRootFolder(root)->isEstimateBelow(blocks));
        EXPECT_TRUE(discs->trackForRootFolder(root)->isEstimateBelow(blocks + 1));
    }

    /// Reads the disc in buffers of an odd size and returns the image's path.
    std::string burn() {
        track = discs->trackForRootFolder(root);
        DiscContent content = discs->contentOf(*track, stop);
        expectEstimate(content.plan.sectors());
        TrackSource& source = *content.sources.front();
        std::string image(std::size_t(content.plan.bytes()), '\xFF');
        for (std::size_t at = 0; at < image.size();) {
            const std::size_t part = std::min<std::size_t>(4999, image.size() - at);
            source.read(std::as_writable_bytes(std::span(image).subspan(at, part)));
            at += part;
        }
        source.close();
        source.check();
        return target.write("disc.iso", image);
    }

    /// Returns what a program extracts from the image into an empty folder.
    std::vector<std::string> extractedBy(const std::vector<std::string>& program) {
        const ProgramResult result = runProgram(program);
        EXPECT_EQ(result.status, 0) << result.output;
        return contentsIn(out.path());
    }

    TemporaryFolder sources;
    TemporaryFolder target;
    TemporaryFolder out;
    std::shared_ptr<DataDiscService> discs = makeJolietDiscs();
    std::shared_ptr<DRFolder> root = rootNamed("My Mix");
    std::shared_ptr<DRTrack> track;
    StopSignal stop;
};

/// A folder with names that are difficult for file systems and readers.
class DifficultNames : public JolietDisc {
protected:
    DifficultNames() {
        std::uint32_t seed = 0;
        for (const std::string& name : names())
            for (const char* folder : {"a/", "b/"}) { // each name twice, from different folders
                ++seed;
                add(folder + name, noise(100 + 1999 * seed, seed));
            }
        add("empty.mp3", "");
    }

    static std::vector<std::string> names() {
        return {std::string(200, 'x') + ".mp3",
                "Song.mp3",
                "SONG.mp3",
                std::string(70, 'y') + "1.mp3",
                std::string(70, 'y') + "2.mp3",
                "emoji \xF0\x9F\x8E\xB5.mp3",
                "\xE6\x9B\xB2.mp3",
                "caf\xE9.mp3",
                "a*b:c;d?e\\f.mp3",
                ".dot.mp3",
                "trailing ",
                "q'uo\"te.mp3"};
    }
};

TEST_F(DifficultNames, BsdtarExtractsEveryFileByteForByte) {
    const std::string image = burn();
    EXPECT_EQ(extractedBy({"bsdtar", "-xf", image, "-C", out.path()}), contentsIn(sources.path()));
}

TEST_F(DifficultNames, SevenZipExtractsEveryFileByteForByte) {
    const std::string image = burn();
    EXPECT_EQ(extractedBy({"7z", "x", "-o" + out.path().string(), image}),
              contentsIn(sources.path()));
}

TEST_F(DifficultNames, XorrisoExtractsEveryFileByteForByte) {
    const std::string image = burn();
    EXPECT_EQ(
        extractedBy({"xorriso", "-osirrox", "on", "-indev", image, "-extract", "/", out.path()}),
        contentsIn(sources.path()));
}

TEST_F(DifficultNames, IsoinfoListsEveryFileInTheJolietTreeAndNoneInTheOther) {
    const std::string image = burn();
    const std::string joliet = runProgram({"isoinfo", "-J", "-f", "-i", image}).output;
    EXPECT_EQ(static_cast<std::size_t>(std::count(joliet.begin(), joliet.end(), '\n')),
              root->children().size());
    EXPECT_EQ(runProgram({"isoinfo", "-f", "-i", image}).output, "");
}

TEST_F(DifficultNames, IsoinfoExtractsEveryFileByteForByte) {
    const std::string image = burn();
    const std::string list = runProgram({"isoinfo", "-J", "-f", "-i", image}).output;
    std::vector<std::string> contents;
    for (std::size_t at = 0; at < list.size(); at = list.find('\n', at) + 1) {
        const std::string name = list.substr(at, list.find('\n', at) - at);
        contents.push_back(runProgram({"isoinfo", "-J", "-i", image, "-x", name}).output);
    }
    std::sort(contents.begin(), contents.end());
    EXPECT_EQ(contents, contentsIn(sources.path()));
}

TEST_F(JolietDisc, TheEstimateIsTheExactSizeOfTheImage) {
    add("one.mp3", noise(1, 1));
    add("two.mp3", noise(dataBlockSize, 2));
    add("three.mp3", noise(2049, 3));
    const std::string image = burn();
    EXPECT_EQ(std::filesystem::file_size(image), track->estimateLength() * dataBlockSize);
}

TEST_F(JolietDisc, BearsTheNameOfTheRootFolder) {
    root = rootNamed("Größte Hits");
    add("one.mp3", "x");
    const std::string image = contentOf(burn());
    EXPECT_EQ(image.substr(16 * dataBlockSize + 40, 12), "GR__TE_HITS ")
        << "the primary descriptor";
    EXPECT_EQ(image.substr(17 * dataBlockSize + 40, 8), std::string("\0G\0r\0\xF6\0\xDF", 8))
        << "Joliet";
}

TEST_F(JolietDisc, AnyTitleGivesADiscThatReadersList) {
    for (const std::string& title : {std::string(), std::string(300, 'x'), std::string("*/:;?\\"),
                                     std::string("\xFF\x01\n")}) {
        root = rootNamed(title);
        add("one.mp3", "x");
        EXPECT_EQ(runProgram({"isoinfo", "-J", "-f", "-i", burn()}).output, "/one.mp3\n") << title;
    }
}

TEST_F(JolietDisc, AnEmptyFolderIsAnEmptyDisc) {
    const std::string image = burn();
    const ProgramResult listed = runProgram({"isoinfo", "-J", "-f", "-i", image});
    EXPECT_EQ(listed.status, 0);
    EXPECT_EQ(listed.output, "");
}

TEST_F(JolietDisc, AFileThatStandsTwiceArrivesUnderTwoNames) {
    const std::string path = add("one.mp3", noise(5000, 1));
    addPath(path);
    add("two.mp3", noise(3000, 2));
    const std::string image = burn();
    const std::vector<std::string> contents =
        extractedBy({"bsdtar", "-xf", image, "-C", out.path()});
    EXPECT_EQ(std::count(contents.begin(), contents.end(), contentOf(path)), 2);
    EXPECT_EQ(contents.size(), 3U);
}

TEST_F(JolietDisc, ASymbolicLinkBringsTheFileThatItStandsFor) {
    const std::string file = sources.write("real.mp3", noise(5000, 1));
    std::filesystem::create_symlink(file, sources.path() / "link.mp3");
    addPath(sources.file("link.mp3"));
    const std::string image = burn();
    EXPECT_EQ(runProgram({"isoinfo", "-J", "-i", image, "-x", "/link.mp3"}).output,
              contentOf(file));
}

TEST_F(JolietDisc, HundredsOfFilesFillSeveralBlocksOfTheDirectory) {
    for (std::uint32_t i = 0; i < 300; ++i)
        add("track number " + std::to_string(i) + ".mp3", noise(i * 37, i + 1));
    const std::string image = burn();
    EXPECT_EQ(extractedBy({"bsdtar", "-xf", image, "-C", out.path()}), contentsIn(sources.path()));
}

TEST(IsofsTree, LaysOutFilesByTheirStampsAlone) {
    const FileStamp one = {.size = 5000, .device = 1, .inode = 1};
    const FileStamp other = {.size = 5000, .device = 1, .inode = 2};
    const auto blocksOf = [](const std::vector<JolietFolder::Entry>& entries) {
        IsofsTree tree;
        EXPECT_EQ(tree.layOut({"Mix", entries}), "");
        return tree.blocks;
    };
    const std::uint64_t blocks = blocksOf({{"a.mp3", one}});
    EXPECT_EQ(blocksOf({{"a.mp3", one}, {"b.mp3", other}}), blocks + 3);
    EXPECT_EQ(blocksOf({{"a.mp3", one}, {"b.mp3", one}}), blocks) << "the same file";
}

DRError errorOf(const std::function<void()>& work) {
    try {
        work();
    } catch (const BurnFailure& failure) {
        return failure.error();
    }
    return DRError::Internal;
}

TEST_F(JolietDisc, AFileThatIsGoneOrChangedFailsTheDisc) {
    const std::string path = add("one.mp3", noise(5000, 1));
    track = discs->trackForRootFolder(root);
    DiscContent content = discs->contentOf(*track, stop);
    sources.write("one.mp3", noise(5001, 1));
    EXPECT_EQ(errorOf([&] { discs->contentOf(*track, stop); }), DRError::SourceChanged);
    EXPECT_EQ(errorOf([&] { content.sources.front()->check(); }), DRError::SourceChanged);
    std::filesystem::remove(path);
    EXPECT_EQ(errorOf([&] { discs->contentOf(*track, stop); }), DRError::SourceMissing);
    EXPECT_EQ(errorOf([&] { content.sources.front()->check(); }), DRError::SourceMissing);
    EXPECT_EQ(discs->trackForRootFolder(root)->estimateLength(), 0U);
}

TEST_F(JolietDisc, ABurnThatIsStoppedDoesNotWaitForAProgramThatDoesNotReply) {
    add("one.mp3", noise(5000, 1));
    track = discs->trackForRootFolder(root);
    // It ends with its connection.
    const std::string program =
        sources.write("quarner-joliet", "#!/bin/sh\n: > \"$0.started\"\nexec cat <&3\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    const char* const before = getenv("QUARNER_WORKERS");
    const std::optional<std::string> named =
        before != nullptr ? std::optional<std::string>(before) : std::nullopt;
    setenv("QUARNER_WORKERS", sources.path().c_str(), 1);
    const auto begin = std::chrono::steady_clock::now();
    auto error = std::async(std::launch::async,
                            [&] { return errorOf([&] { discs->contentOf(*track, stop); }); });
    while (!std::filesystem::exists(program + ".started") &&
           std::chrono::steady_clock::now() - begin < std::chrono::seconds(10))
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    stop.request(DRError::UserCanceled);
    EXPECT_EQ(error.get(), DRError::UserCanceled);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
    if (named)
        setenv("QUARNER_WORKERS", named->c_str(), 1);
    else
        unsetenv("QUARNER_WORKERS");
}

TEST_F(JolietDisc, AFolderForAnotherFileSystemIsNotWritten) {
    constexpr std::uint32_t other = 4;
    add("one.mp3", noise(5000, 1));
    for (const std::uint32_t mask : {0U, other, DRFilesystemMaskJoliet | other}) {
        root->setExplicitFilesystemMask(mask);
        track = discs->trackForRootFolder(root);
        EXPECT_EQ(errorOf([&] { discs->contentOf(*track, stop); }), DRError::WrongMedia) << mask;
    }
}

TEST_F(JolietDisc, AFileThatIsReplacedByOneOfItsSizeFailsTheRead) {
    const std::string path = add("one.mp3", noise(100000, 1));
    track = discs->trackForRootFolder(root);
    DiscContent content = discs->contentOf(*track, stop);
    std::filesystem::rename(sources.write("other.mp3", noise(100000, 2)), path);
    std::vector<std::byte> image(std::size_t(content.plan.bytes()));
    EXPECT_EQ(errorOf([&] { content.sources.front()->read(image); }), DRError::SourceChanged);
}

TEST_F(JolietDisc, AFileThatShrinksWhileItIsReadFailsTheRead) {
    add("one.mp3", noise(100000, 1));
    track = discs->trackForRootFolder(root);
    DiscContent content = discs->contentOf(*track, stop);
    sources.write("one.mp3", noise(50000, 1));
    std::vector<std::byte> image(std::size_t(content.plan.bytes()));
    EXPECT_EQ(errorOf([&] { content.sources.front()->read(image); }), DRError::SourceChanged);
}

} // namespace
} // namespace quarner
