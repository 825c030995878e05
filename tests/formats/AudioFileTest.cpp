#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <tuple>

#include "core/LComponents.h"
#include "core/LFile.h"
#include "core/LMemorySound.h"
#include "core/LSettings.h"
#include "formats/LAudioFile.h"
#include "formats/LAudioFormat.h"
#include "support/TestSupport.h"
#include "tests/formats/SaveProcess.h"
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
    // Both channels mixed: (0 + 16) / 2, (32 + 48) / 2, ..., each half a 16-bit step rounded up.
    EXPECT_EQ(v, (std::vector<int32_t>{16, 48, 80}));
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

namespace {

// One way of writing a file: a writable format of the registry and one of its encodings.
struct Writer
{
    const LAudioFormat* pFormat;
    std::string szEncoding;
    std::string Name() const { return std::string(pFormat->GetName()) + ":" + szEncoding; }
};

// Every encoding of every format that writes, straight from the format list: a new format or
// codec is covered by being listed there.
std::vector<Writer> EveryWriter()
{
    std::vector<Writer> v;
    for (const LAudioFormat* p : LAudioFormat::All())
        for (const std::string& szEncoding : p->GetEncodings())
            v.push_back({p, szEncoding});
    return v;
}

// The settings a save reads (the encoder component's path among them) kept away from other tests.
class AllWriters : public ::testing::Test
{
protected:
    void SetUp() override
    {
        LSettings::SetStore(&store);
        // The components that writing needs are registered from the programs installed.
        for (const LAudioFormat* p : LAudioFormat::All()) {
            const std::string szComponent = p->GetWriteComponent();
            if (!szComponent.empty())
                LComponents::SetPath(szComponent, LComponents::FindOnPath(LComponents::ProgramFor(szComponent)));
        }
    }
    void TearDown() override
    {
        LFile::ClearFault();
        LSettings::SetStore(nullptr);
    }
    LMemorySettings store;
};

} // namespace

// Every write, flush and rename a save makes is failed in turn (and every write cut short),
// for every writer: its file's blocks, its closing header, the sound it pipes to an encoder.
// The save reports the failure and the old file stays byte for byte, with no part file left
// beside it. Only the last step, flushing the folder after the rename, comes after the old file
// is gone; it still fails the save.
TEST_F(AllWriters, FaultAtAnyStepOfASaveFailsItAndKeepsTheOldFile)
{
    const Bytes vOld(1000, 'o');
    size_t nFormats = 0;
    const LAudioFormat* pLast = nullptr;
    for (const Writer& w : EveryWriter()) {
        SCOPED_TRACE(w.Name());
        nFormats += w.pFormat != pLast;
        pLast = w.pFormat;
        TempDir dir;
        const std::string szPath = dir.File("keep" + w.pFormat->GetDefaultExtension());

        // Stereo, so that the formats that hold one channel convert on the way.
        LFile::InjectFault(0);
        SaveProcess counted(Ramp(10000, 2).Get(), dir.File("counted" + w.pFormat->GetDefaultExtension()), w.szEncoding);
        ASSERT_EQ(counted.Run(), 0) << counted.szError;
        const int64_t nCalls = LFile::GetFaultCalls();
        ASSERT_GE(nCalls, 4); // at least one write, the flush, the rename and the folder's flush
        LFile::Delete(counted.szPath);

        for (int nFault = LFile::FaultFail; nFault <= LFile::FaultShortWrite; ++nFault) {
            for (int64_t nCall = 1; nCall <= nCalls; ++nCall) {
                SCOPED_TRACE("fault " + std::to_string(nFault) + " at call " + std::to_string(nCall));
                testsupport::WriteFileBytes(szPath, vOld);
                LFile::InjectFault(nCall, static_cast<LFile::Fault>(nFault));
                SaveProcess save(Ramp(10000, 2).Get(), szPath, w.szEncoding);
                EXPECT_EQ(save.Run(), 2);
                EXPECT_FALSE(save.szError.empty());
                if (nCall < nCalls)
                    EXPECT_EQ(testsupport::ReadFileBytes(szPath), vOld);
                else
                    EXPECT_FALSE(LAudioFile::OpenSource(szPath)->IsError()); // written, but not flushed
                EXPECT_EQ(FilesIn(dir), 1u);
            }
        }
        LFile::ClearFault();
    }
    size_t nWritable = 0;
    for (const LAudioFormat* p : LAudioFormat::All())
        nWritable += p->CanWrite();
    EXPECT_EQ(nFormats, nWritable);
}

// The reasons a failed save gives: the system's for a file of ours, the encoder's own words for
// a file an encoder writes.
TEST_F(AllWriters, AFailedSaveNamesItsReason)
{
    TempDir dir;
    // The call that fails: a block of sound, or the first write into the encoder's pipe. GSM
    // writes its frames (fewer than 256 here) only as it completes.
    const std::tuple<std::string, int, std::string> cases[] = {
        {"a.wav", 2, "writing the file failed: No space left on device"},
        {"a.gsm", 1, "writing the file failed: No space left on device"},
        {"a.au", 2, "writing the file failed: No space left on device"},
        {"a.flac", 1, "writing the file failed: flac stopped taking sound"},
        {"a.mp3", 1, "writing the file failed: the MP3 encoder stopped taking sound"},
    };
    for (const auto& [szName, nCall, szReason] : cases) {
        LFile::InjectFault(nCall);
        SaveProcess save(Ramp(10000, 2).Get(), dir.File(szName));
        EXPECT_EQ(save.Run(), 2) << szName;
        EXPECT_EQ(save.szError.rfind(szReason, 0), 0u) << szName << ": " << save.szError;
        LFile::ClearFault();
    }
    EXPECT_EQ(FilesIn(dir), 0u);
}

// An encoder that takes all the sound and writes the file, and then exits with an error or is
// killed, fails the save: the file it wrote is not taken.
TEST_F(AllWriters, AnEncoderThatExitsWithAnErrorOrIsKilledFailsTheSave)
{
    TempDir tools;
    // The output is the argument after "-o" (flac) or the last one (the MP3 encoder).
    const std::string szWrite = "out=; prev=; for a; do [ \"$prev\" = -o ] && out=$a; prev=$a; done; "
                                "[ -n \"$out\" ] || out=$a; cat > \"$out\"; ";
    const std::pair<std::string, std::string> endings[] = {
        {"echo 'disk on fire' >&2; exit 3", " failed: disk on fire"},
        {"kill -9 $$", " failed"},
    };
    const std::pair<std::string, std::string> encoders[] = {{"keep.mp3", "the MP3 encoder"}, {"keep.flac", "flac"}};
    for (const auto& [szEnding, szReason] : endings) {
        const std::string szScript = tools.File("enc");
        std::ofstream(szScript) << "#!/bin/sh\n" << szWrite << szEnding << "\n";
        ::chmod(szScript.c_str(), 0755);
        LComponents::SetPath(LComponents::kMp3Encoder, szScript);
        LComponents::SetPath("flac", szScript);
        for (const auto& [szName, szWho] : encoders) {
            SCOPED_TRACE(szName + ": " + szEnding);
            TempDir dir;
            const Bytes vOld(100, 'o');
            testsupport::WriteFileBytes(dir.File(szName), vOld);
            SaveProcess save(Ramp(10000, 2).Get(), dir.File(szName));
            EXPECT_EQ(save.Run(), 2);
            EXPECT_EQ(save.szError, "writing the file failed: " + szWho + szReason);
            EXPECT_EQ(testsupport::ReadFileBytes(dir.File(szName)), vOld);
            EXPECT_EQ(FilesIn(dir), 1u);
        }
    }
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
