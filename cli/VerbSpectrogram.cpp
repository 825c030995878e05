// sonitra-cli spectrogram IN OUT.png [--size WxH] [--window N] [--scale log|linear|mel] [--range S,E]
#include <cstdio>
#include <cstdlib>

#include "cli/LCliArgs.h"
#include "cli/LCliOpen.h"
#include "cli/LCliSpectroPicture.h"
#include "cli/LCliVerb.h"
#include "dsp/LSpectroColumns.h"
#include "formats/LPngWriter.h"

namespace {

const char kUsage[] =
    "usage: sonitra-cli spectrogram IN OUT.png [--size WxH] [--window N] [--scale log|linear|mel]\n"
    "                               [--range S,E] [--function F] [--db-range R] [--gain G] [--grey]\n"
    "\n"
    "Draws the spectrogram of IN as the editor shows it, with a frequency axis, a time axis and\n"
    "the level scale, and writes it to OUT.png. A stereo file gets one band per channel, left on top.\n"
    "\n"
    "  --size WxH      the spectrogram itself, in pixels; the axes go around it (default 1000x400)\n"
    "  --window N      window size, a power of two from 256 to 8192 (default: the editor's setting)\n"
    "  --scale S       frequency scale: log, linear or mel (default: the editor's setting)\n"
    "  --range S,E     the frames [S, E) to show (default: the whole file)\n"
    "  --function F    window function: hann, hamming, blackman-harris or rectangular\n"
    "  --db-range R    the levels shown, R dB below the top (20 to 200)\n"
    "  --gain G        dB added to every level before colouring (-60 to 100)\n"
    "  --grey          grey levels instead of the colour map\n"
    "\n"
    "Exit status: 0 done, 2 error, 64 wrong usage.";

struct Options
{
    std::string szIn;
    std::string szOut;
    int32_t nWidth = 1000;
    int32_t nHeight = 400;
    LCliFrameRange range;
    LSpectroSettings settings = LSpectroSettings::Load();
};

bool Usage(const std::string& szText)
{
    LCliError("spectrogram: " + szText + " (try sonitra-cli spectrogram --help)");
    return false;
}

bool TakeSize(const std::string& szValue, Options& opt)
{
    const size_t nX = szValue.find('x');
    return (nX != std::string::npos && LCliParseInt(szValue.substr(0, nX), 1, 8192, opt.nWidth) &&
            LCliParseInt(szValue.substr(nX + 1), 16, 4096, opt.nHeight)) ||
           Usage("--size takes WxH, from 1x16 to 8192x4096");
}

bool TakeOption(Options& opt, const std::string& szName, const std::string& szValue)
{
    LSpectroSettings& s = opt.settings;
    if (szName == "--size")
        return TakeSize(szValue, opt);
    if (szName == "--window")
        return (LCliParseInt(szValue, LSpectroSettings::kMinWindow, LSpectroSettings::kMaxWindow, s.nWindow) &&
                LSpectroSettings::IsValidWindow(s.nWindow)) ||
               Usage("--window takes a power of two from 256 to 8192");
    if (szName == "--scale")
        return LSpectroSettings::ParseScale(szValue, s.eScale) || Usage("--scale takes log, linear or mel");
    if (szName == "--function")
        return LSpectroSettings::ParseWindow(szValue, s.eWindow) ||
               Usage("--function takes hann, hamming, blackman-harris or rectangular");
    if (szName == "--db-range")
        return LCliParseInt(szValue, 20, 200, s.nRangeDb) || Usage("--db-range takes 20 to 200");
    if (szName == "--gain")
        return LCliParseInt(szValue, -60, 100, s.nGainDb) || Usage("--gain takes -60 to 100");
    if (szName == "--range")
        return opt.range.Parse(szValue) || Usage("--range takes two frame numbers S,E with S < E");
    return Usage("unknown option '" + szName + "'");
}

bool ParseArgs(const std::vector<std::string>& vArgs, Options& opt)
{
    std::vector<std::string> vFiles;
    for (size_t i = 0; i < vArgs.size(); ++i) {
        const std::string& s = vArgs[i];
        if (s == "--grey") {
            opt.settings.eColours = SpectroColoursGrey;
        } else if (s.size() > 2 && s[0] == '-' && s[1] == '-') {
            if (i + 1 >= vArgs.size())
                return Usage(s + " needs a value");
            if (!TakeOption(opt, s, vArgs[++i]))
                return false;
        } else {
            vFiles.push_back(s);
        }
    }
    if (vFiles.size() != 2)
        return Usage("needs exactly one input file and one output picture");
    opt.szIn = vFiles[0];
    opt.szOut = vFiles[1];
    return true;
}

// The columns as the editor's full view computes them: folded from reduced spectra when the
// columns are wide, from windows of samples when they are narrow.
bool Compute(LSoundSourceBase& src, const Options& opt, const LSpectroFrame& frame, LSpectroColumns& columns,
             std::vector<float>& vDb)
{
    vDb.assign(frame.GetCells(), 0.0f);
    if (!LSpectroColumns::UsesBlocks(frame))
        return columns.FromSource(src, frame, vDb.data(), nullptr);
    auto pBlocks = std::make_shared<LSpectroBlocks>(opt.settings.nWindow, src.GetChannels());
    if (!pBlocks->Analyze(src, opt.range.sEnd - opt.range.sStart, columns.GetAnalyzer(), nullptr, opt.range.sStart))
        return false;
    LSpectroFrame relative = frame;
    for (int64_t& s : relative.vEdges)
        s -= opt.range.sStart;
    const std::vector<LSpectroPiece> vPieces{{pBlocks, 0, opt.range.sEnd - opt.range.sStart, 1.0}};
    return columns.FromPieces(vPieces, relative, vDb.data(), nullptr);
}

int RunSpectrogram(const std::vector<std::string>& vArgs)
{
    Options opt;
    if (!ParseArgs(vArgs, opt))
        return CliUsage;
    LSoundSourcePtr pSource = LCliOpenSound(opt.szIn);
    if (!pSource)
        return CliError;
    const int32_t nLength = pSource->GetLength();
    if (!opt.range.Fit("spectrogram", nLength))
        return CliUsage;
    if (opt.range.sEnd <= opt.range.sStart) {
        LCliError(opt.szIn + ": holds no audio to draw");
        return CliError;
    }
    const uint8_t nChans = std::max<uint8_t>(pSource->GetChannels(), 1);
    const LCliSpectroLayout layout{opt.nWidth, opt.nHeight, nChans == 2 ? 2 : 1};
    LSpectroFrame frame;
    for (int x = 0; x <= opt.nWidth; ++x)
        frame.vEdges.push_back(opt.range.sStart + static_cast<int64_t>(opt.range.sEnd - opt.range.sStart) * x / opt.nWidth);
    frame.nRows = layout.LaneRows();
    frame.nRate = pSource->GetSampleRate();
    frame.nChans = nChans;
    frame.bPerChannel = nChans == 2;
    LSpectroColumns columns(opt.settings);
    std::vector<float> vDb;
    if (!Compute(*pSource, opt, frame, columns, vDb)) {
        LCliError(opt.szIn + ": could not be analysed");
        return CliError;
    }
    const LCliCanvas picture = LCliSpectroPicture(layout, vDb, columns.RowsFor(frame, LSpectroColumns::UsesBlocks(frame)),
                                                  opt.settings, {opt.range.sStart, opt.range.sEnd, frame.nRate});
    std::string szError;
    if (!LPngWriter::Write(opt.szOut, picture.GetWidth(), picture.GetHeight(), picture.GetRgb(), &szError)) {
        LCliError(opt.szOut + ": " + szError);
        return CliError;
    }
    return CliDone;
}

} // namespace

static LCliVerb verbSpectrogram("spectrogram", "draw a file's spectrogram as a PNG picture", kUsage, RunSpectrogram);
