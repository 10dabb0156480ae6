// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/Program.h"
#include "tests/support/TemporaryFolder.h"

namespace quarner {
namespace {

namespace fs = std::filesystem;

/// What a program under another name says about its folder of workers, without QUARNER_WORKERS
/// unless that is given too.
std::string folderOf(const std::string& program, const std::string& name,
                     const std::string& workers = {}) {
    std::vector<std::string> command = {"env", "-u", "QUARNER_WORKERS"};
    if (!workers.empty())
        command.push_back("QUARNER_WORKERS=" + workers);
    for (const std::string& word : {std::string("bash"), std::string("-c"),
                                    std::string(R"(exec -a "$0" "$1")"), name, program})
        command.push_back(word);
    const std::string output = testing::runProgram(command).output;
    return output.substr(0, output.find('\n')); // LeakSanitizer may complain of other rights
}

TEST(TheFolderOfTheWorkers, IsThatOfTheFileThatRunsWhateverNameItWasGiven) {
    const TemporaryFolder folder;
    fs::create_directories(folder.file("bin"));
    fs::create_directories(folder.file(QUARNER_WORKER_FOLDER));
    folder.write(QUARNER_WORKER_FOLDER "/quarner-drive", "");
    EXPECT_EQ(folderOf(WORKER_FOLDER_PROGRAM, folder.file("bin/false")),
              fs::canonical(BUILT_TREE "/" QUARNER_WORKER_FOLDER));
    fs::copy_file(WORKER_FOLDER_PROGRAM, folder.file("bin/moved"));
    EXPECT_EQ(folderOf(folder.file("bin/moved"), WORKER_FOLDER_PROGRAM),
              fs::canonical(folder.file(QUARNER_WORKER_FOLDER)));
}

TEST(TheFolderOfTheWorkers, IsThatOfTheEnvironmentIfItSaysSo) {
    EXPECT_EQ(folderOf(WORKER_FOLDER_PROGRAM, "name", "/some/where"), "/some/where");
}

TEST(TheFolderOfTheWorkers, IsThatOfTheInstallationForAProgramWithMoreRightsThanItsUser) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can give a program other rights";
    constexpr uid_t nobody = 65534;
    const TemporaryFolder folder;
    const std::string program = folder.file("program");
    fs::copy_file(WORKER_FOLDER_PROGRAM, program);
    ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
    ASSERT_EQ(chown(program.c_str(), nobody, gid_t(-1)), 0);
    ASSERT_EQ(chmod(program.c_str(), 04755), 0);
    EXPECT_EQ(folderOf(program, program, folder.path()), QUARNER_WORKER_DIR);
}

} // namespace
} // namespace quarner
