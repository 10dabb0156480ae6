// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/recorder/CueStage.h"
#include "tests/recorder/IsoStage.h"
#include "tests/recorder/OpticalStage.h"
#include "tests/recorder/RecorderTest.h"

namespace quarner {

std::vector<RecorderChoice> audioRecorders() {
    return {{"Image", [] { return std::make_unique<CueStage>(); }},
            {"Optical", [] { return std::make_unique<AudioOpticalStage>(); }}};
}

std::vector<RecorderChoice> dataRecorders() {
    return {{"DataImage", [] { return std::make_unique<IsoStage>(); }},
            {"DataOptical", [] { return std::make_unique<DataOpticalStage>(); }}};
}

std::vector<RecorderChoice> recorders() {
    std::vector<RecorderChoice> all = audioRecorders();
    for (const RecorderChoice& choice : dataRecorders())
        all.push_back(choice);
    return all;
}

} // namespace quarner
