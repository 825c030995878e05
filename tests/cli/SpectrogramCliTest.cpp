// End to end: `sonitra-cli spectrogram` writes a PNG that an independent reader (python's zlib)
// decodes, of the size asked for plus the axes, with a tone drawn in the row of its frequency.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "cli/LCliSpectroPicture.h"
#include "dsp/LSpectroColumns.h"
#include "support/CliTest.h"

namespace {

// Checks every chunk's CRC, inflates the image data and prints "width height" and then, for
// the column given, the row of its brightest pixel within the rows given.
const char kReader[] = R"(import struct, sys, zlib
data = open(sys.argv[1], 'rb').read()
assert data[:8] == b'\x89PNG\r\n\x1a\n'
pos, idat, w, h = 8, b'', 0, 0
while pos < len(data):
    n, kind = struct.unpack('>I4s', data[pos:pos + 8])
    body = data[pos + 8:pos + 8 + n]
    assert struct.unpack('>I', data[pos + 8 + n:pos + 12 + n])[0] == zlib.crc32(kind + body)
    if kind == b'IHDR':
        w, h, depth, colour = struct.unpack('>IIBB', body[:10])
        assert depth == 8 and colour == 2
    elif kind == b'IDAT':
        idat += body
    pos += 12 + n
raw = zlib.decompress(idat)
assert len(raw) == h * (3 * w + 1)
x, y0, y1 = int(sys.argv[2]), int(sys.argv[3]), int(sys.argv[4])
def luma(y):
    row = raw[y * (3 * w + 1) + 1:(y + 1) * (3 * w + 1)]
    r, g, b = row[3 * x:3 * x + 3]
    return 0.2126 * r + 0.7152 * g + 0.0722 * b
print(w, h, max(range(y0, y1), key=luma))
)";

class SpectrogramCli : public testsupport::CliTest
{
protected:
    // Width, height and the brightest row of column x between rows y0 and y1.
    bool ReadPng(const std::string& szPng, int x, int y0, int y1, int& w, int& h, int& y)
    {
        testsupport::WriteFileBytes(dir.File("read.py"), std::vector<uint8_t>(kReader, kReader + sizeof kReader - 1));
        std::string szOut;
        const std::string szCommand = "python3 " + dir.File("read.py") + " " + szPng + " " + std::to_string(x) + " " +
                                      std::to_string(y0) + " " + std::to_string(y1) + " 2>&1";
        if (testsupport::RunCommand(szCommand, &szOut) != 0) {
            ADD_FAILURE() << szOut;
            return false;
        }
        std::istringstream(szOut) >> w >> h >> y;
        return true;
    }
};

} // namespace

TEST_F(SpectrogramCli, DrawsAToneInTheRowOfItsFrequencyForEveryScale)
{
    if (!testsupport::HaveTool("python3"))
        GTEST_SKIP() << "python3 is not installed";
    const std::string szIn = dir.File("tone.wav");
    testsupport::WriteSimpleWav(szIn, 48000, 1, 16, testsupport::Sine16(48000, 1, 96000, 3000.0));
    for (LSpectroScale eScale : {SpectroLinear, SpectroLog, SpectroMel}) {
        const std::string szScale = LSpectroSettings::ScaleName(eScale);
        const std::string szPng = dir.File("tone-" + szScale + ".png");
        std::string szOut;
        ASSERT_EQ(Cli("spectrogram " + szIn + " " + szPng + " --size 300x200 --window 2048 --scale " + szScale, &szOut),
                  0)
            << szOut;
        const LCliSpectroLayout layout{300, 200, 1};
        LSpectroFrame frame;
        frame.nRows = layout.LaneRows();
        frame.nRate = 48000;
        LSpectroSettings settings;
        settings.eScale = eScale;
        const int nRow = LSpectroColumns(settings).RowsFor(frame, false).RowOf(3000.0);
        int w = 0, h = 0, y = 0;
        ASSERT_TRUE(ReadPng(szPng, LCliSpectroLayout::kLeft + 150, LCliSpectroLayout::kTop,
                            LCliSpectroLayout::kTop + 200, w, h, y));
        EXPECT_EQ(w, layout.GetWidth());
        EXPECT_EQ(h, layout.GetHeight());
        EXPECT_NEAR(y, LCliSpectroLayout::kTop + frame.nRows - 1 - nRow, 1) << szScale;
    }
}

TEST_F(SpectrogramCli, StereoGetsABandPerChannelAndLongFilesFoldBlocks)
{
    if (!testsupport::HaveTool("python3"))
        GTEST_SKIP() << "python3 is not installed";
    // Eight seconds at 48 kHz is six blocks: 80 columns of 4800 frames are read from samples,
    // 4 columns of 96000 frames from blocks; both pictures decode at their size.
    const std::string szIn = dir.File("stereo.wav");
    testsupport::WriteSimpleWav(szIn, 48000, 2, 16, testsupport::Sine16(48000, 2, 8 * 48000, 1000.0));
    for (const char* szSize : {"80x100", "4x100"}) {
        const std::string szPng = dir.File(std::string("stereo-") + szSize + ".png");
        std::string szOut;
        ASSERT_EQ(Cli("spectrogram " + szIn + " " + szPng + " --size " + szSize, &szOut), 0) << szOut;
        const LCliSpectroLayout layout{szSize[1] == 'x' ? 4 : 80, 100, 2};
        int w = 0, h = 0, y = 0;
        ASSERT_TRUE(ReadPng(szPng, LCliSpectroLayout::kLeft + 1, LCliSpectroLayout::kTop, LCliSpectroLayout::kTop + 100,
                            w, h, y));
        EXPECT_EQ(w, layout.GetWidth()) << szSize;
        EXPECT_EQ(h, layout.GetHeight()) << szSize;
    }
}

TEST_F(SpectrogramCli, RefusesBadArgumentsAndUnreadableInput)
{
    const std::string szIn = dir.File("short.wav");
    testsupport::WriteSimpleWav(szIn, 8000, 1, 16, testsupport::Sine16(8000, 1, 8000, 440.0));
    const std::string szPng = dir.File("x.png");
    std::string szOut;
    EXPECT_EQ(Cli("spectrogram " + szIn + " " + szPng + " --window 1000", &szOut), 64);
    EXPECT_NE(szOut.find("power of two"), std::string::npos) << szOut;
    EXPECT_EQ(Cli("spectrogram " + szIn + " " + szPng + " --scale bark", &szOut), 64);
    EXPECT_EQ(Cli("spectrogram " + szIn + " " + szPng + " --size 10", &szOut), 64);
    EXPECT_EQ(Cli("spectrogram " + szIn + " " + szPng + " --range 100,90000", &szOut), 64);
    EXPECT_EQ(Cli("spectrogram " + szIn, &szOut), 64);
    EXPECT_EQ(Cli("spectrogram " + dir.File("missing.wav") + " " + szPng, &szOut), 2);
    EXPECT_EQ(Cli("spectrogram " + szIn + " " + dir.File("no/such/folder/x.png"), &szOut), 2);
    EXPECT_EQ(Cli("spectrogram " + szIn + " " + szPng + " --range 0,4000 --scale mel --grey", &szOut), 0) << szOut;
}
