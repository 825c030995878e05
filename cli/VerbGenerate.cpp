// sonitra-cli generate OUT --wave W [--freq HZ] [--to HZ] [--digits D] [--level DBFS] [--length TIME]
//                          [--rate N] [--channels N]
#include <cmath>
#include <cstdlib>

#include "cli/LCliArgs.h"
#include "cli/LCliVerb.h"
#include "dsp/LSRCTone.h"
#include "formats/LAudioFile.h"
#include "work/LProgressDialog.h"

namespace {

const char kUsage[] =
    "usage: sonitra-cli generate OUT --wave sine|square|triangle|sawtooth|white|pink|dtmf|sweep\n"
    "                            [--freq HZ] [--to HZ] [--digits 0-9*#ABCD] [--level DBFS]\n"
    "                            [--length TIME] [--rate N] [--channels N]\n"
    "\n"
    "Writes a test tone to OUT, in the format its extension names.\n"
    "\n"
    "  --wave W        the wave (default sine); dtmf dials --digits, sweep glides from --freq to --to\n"
    "  --freq HZ       frequency, or where the sweep starts (default 440)\n"
    "  --to HZ         where the sweep ends (default 4000)\n"
    "  --digits D      touch-tone digits: each gets an equal share of the length, two thirds tone\n"
    "  --level DBFS    peak level in dB below full scale, -120 to 0 (default -6)\n"
    "  --length TIME   seconds or h:mm:ss.mmm (default 1 s; dtmf: 0.2 s a digit)\n"
    "  --rate N        sample rate, 1000 to 196000 (default 44100)\n"
    "  --channels N    1 or 2 (default 1)\n"
    "\n"
    "Exit status: 0 done, 1 cancelled, 2 error, 64 wrong usage.";

bool Usage(const std::string& szText)
{
    LCliError("generate: " + szText + " (try sonitra-cli generate --help)");
    return false;
}

bool ParseDouble(const std::string& szText, double& f)
{
    char* pEnd = nullptr;
    f = std::strtod(szText.c_str(), &pEnd);
    return !szText.empty() && *pEnd == '\0' && std::isfinite(f);
}

bool TakeOption(LToneSettings& s, bool& bLength, const std::string& szName, const std::string& szValue)
{
    if (szName == "--wave")
        return LToneSettings::WaveByName(szValue, s.wave) ||
               Usage("--wave takes sine, square, triangle, sawtooth, white, pink, dtmf or sweep");
    if (szName == "--freq")
        return ParseDouble(szValue, s.fHz) || Usage("--freq takes a frequency in Hz");
    if (szName == "--to")
        return ParseDouble(szValue, s.fToHz) || Usage("--to takes a frequency in Hz");
    if (szName == "--level")
        return ParseDouble(szValue, s.fLevelDb) || Usage("--level takes a level in dBFS");
    if (szName == "--digits") {
        s.szDigits = szValue;
        return true;
    }
    if (szName == "--length")
        return (bLength = LCliParseTime(szValue, s.nLengthMs)) || Usage("--length takes a time");
    if (szName == "--rate")
        return LCliParseInt(szValue, 1000, 196000, s.nRate) || Usage("--rate takes 1000 to 196000 Hz");
    if (szName == "--channels") {
        int32_t n = 0;
        const bool bOk = LCliParseInt(szValue, 1, 2, n);
        s.nChans = static_cast<uint8_t>(n);
        return bOk || Usage("--channels takes 1 or 2");
    }
    return Usage("unknown option '" + szName + "'");
}

class LPRGenerate : public LProgressDialog
{
public:
    LPRGenerate(const std::string& szOut, const LToneSettings& s)
        : LProgressDialog("Generating " + szOut), szOut(szOut), settings(s)
    {
    }
    int32_t Process() override
    {
        LSoundSourcePtr pTone(new LSRCTone(settings));
        return LAudioFile::Save(*this, GetTitle(), pTone.Get(), szOut, settings.nRate, settings.nChans,
                                LAudioEncoding::Named(""), &szError);
    }
    std::string szError;

private:
    std::string szOut;
    LToneSettings settings;
};

int RunGenerate(const std::vector<std::string>& vArgs)
{
    LToneSettings s;
    bool bLength = false;
    std::string szOut;
    if (!LCliReadOptions(
            vArgs, szOut, [&](const std::string& n, const std::string& v) { return TakeOption(s, bLength, n, v); },
            Usage, "needs exactly one output file"))
        return CliUsage;
    if (!bLength && s.wave == LToneSettings::Dtmf)
        s.nLengthMs = static_cast<int32_t>(std::min<size_t>(s.szDigits.size(), 100000)) * 200;
    const std::string szProblem = s.Check();
    if (!szProblem.empty()) {
        Usage(szProblem);
        return CliUsage;
    }
    LPRGenerate generate(szOut, s);
    const int32_t nResult = generate.Run();
    if (nResult == LProgressDialog::ResultCancelled) {
        LCliError("generate: cancelled; " + szOut + " was not written");
        return CliCancelled;
    }
    if (nResult != LProgressDialog::ResultDone) {
        LCliError(szOut + ": " + generate.szError);
        return CliError;
    }
    return CliDone;
}

} // namespace

static LCliVerb verbGenerate("generate", "write a test tone, noise, touch-tone digits or a sweep", kUsage,
                             RunGenerate);
