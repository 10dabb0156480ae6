// SPDX-License-Identifier: LGPL-2.1-or-later
// Becomes part of every test program that scripts/mutate builds.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "scripts/mutation/Mutant.h"

namespace {

/// Writes a line for each test: its name, the milliseconds that it took, and the numbers of the
/// mutants that it reached. What is reached before the first test goes to the name "startup".
class ReachRecorder : public testing::EmptyTestEventListener {
public:
    explicit ReachRecorder(const char* path) : _lines(path) {}

    void OnTestProgramStart(const testing::UnitTest&) override { record("startup", 0); }

    void OnTestEnd(const testing::TestInfo& test) override {
        record(std::string(test.test_suite_name()) + '.' + test.name(),
               test.result()->elapsed_time());
    }

private:
    void record(const std::string& name, long milliseconds) {
        _lines << name << ' ' << milliseconds;
        for (std::size_t number = 0; number < mutant::reached.size(); ++number)
            if (mutant::reached[number] != 0)
                _lines << ' ' << number;
        _lines << std::endl;
        mutant::reached.fill(0);
    }

    std::ofstream _lines;
};

const bool isListening = [] {
    const char* const path = std::getenv("QUARNER_MUTANT_REACH");
    if (path != nullptr)
        testing::UnitTest::GetInstance()->listeners().Append(new ReachRecorder(path));
    return path != nullptr;
}();

} // namespace
