// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "adapters/joliet/JolietDirectory.h"
#include "quarner/platform/DiscFormat.h"
#include "tests/recorder/SourceStage.h"
#include "tests/support/Layouts.h"

namespace quarner {

/// Turns a stage into one for data discs.
template <class Stage>
class DataStage : public Stage {
public:
    using Stage::Stage;

    DRLayout layoutOf(const Paths& paths) override { return dataLayout(*this->service(), paths); }
    DRLayout layoutOfBlocks(std::uint32_t blocks) override {
        const std::string path = this->makeSource(1);
        const std::uint64_t others = this->layoutOf({path})[0]->estimateLength() - 1;
        std::filesystem::resize_file(path, (blocks - others) * dataBlockSize);
        return this->layoutOf({path});
    }
    DRLayout hugeLayout() override {
        const Paths paths = {this->makeSource(1), this->makeSource(1), this->makeSource(1)};
        for (const std::string& path : paths)
            std::filesystem::resize_file(path, std::uintmax_t(3) << 30);
        return this->layoutOf(paths);
    }
    std::string expectedContentOf(const std::string& path) override { return contentOf(path); }

protected:
    /// The files of an image, in order.
    static std::vector<std::string> filesOf(const std::string& disc) {
        std::vector<std::string> contents;
        for (const auto& [name, file] : jolietRootDirectory(std::as_bytes(std::span(disc))))
            contents.push_back(disc.substr(file.firstBlock * dataBlockSize, file.size));
        return contents;
    }
};

} // namespace quarner
