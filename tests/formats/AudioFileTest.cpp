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
        {"text.txt", Bytes(50, 'x'), "not a known audio file format (known: WAV, Other, FLAC, OGG)"},
        {"cut.wav", Bytes(vWav.begin(), vWav.begin() + 30), "damaged WAV file: format chunk cut short"},
    };
    for (const auto& [szName, vBytes, szReason] : cases) {
        testsupport::WriteFileBytes(dir.File(szName), vBytes);
        EXPECT_TRUE(LAudioFile::OpenSource(dir.File(szName), &szError)->IsError()) << szName;
        EXPECT_EQ(szError, szReason);
    }
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
    EXPECT_EQ(unknown.szError, "unknown file type '.xyz' (known: WAV, Other, FLAC, OGG)");
    SaveProcess noFolder(Ramp(10, 1).Get(), dir.File("none/x.wav"));
    EXPECT_EQ(noFolder.Run(), 2);
    EXPECT_EQ(noFolder.szError, "cannot write the file: No such file or directory");

    EXPECT_EQ(testsupport::ReadFileBytes(szPath), vOld);
    EXPECT_EQ(FilesIn(dir), 1u);
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
