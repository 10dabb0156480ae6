// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/recorder/CueStage.h"
#include "tests/recorder/IsoStage.h"
#include "tests/recorder/OpticalRecorderStage.h"
#include "tests/recorder/RecorderTest.h"
#include "tests/recorder/ScriptedRecorderStage.h"

namespace quarner {

std::vector<RecorderChoice> audioWritingRecorders() {
    return {{"Image", [] { return std::make_unique<CueStage>(); }},
            {"Optical", [] { return std::make_unique<AudioOpticalStage>(); }}};
}

std::vector<RecorderChoice> writingRecorders() {
    std::vector<RecorderChoice> all = audioWritingRecorders();
    all.push_back({"DataImage", [] { return std::make_unique<IsoStage>(); }});
    all.push_back({"DataOptical", [] { return std::make_unique<DataOpticalStage>(); }});
    return all;
}

std::vector<RecorderChoice> recorders() {
    std::vector<RecorderChoice> all = writingRecorders();
    all.push_back({"Scripted", [] { return std::make_unique<AudioScriptedStage>(); }});
    all.push_back({"DataScripted", [] { return std::make_unique<DataScriptedStage>(); }});
    return all;
}

} // namespace quarner
