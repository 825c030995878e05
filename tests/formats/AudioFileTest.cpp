#include <gtest/gtest.h>

#include <filesystem>
#include <tuple>

#include "core/LFile.h"
#include "core/LMemorySound.h"
#include "formats/LAudioFile.h"
#include "formats/LAudioFormat.h"
#include "support/TestSupport.h"
#include "tests/formats/WavBytes.h"
#include "work/LProgressDialog.h"

using namespace wavbytes;
using testsupport::TempDir;

namespace {

// "WAV, MP3, ...": the registered formats in their order.
std::string KnownFormats()
{
    std::string sz;
    for (const LAudioFormat* p : LAudioFormat::All())
        sz += std::string(sz.empty() ? "" : ", ") + p->GetListedName();
    return sz;
}


// Hosts whose Cancel button is pressed at the third look.
struct CancellingFactory : LProgressHostFactory
{
    struct Host : LQuietProgressHost
    {
        int nLeft = 3;
        bool Pump() override { return nLeft-- > 0; }
    };
    std::unique_ptr<LProgressHost> Create() override { return std::make_unique<Host>(); }
};

struct SaveProcess : LProgressDialog
{
    SaveProcess(LSoundSourceBase* pSrc, std::string szPath, const std::string& szEncoding = "", uint8_t nChans = 0)
        : LProgressDialog("Saving"), pSource(pSrc), szPath(szPath), encoding(LAudioEncoding::Named(szEncoding)),
          nChans(nChans ? nChans : pSrc->GetChannels())
    {
    }
    int32_t Process() override
    {
        return LAudioFile::Save(*this, "Saving", pSource.Get(), szPath, 11025, nChans, encoding, &szError);
    }
    LSoundSourcePtr pSource;
    std::string szPath, szError;
    LAudioEncoding encoding;
    uint8_t nChans;
};

LSoundSourcePtr Ramp(int nFrames, uint8_t nChans)
{
    std::vector<int32_t> v(static_cast<size_t>(nFrames) * nChans);
    for (size_t i = 0; i < v.size(); ++i)
        v[i] = static_cast<int32_t>(i % 4000) * 16;
    return LSoundSourcePtr(new LSRCMemory(v, 11025, nChans));
}

// Only the files the test made itself: no part file is ever left behind.
size_t FilesIn(const TempDir& dir)
{
    size_t n = 0;
    for (const auto& e : std::filesystem::directory_iterator(dir.Path()))
        n += e.is_regular_file();
    return n;
}

} // namespace

TEST(AudioFile, OpenSourceNamesTheFormatOrTheReason)
{
    TempDir dir;
    testsupport::WriteSimpleWav(dir.File("a.bin"), 8000, 2, 8, {1, 2, 3, 4});
    std::string szError;
    LAudioFileDetails details;
    LSoundSourcePtr p = LAudioFile::OpenSource(dir.File("a.bin"), &szError, &details);
    ASSERT_FALSE(p->IsError()); // found by its contents whatever the extension
    EXPECT_EQ(details.szFormat, "WAV");
    EXPECT_EQ(details.szEncoding, "PCM 8-bit");
    EXPECT_EQ(details.encoding.szName, "pcm8");

    const Bytes vWav = Build(WavShape());
    const std::tuple<std::string, Bytes, std::string> cases[] = {
        {"empty.wav", {}, "the file is empty"},
        {"text.txt", Bytes(50, 'x'), "not a known audio file format (known: " + KnownFormats() + ")"},
        {"cut.wav", Bytes(vWav.begin(), vWav.begin() + 30), "damaged WAV file: format chunk cut short"},
    };
    for (const auto& [szName, vBytes, szReason] : cases) {
        testsupport::WriteFileBytes(dir.File(szName), vBytes);
        EXPECT_TRUE(LAudioFile::OpenSource(dir.File(szName), &szError)->IsError()) << szName;
        EXPECT_EQ(szError, szReason);
    }
    // The list names what a user can recognise: the catch-all format by its extensions.
    LAudioFile::OpenSource(dir.File("text.txt"), &szError);
    EXPECT_EQ(szError.find("Other"), std::string::npos) << szError;
    EXPECT_NE(szError.find("WAV, MP3"), std::string::npos) << szError;
    EXPECT_NE(szError.find("DSS"), std::string::npos) << szError;
    EXPECT_TRUE(LAudioFile::OpenSource(dir.Path(), &szError)->IsError());
    EXPECT_EQ(szError, "cannot open the file: not a regular file");
}

TEST(AudioFile, SaveWritesThroughThePumpAndReplacesTheTarget)
{
    TempDir dir;
    const std::string szPath = dir.File("out.wav");
    testsupport::WriteFileBytes(szPath, Bytes(10, 'o'));
    SaveProcess save(Ramp(20000, 2).Get(), szPath, "pcm16", 1);
    ASSERT_EQ(save.Run(), 0) << save.szError;
    LSoundSourcePtr p = LAudioFile::OpenSource(szPath);
    ASSERT_EQ(p->GetLength(), 20000);
    EXPECT_EQ(p->GetChannels(), 1);
    const std::vector<int32_t> v = ReadFrames(*p, 3);
    EXPECT_EQ(v, (std::vector<int32_t>{0, 32, 64})); // the left channel
    EXPECT_EQ(FilesIn(dir), 1u);
}

TEST(AudioFile, FailedOrCancelledSaveKeepsTheOldFile)
{
    TempDir dir;
    const std::string szPath = dir.File("keep.wav");
    const Bytes vOld(10, 'o');
    testsupport::WriteFileBytes(szPath, vOld);
    LSoundSourcePtr pSilent(new LSRCSilence);

    SaveProcess cancelled(Ramp(100000, 1).Get(), szPath);
    CancellingFactory factory;
    EXPECT_EQ(cancelled.Run(&factory), 1);
    EXPECT_EQ(cancelled.szError, "cancelled");

    SaveProcess latched(pSilent.Get(), szPath);
    EXPECT_EQ(latched.Run(), 2);
    SaveProcess sixToOne(Ramp(10, 6).Get(), szPath, "pcm16", 1);
    EXPECT_EQ(sixToOne.Run(), 2);
    EXPECT_EQ(sixToOne.szError, "cannot convert 6 channels to 1");
    SaveProcess unknown(Ramp(10, 1).Get(), dir.File("x.xyz"));
    EXPECT_EQ(unknown.Run(), 2);
    EXPECT_EQ(unknown.szError, "unknown file type '.xyz' (known: " + KnownFormats() + ")");
    SaveProcess noFolder(Ramp(10, 1).Get(), dir.File("none/x.wav"));
    EXPECT_EQ(noFolder.Run(), 2);
    EXPECT_EQ(noFolder.szError, "cannot write the file: No such file or directory");

    EXPECT_EQ(testsupport::ReadFileBytes(szPath), vOld);
    EXPECT_EQ(FilesIn(dir), 1u);
}

// Every write, flush and rename a save makes is failed in turn (and every write cut short):
// the save reports the system's reason and the old file stays byte for byte, with no part file
// left beside it. Only the last step, flushing the folder after the rename, comes after the
// old file is gone; it still fails the save.
TEST(AudioFile, FaultAtAnyStepOfASaveKeepsTheOldFile)
{
    TempDir dir;
    const std::string szPath = dir.File("keep.wav");
    const Bytes vOld(1000, 'o');
    testsupport::WriteFileBytes(szPath, vOld);
    struct FaultOff
    {
        ~FaultOff() { LFile::ClearFault(); }
    } off;

    // 20000 frames: the header, three blocks, the closing header, the file's flush, the rename
    // and the folder's flush.
    LFile::InjectFault(0);
    SaveProcess counted(Ramp(20000, 1).Get(), dir.File("counted.wav"));
    ASSERT_EQ(counted.Run(), 0) << counted.szError;
    const int64_t nCalls = LFile::GetFaultCalls();
    ASSERT_EQ(nCalls, 8);
    LFile::Delete(dir.File("counted.wav"));

    for (int nFault = LFile::FaultFail; nFault <= LFile::FaultShortWrite; ++nFault) {
        for (int64_t nCall = 1; nCall <= nCalls; ++nCall) {
            SCOPED_TRACE("fault " + std::to_string(nFault) + " at call " + std::to_string(nCall));
            testsupport::WriteFileBytes(szPath, vOld);
            LFile::InjectFault(nCall, static_cast<LFile::Fault>(nFault));
            SaveProcess save(Ramp(20000, 1).Get(), szPath);
            EXPECT_EQ(save.Run(), 2);
            const bool bWrite = nCall <= 5;
            if (bWrite) {
                EXPECT_EQ(save.szError.rfind(nCall == 1 ? "cannot write the file: " : "writing the file failed: ", 0), 0u)
                    << save.szError;
                EXPECT_NE(save.szError.find("No space left on device"), std::string::npos) << save.szError;
            } else {
                EXPECT_NE(save.szError.find("Input/output error"), std::string::npos) << save.szError;
            }
            if (nCall < nCalls) {
                EXPECT_EQ(testsupport::ReadFileBytes(szPath), vOld);
            } else {
                EXPECT_EQ(LAudioFile::OpenSource(szPath)->GetLength(), 20000); // written, but not flushed
            }
            EXPECT_EQ(FilesIn(dir), 1u);
        }
    }
    // Disarmed, the same save goes through.
    LFile::ClearFault();
    SaveProcess save(Ramp(20000, 1).Get(), szPath);
    EXPECT_EQ(save.Run(), 0) << save.szError;
    EXPECT_EQ(LAudioFile::OpenSource(szPath)->GetLength(), 20000);
}

// A real full disk: a small file system in a mount namespace of its own, where the system lets
// the test make one; a save that does not fit reports the reason and keeps the old file.
TEST(AudioFile, SaveOntoAFullFileSystemKeepsTheOldFile)
{
    if (!testsupport::HaveTool("unshare"))
        GTEST_SKIP() << "unshare is missing";
    TempDir dir;
    testsupport::WriteSimpleWav(dir.File("big.wav"), 44100, 2, 16, testsupport::Sine16(44100, 2, 44100, 440));
    const std::string szMount = dir.File("small");
    std::filesystem::create_directory(szMount);
    const std::string szCli = SONITRA_CLI_PATH;
    const std::string szScript = "mount -t tmpfs -o size=64k none '" + szMount + "' || exit 99; " +
                                 "head -c 20000 /dev/urandom > '" + szMount + "/old.wav'; cp '" + szMount +
                                 "/old.wav' '" + dir.File("old.copy") + "'; '" + szCli + "' convert '" +
                                 dir.File("big.wav") + "' '" + szMount + "/old.wav' 2>&1; echo exit=\\$?; cmp '" +
                                 szMount + "/old.wav' '" + dir.File("old.copy") + "' && echo same; ls -a '" +
                                 szMount + "' | wc -l";
    std::string szOut;
    const int nExit = testsupport::RunCommand("unshare -m sh -c \"" + szScript + "\" 2>/dev/null", &szOut);
    if (nExit == 99 || szOut.find("exit=") == std::string::npos)
        GTEST_SKIP() << "no file system can be mounted here";
    EXPECT_NE(szOut.find("No space left on device"), std::string::npos) << szOut;
    EXPECT_NE(szOut.find("exit=2"), std::string::npos) << szOut;
    EXPECT_NE(szOut.find("same"), std::string::npos) << szOut;
    EXPECT_NE(szOut.find("\n3\n"), std::string::npos) << szOut; // ".", ".." and the old file: no part left
}

TEST(AudioFile, EncodingsNotOfTheTargetFormatGiveWayToItsDefault)
{
    TempDir dir;
    const std::pair<std::string, int> cases[] = {{"pcm8", 8}, {"pcm16", 16}, {"", 16}, {"mp3-vbr", 16}};
    for (const auto& [szEncoding, nBits] : cases) {
        const std::string szPath = dir.File("e" + szEncoding + ".wav");
        SaveProcess save(Ramp(100, 1).Get(), szPath, szEncoding);
        ASSERT_EQ(save.Run(), 0) << szEncoding << ": " << save.szError;
        EXPECT_EQ(testsupport::ReadFileBytes(szPath)[34], nBits) << szEncoding;
    }
}

TEST(AudioFormat, DialogFiltersAndExtensionsComeFromTheFormatList)
{
    EXPECT_EQ(LAudioFormat::ByExtension("/a/b.WAVE"), LAudioFormat::ByName("WAV"));
    EXPECT_EQ(LAudioFormat::ByExtension("/a/b"), nullptr);
    EXPECT_EQ(LAudioFormat::ByName("WAV")->GetDefaultExtension(), ".wav");
    const std::vector<LAudioFileType> vOpen = LAudioFormat::OpenTypes();
    ASSERT_FALSE(vOpen.empty());
    EXPECT_EQ(vOpen.front().szLabel, "Wave Files(*.wav)");
    // Every writable format is offered for saving, and only those.
    size_t nWritable = 0;
    for (const LAudioFormat* p : LAudioFormat::All())
        nWritable += p->CanWrite() ? p->GetFileTypes().size() : 0;
    EXPECT_EQ(LAudioFormat::SaveTypes().size(), nWritable);
    const std::string szAll = LAudioFormat::AllPatterns({{"A", "*.x;*.y"}, {"B", "*.y;*.z"}});
    EXPECT_EQ(szAll, "*.x;*.y;*.z");
}
