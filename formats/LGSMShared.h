// The steps of the GSM full-rate codec that the encoder and the decoder share: the encoder runs
// the decoder's reconstruction so that both keep the same memory.
#pragma once

#include <cstdint>

namespace gsmshared {

inline constexpr int kFrameSamples = 160;
inline constexpr int kSubSamples = 40;
inline constexpr int kOrder = 8;
inline constexpr int kMinLag = 40;
inline constexpr int kMaxLag = 120;

// The coded long-term gains' values.
inline constexpr int16_t kQLB[4] = {3277, 11469, 21299, 32767};

// The coded log-area ratios of a frame back to their values.
void DecodeLARs(const int16_t* pLARc, int16_t* pLARpp);

// The reflection coefficients for one of the four stretches a frame's short-term filter works
// in (samples 0-12, 13-26, 27-39, 40-159), from the ratios of the previous and this frame.
void InterpolatedReflection(const int16_t* pLARppPrev, const int16_t* pLARpp, int nStretch, int16_t* pRp);
// Where stretch n starts; stretch 4 starts at the frame's end.
int StretchStart(int nStretch);

// The block maximum's code back to an exponent and a mantissa index, and the thirteen pulse codes
// back to pulse values.
void XmaxcToExpMant(int16_t xmaxc, int16_t& exp, int16_t& mant);
void InverseQuantize(const int16_t* pXMc, int16_t exp, int16_t mant, int16_t* pXMp);
// The excitation of a subframe: the pulses on grid Mc (every third sample from Mc), zeros between.
void PlaceOnGrid(int16_t Mc, const int16_t* pXMp, int16_t* pEp);

} // namespace gsmshared
