// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "quarner/platform/RecordingService.h"
#include "tests/support/TurnedLoops.h"

namespace quarner {

using Paths = std::vector<std::string>;

/// A recorder for one kind of disc, with one drive and a blank 80-minute disc, and the operations
/// that the behavioural suite needs in addition to the service's interface.
class RecorderStage {
public:
    RecorderStage() = default;
    virtual ~RecorderStage() = default;
    RecorderStage(const RecorderStage&) = delete;
    RecorderStage& operator=(const RecorderStage&) = delete;

    virtual std::shared_ptr<RecordingService> service() = 0;
    virtual TurnedLoops& loops() = 0;
    virtual std::shared_ptr<DRDevice> drive() = 0;

    /// Makes a file of `pairs` stereo samples, four bytes each.
    virtual std::string makeSource(std::uint64_t pairs) = 0;
    /// Returns the layout of a disc with these files, in this order.
    virtual DRLayout layoutOf(const Paths& paths) = 0;
    /// Returns the layout of a disc that takes `blocks` blocks.
    virtual DRLayout layoutOfBlocks(std::uint32_t blocks) = 0;
    /// Returns the layout of a disc whose size does not fit 32 bits.
    virtual DRLayout hugeLayout() = 0;

    virtual void insertBlank() = 0;
    virtual void unplug() = 0;
    virtual void plugAnother() = 0;
    /// Returns after all changes so far, also outside this process, were reported.
    virtual void settle() { loops().runPending(); }
    /// Whether a burn that ends early leaves the disc unchanged.
    virtual bool sparesDiscs() const = 0;
    /// Destroys the recorder, as the end of the process does.
    virtual void shutDown() = 0;
};

/// A recorder that reads files from disk and writes sectors.
class WritingStage : public RecorderStage {
public:
    /// Returns the content of each source on the disc, in the order in which the sources were made.
    virtual std::vector<std::string> contentsOnDisc() = 0;
    /// Returns the expected content of a source.
    virtual std::string expectedContentOf(const std::string& path) = 0;
    virtual std::uint64_t blocksOnDisc() = 0;

    std::vector<std::string> expectedContentsOf(const Paths& paths) {
        std::vector<std::string> contents;
        for (const std::string& path : paths)
            contents.push_back(expectedContentOf(path));
        return contents;
    }
};

using RecorderStageMaker = std::function<std::unique_ptr<RecorderStage>()>;

} // namespace quarner
