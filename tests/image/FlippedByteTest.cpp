// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <fstream>

#include "quarner/platform/DiscFormat.h"
#include "tests/image/ForwardingFiles.h"
#include "tests/image/ImageTest.h"

namespace quarner {
namespace {

// Signed: an offset below 0 counts from the end.
constexpr std::int64_t soundSector = audioSectorSize;
constexpr std::int64_t dataBlock = dataBlockSize;

/// Changes one byte of a file as soon as it has reached the disk.
class FlippedByte : public ForwardingFiles {
public:
    FlippedByte(std::string ending, std::int64_t offset)
        : _ending(std::move(ending)), _offset(offset) {}

    std::unique_ptr<ImageFile> create(const std::string& path,
                                      const std::string& replaced) override {
        auto file = ForwardingFiles::create(path, replaced);
        if (!path.ends_with(_ending))
            return file;
        return std::make_unique<File>(std::move(file), path, _offset);
    }

private:
    class File : public ForwardingFile {
    public:
        File(std::unique_ptr<ImageFile> file, std::string path, std::int64_t offset)
            : ForwardingFile(std::move(file)), _path(std::move(path)), _offset(offset) {}
        void sync() override {
            ForwardingFile::sync();
            std::fstream file(_path, std::ios::binary | std::ios::in | std::ios::out);
            const auto way = _offset < 0 ? std::ios::end : std::ios::beg;
            file.seekg(_offset, way);
            const char byte = static_cast<char>(file.peek() ^ 1);
            file.seekp(_offset, way);
            file.put(byte);
        }

    private:
        const std::string _path;
        const std::int64_t _offset;
    };

    const std::string _ending;
    const std::int64_t _offset;
};

struct Flaw {
    ImageFormat format;
    const char* ending;
    std::int64_t offset;

    friend void PrintTo(const Flaw& flaw, std::ostream* out) {
        *out << flaw.ending << " at " << flaw.offset;
    }
};

class FlippedByteTest : public ImageTest, public testing::WithParamInterface<Flaw> {
protected:
    FlippedByteTest() : ImageTest(GetParam().format) {}
};

TEST_P(FlippedByteTest, FailsTheVerificationAndKeepsTheOldImage) {
    const Paths old = makeSources({1000, 588 * 400});
    ASSERT_TRUE(burn(old).isDone);
    const auto files = std::make_shared<FlippedByte>(GetParam().ending, GetParam().offset);
    const Outcome outcome = burnThrough(files, makeSources({588 * 2000 + 3, 588 * 400}));
    EXPECT_EQ(outcome.code, codeOf(DRError::VerifyFailed)) << outcome.info;
    EXPECT_TRUE(imageHolds(old)) << "the old image is kept";
    EXPECT_EQ(filesInFolder(), stage->filesOfImage());
}

std::vector<Flaw> flawsAt(const ImageFormat& format, const char* ending,
                          std::initializer_list<std::int64_t> offsets) {
    std::vector<Flaw> flaws;
    for (const std::int64_t offset : offsets)
        flaws.push_back({format, ending, offset});
    return flaws;
}

INSTANTIATE_TEST_SUITE_P(InBin, FlippedByteTest,
                         testing::ValuesIn(flawsAt(cueFormat(), ".bin.part",
                                                   {0, soundSector * 1024, soundSector * 2001 - 1,
                                                    soundSector * 2100, -1})));
INSTANTIATE_TEST_SUITE_P(InCue, FlippedByteTest,
                         testing::ValuesIn(flawsAt(cueFormat(), "cue.part", {6, -2})));
INSTANTIATE_TEST_SUITE_P(InLastCue, FlippedByteTest,
                         testing::ValuesIn(flawsAt(cueFormat(), "cue.last.part", {7})));
// In the system area, in a descriptor, in a file, and in the padding of its last block.
INSTANTIATE_TEST_SUITE_P(InIso, FlippedByteTest,
                         testing::ValuesIn(flawsAt(isoFormat(), ".iso.part",
                                                   {0, dataBlock * 17 + 40, dataBlock * 1024,
                                                    -dataBlock, -1})));

} // namespace
} // namespace quarner
