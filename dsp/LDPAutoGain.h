// Automatic gain control in two passes. The first pass copies the input into a temporary file
// while measuring the level of every block; the second (LDPSRCAutoGain, from CreateSource) reads
// the copy back with a gain that brings each passage towards the target level, planned from
// what comes before and after it, so gains change smoothly and never overshoot a loud onset.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "core/LSoundSourceBase.h"

class LProgressDialog;

class LDPAutoGain
{
public:
    static constexpr int32_t kDefaultTargetDb = -12; // of 16-bit full scale, block RMS
    static constexpr int32_t kDefaultMaxGainDb = 12;

    // szTempFolder holds the temporary copy; it is removed when the last user lets go of it.
    LDPAutoGain(LSoundSourceBase* pInput, const std::string& szTempFolder, int32_t nTargetDb = kDefaultTargetDb,
                int32_t nMaxGainDb = kDefaultMaxGainDb);
    ~LDPAutoGain();

    // The first pass. Reports progress on the dialog when given one. 0 done, 1 cancelled, 2 error.
    int32_t Analyse(LProgressDialog* pDlg);
    // The second pass as a source (a latched silent source when Analyse has not succeeded).
    LSoundSourcePtr CreateSource();

    // What the first pass leaves for the second: the copy and one gain (8.24) per block.
    struct Plan
    {
        std::string szPath;
        int32_t nRate = 44100;
        uint8_t nChans = 1;
        int32_t nMaxAmplitude = 0;
        int32_t nLength = 0;
        int32_t nBlock = 1;
        std::vector<int32_t> vGains;
        ~Plan();
    };

private:
    LSoundSourcePtr pInput;
    std::string szTempFolder;
    int32_t nTargetDb;
    int32_t nMaxGainDb;
    std::shared_ptr<Plan> pPlan;
};
