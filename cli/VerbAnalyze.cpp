// sonitra-cli analyze FILE [--range S,E] [--size N] [--peaks N] [--csv OUT] [--loudness]
#include <cstdio>
#include <cstdlib>

#include "cli/LCliArgs.h"
#include "cli/LCliOpen.h"
#include "cli/LCliVerb.h"
#include "dsp/LLoudnessMeter.h"
#include "dsp/LSpectrum.h"
#include "formats/LAudioFile.h"

namespace {

const char kUsage[] =
    "usage: sonitra-cli analyze FILE [--range S,E] [--size N] [--peaks N] [--csv OUT] [--loudness]\n"
    "\n"
    "Prints the strongest peaks of the spectrum of FILE, one per line: frequency in Hz and level\n"
    "in dB against full scale (a full-scale sine reads 0 dB). The spectrum is the average of\n"
    "Hann-windowed frames, half overlapped, over the range and the channels.\n"
    "\n"
    "  --range S,E   the frames [S, E) to analyse (default: the whole file)\n"
    "  --size N      frame size, a power of two from 512 to 32768 (default 4096)\n"
    "  --peaks N     how many peaks to print (default 10)\n"
    "  --csv OUT     also write the whole spectrum to OUT: one line \"hz,db\" per bin\n"
    "  --loudness    print instead the integrated loudness (LUFS), loudness range (LU) and true\n"
    "                peak (dBTP) of the range, as EBU R128 measures them\n"
    "\n"
    "Exit status: 0 done, 2 error, 64 wrong usage.";

struct Options
{
    std::string szFile;
    std::string szCsv;
    LCliFrameRange range;
    bool bLoudness = false;
    int32_t nSize = 4096;
    int32_t nPeaks = 10;
};

bool Usage(const std::string& szText)
{
    LCliError("analyze: " + szText + " (try sonitra-cli analyze --help)");
    return false;
}

bool TakeOption(Options& opt, const std::string& szName, const std::string& szValue)
{
    if (szName == "--size")
        return (LCliParseInt(szValue, LSpectrum::kMinSize, LSpectrum::kMaxSize, opt.nSize) &&
                LSpectrum::IsValidSize(opt.nSize)) ||
               Usage("--size takes a power of two from 512 to 32768");
    if (szName == "--peaks")
        return LCliParseInt(szValue, 1, 1000, opt.nPeaks) || Usage("--peaks takes 1 to 1000");
    if (szName == "--csv") {
        opt.szCsv = szValue;
        return true;
    }
    if (szName == "--range")
        return opt.range.Parse(szValue) || Usage("--range takes two frame numbers S,E with S < E");
    return Usage("unknown option '" + szName + "'");
}

bool WriteCsv(const LSpectrum& spectrum, const std::string& szPath)
{
    FILE* f = std::fopen(szPath.c_str(), "w");
    if (!f)
        return false;
    std::fprintf(f, "hz,db\n");
    const auto& vDb = spectrum.GetDb();
    for (size_t k = 0; k < vDb.size(); ++k)
        std::fprintf(f, "%.3f,%.2f\n", spectrum.BinHz(static_cast<int32_t>(k)), vDb[k]);
    return std::fclose(f) == 0;
}

// The command line shows no progress for a measurement: it only reads.
class LQuietReport : public LProgressReport
{
public:
    void SetText(const std::string&, int) override {}
    void SetProgress(double) override {}
    bool IsCancelled() override { return false; }
};

int PrintLoudness(const std::string& szFile, LSoundSourceBase& source, const LCliFrameRange& range)
{
    LQuietReport report;
    LLoudness loudness;
    source.SetPosition(range.sStart);
    if (LLoudnessMeter::Measure(report, source, range.sEnd - range.sStart, loudness) != LProgressReport::ResultDone) {
        LCliError(szFile + ": its loudness could not be measured");
        return CliError;
    }
    // Silence has no integrated loudness: every block falls under the gate.
    if (loudness.bMeasured)
        std::printf("Integrated loudness: %7.1f LUFS\n", loudness.fIntegrated);
    else
        std::printf("Integrated loudness:    -inf LUFS\n");
    std::printf("Loudness range:      %7.1f LU\n", loudness.fRange);
    if (loudness.fTruePeakDb > -1e8)
        std::printf("True peak:           %7.1f dBTP\n", loudness.fTruePeakDb);
    else
        std::printf("True peak:              -inf dBTP\n");
    return CliDone;
}

int RunAnalyze(const std::vector<std::string>& vArgsIn)
{
    Options opt;
    // The one option without a value.
    std::vector<std::string> vArgs;
    for (const std::string& s : vArgsIn) {
        if (s == "--loudness")
            opt.bLoudness = true;
        else
            vArgs.push_back(s);
    }
    if (!LCliReadOptions(
            vArgs, opt.szFile, [&](const std::string& n, const std::string& v) { return TakeOption(opt, n, v); }, Usage,
            "needs exactly one file"))
        return CliUsage;
    LSoundSourcePtr pSource = LCliOpenSound(opt.szFile);
    if (!pSource)
        return CliError;
    const int32_t nLength = pSource->GetLength();
    if (!opt.range.Fit("analyze", nLength))
        return CliUsage;
    if (opt.bLoudness)
        return PrintLoudness(opt.szFile, *pSource, opt.range);
    LSpectrum spectrum;
    if (!spectrum.Analyze(*pSource, opt.range.sStart, opt.range.sEnd, opt.nSize)) {
        LCliError(opt.szFile + ": could not be analysed");
        return CliError;
    }
    std::printf("%10s  %8s\n", "Hz", "dB");
    for (const LSpectrumPeak& peak : spectrum.Peaks(opt.nPeaks))
        std::printf("%10.2f  %8.2f\n", peak.fHz, peak.fDb);
    if (!opt.szCsv.empty() && !WriteCsv(spectrum, opt.szCsv)) {
        LCliError(opt.szCsv + ": cannot be written");
        return CliError;
    }
    return CliDone;
}

} // namespace

static LCliVerb verbAnalyze("analyze", "print the strongest peaks of a file's spectrum, or its loudness", kUsage, RunAnalyze);
