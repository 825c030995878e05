// A save that runs into the file size limit (ulimit -f, with SIGXFSZ ignored so that writes fail
// instead of ending the program) fails with exit status 2 for every writable format and encoding
// of the format list, and leaves the file it would have replaced byte for byte.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "core/LComponents.h"
#include "formats/LAudioFormat.h"
#include "support/TestSupport.h"

using testsupport::ReadFileBytes;
using testsupport::RunCommand;
using testsupport::TempDir;
using testsupport::WriteFileBytes;

namespace {

constexpr int kLimitKb = 2;

// White noise, so that no encoder can squeeze it under the limit.
std::vector<int32_t> Noise(int nSamples)
{
    std::vector<int32_t> v(static_cast<size_t>(nSamples));
    uint32_t nSeed = 12345;
    for (int32_t& s : v) {
        nSeed = nSeed * 1664525u + 1013904223u;
        s = static_cast<int32_t>(nSeed >> 16) - 32768;
        s /= 2;
    }
    return v;
}

std::vector<std::string> FilesIn(const std::string& szFolder)
{
    std::vector<std::string> v;
    for (const auto& e : std::filesystem::directory_iterator(szFolder))
        v.push_back(e.path().filename().string());
    return v;
}

} // namespace

TEST(CliSaveLimit, EveryWriterFailsAtTheFileSizeLimitAndKeepsTheOldFile)
{
    TempDir dir;
    // 2 s of 22050 Hz stereo: even GSM's 1650 bytes a second pass the limit, and a writer that
    // keeps its last blocks for its finish meets the limit only there.
    testsupport::WriteSimpleWav(dir.File("in.wav"), 22050, 2, 16, Noise(2 * 22050 * 2));
    // The encoder components are registered as the editor does, from the programs installed.
    std::string szConfig = "[Components]\n";
    for (const LAudioFormat* p : LAudioFormat::All()) {
        const std::string szComponent = p->GetWriteComponent();
        if (!szComponent.empty())
            szConfig += szComponent + "\\Path=" + LComponents::FindOnPath(LComponents::ProgramFor(szComponent)) + "\n";
    }
    std::filesystem::create_directories(dir.File("config/Korvane"));
    WriteFileBytes(dir.File("config/Korvane/Sonitra.conf"), std::vector<uint8_t>(szConfig.begin(), szConfig.end()));
    const std::string szOutFolder = dir.File("out");
    std::filesystem::create_directories(szOutFolder);

    const std::vector<uint8_t> vOld(3000, 'o');
    size_t nWriters = 0;
    for (const LAudioFormat* p : LAudioFormat::All()) {
        for (const std::string& szEncoding : p->GetEncodings()) {
            const std::string szWriter = std::string(p->GetName()) + ":" + szEncoding;
            SCOPED_TRACE(szWriter);
            const std::string szOut = szOutFolder + "/old" + p->GetDefaultExtension();
            WriteFileBytes(szOut, vOld);
            std::string szLog;
            const int nExit = RunCommand("XDG_CONFIG_HOME='" + dir.File("config") + "' XDG_CACHE_HOME='" +
                                         dir.File("cache") + "' bash -c 'trap \"\" XFSZ; ulimit -f " +
                                         std::to_string(kLimitKb) + "; exec \"$0\" \"$@\"' '" SONITRA_CLI_PATH
                                         "' convert '" + dir.File("in.wav") + "' '" + szOut + "' --format " + szWriter +
                                         " 2>&1 </dev/null",
                                         &szLog);
            EXPECT_EQ(nExit, 2) << szLog;
            EXPECT_NE(szLog.find("writing the file failed"), std::string::npos) << szLog;
            EXPECT_EQ(ReadFileBytes(szOut), vOld);
            EXPECT_EQ(FilesIn(szOutFolder), std::vector<std::string>{"old" + p->GetDefaultExtension()});
            std::filesystem::remove(szOut);
            ++nWriters;
        }
    }
    EXPECT_GE(nWriters, 20u);
}
