// Per-channel levels of one block of audio, as the meters show them.
#pragma once

#include <cstdint>

struct LSoundLevels
{
    uint8_t nChans = 0;
    int8_t nLevel[256] = {};
};

// The player's meter: 10 log10 of the mean of (s >> 5)^2 over 8388626, in dB, -127..127.
void LComputePlayLevels(const int32_t* pSamples, int32_t nFrames, uint8_t nChans, LSoundLevels& levels);
int8_t LPlayLevelFromMeanSquare(uint64_t nMeanSquare);

// The recorder's meter: 20 log10 of the peak magnitude over 131072 (full scale reads about +12).
void LComputeRecordLevels(const int32_t* pSamples, int32_t nFrames, uint8_t nChans, LSoundLevels& levels);
int8_t LRecordLevelFromPeak(int64_t nPeak);
// Channel 0's level, or the larger of channels 0 and 1; -127 with no channels.
int8_t LLoudness(const LSoundLevels& levels);
