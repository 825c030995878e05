// Where a batch writes: two inputs whose outputs would be one file, however that file is named,
// never both get it.
#include <gtest/gtest.h>

#include <filesystem>

#include "lists/EdBatchConverter.h"
#include "support/TestSupport.h"

using testsupport::TempDir;

TEST(BatchOutput, OneFileUnderTwoNamesGoesToTheFirstInputOnly)
{
    TempDir dir;
    namespace fs = std::filesystem;
    fs::create_directories(dir.File("d"));
    fs::create_directories(dir.File("e"));
    fs::create_symlink(dir.File("d"), dir.File("link"));
    testsupport::WriteFileBytes(dir.File("d/kept.wav"), {1});
    fs::create_hard_link(dir.File("d/kept.wav"), dir.File("e/kept.wav"));
    const std::vector<std::string> vInputs = {
        dir.File("d/a.mp3"),    dir.File("d/./a.au"),  // the same output, spelt two ways
        dir.File("link/b.mp3"), dir.File("d/b.au"),    // through a link to the folder
        dir.File("d/kept.mp3"), dir.File("e/kept.au"), // two names of one existing file
        dir.File("d/c.mp3"),    dir.File("e/c.au"),    // two different files of one name
    };
    LBatchOutput output;
    output.szExtension = ".wav";
    std::vector<std::string> vWhy;
    const std::vector<std::string> vPaths = EdBatchConverter::OutputPathsFor(vInputs, output, vWhy);
    ASSERT_EQ(vPaths.size(), vInputs.size());
    for (size_t i = 0; i < vInputs.size(); i += 2) {
        EXPECT_FALSE(vPaths[i].empty()) << vInputs[i];
        EXPECT_EQ(vWhy[i], "") << vInputs[i];
    }
    for (size_t i : {1u, 3u, 5u}) {
        EXPECT_EQ(vPaths[i], "") << vInputs[i];
        EXPECT_NE(vWhy[i].find("another file of this batch is written to"), std::string::npos) << vInputs[i];
    }
    EXPECT_EQ(vPaths[7], dir.File("e/c.wav"));
}
