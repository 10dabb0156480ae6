// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <array>
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>

#include "tests/recorder/RecorderStage.h"
#include "tests/support/RawSound.h"
#include "tests/support/StepLoops.h"
#include "tests/support/TemporaryFolder.h"

namespace quarner {

inline std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    std::string content(file ? static_cast<std::size_t>(file.tellg()) : 0, '\0');
    file.seekg(0);
    file.read(content.data(), static_cast<std::streamsize>(content.size()));
    return content;
}

/// The common part of the stages: run loops turned by hand, and files of noise to burn.
class SourceStage : public WritingStage {
public:
    StepLoops& loops() override { return *_loops; }
    std::string makeSource(std::uint64_t pairs) override {
        std::array<char, 32> name = {};
        std::snprintf(name.data(), name.size(), "source%04u", ++_sources);
        return sources.write(name.data(), rawNoise(pairs, _sources));
    }

    TemporaryFolder sources;
    std::shared_ptr<RawSound> sound = std::make_shared<RawSound>();

protected:
    const std::shared_ptr<StepLoops>& sharedLoops() const { return _loops; }

private:
    const std::shared_ptr<StepLoops> _loops = std::make_shared<StepLoops>();
    std::uint32_t _sources = 0;
};

} // namespace quarner
