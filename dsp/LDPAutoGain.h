// Automatic gain control in two passes. The first pass copies the input into a temporary file
// while measuring the level of every block; the second (LDPSRCAutoGain, from CreateSource) reads
// the copy back with a gain that brings each passage towards the target level. The gain is
// planned from the blocks around each one, so it falls before a loud passage arrives and never
// lifts a block above the target; near-silent blocks are not boosted on their own.
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
    static constexpr int32_t kDefaultTargetDb = -12;  // block RMS, dB of 16-bit full scale
    static constexpr int32_t kDefaultMaxGainDb = 12;  // the most a quiet passage is raised
    static constexpr int32_t kMaxCutDb = 24;          // the most a loud passage is lowered
    static constexpr int32_t kSilenceDb = -50;        // blocks below this are not measured
    static constexpr int32_t kBlocksPerSecond = 10;
    static constexpr int32_t kReachBlocks = 3;        // how far the plan looks each way

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
        ~Plan(); // removes the copy
    };

    // szTempFolder holds the temporary copy; it is removed when the last user lets go of it.
    LDPAutoGain(LSoundSourceBase* pInput, const std::string& szTempFolder, int32_t nTargetDb = kDefaultTargetDb,
                int32_t nMaxGainDb = kDefaultMaxGainDb);
    ~LDPAutoGain();

    // The first pass, from the input's start. Reports progress on the dialog when given one.
    // 0 done, 1 cancelled, 2 error (latched input, temporary file not written).
    int32_t Analyse(LProgressDialog* pDlg);
    // The second pass as a source (a latched silent source when Analyse has not succeeded).
    LSoundSourcePtr CreateSource();

    // Gains in dB per block from block levels in dB (below kSilenceDb: no say in the plan).
    static std::vector<double> PlanGainsDb(const std::vector<double>& vLevelsDb, int32_t nTargetDb, int32_t nMaxGainDb);

private:
    bool OpenCopy(class LFile& file, std::string& szPath);

    LSoundSourcePtr pInput;
    std::string szTempFolder;
    int32_t nTargetDb;
    int32_t nMaxGainDb;
    std::shared_ptr<Plan> pPlan;
};
