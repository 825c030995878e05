// The serial form of a cut list inside project files, little-endian and packed:
//   sample rate (4, signed) | channels (1) | number of cuts (4, unsigned)
//   then per cut: reference (2) | length (4) | gain (4, 8.24) | offset (4)       (14 bytes a cut)
// References in a file are the numbers of segment files kept with the project (65535 is
// silence); the writer and the reader are told how to turn tank references into those numbers
// and back.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "core/LCutListAudio.h"

class LByteReader;
class LByteWriter;

namespace LCutListSerial {

constexpr size_t kHeaderSize = 9;
constexpr size_t kCutSize = 14;
// A list of more cuts than this is taken for damage: no document is edited that far apart.
constexpr uint32_t kMaxCuts = 1u << 22;
constexpr int32_t kMaxSampleRate = 1000000;

// Maps a tank reference to the number written; false stops the writing (the segment could not
// be kept).
using RefOut = std::function<bool(uint16_t nTankRef, uint16_t& nStored)>;
// Maps a stored number to a tank reference the new cut takes over (it owns one reference of
// it, as LAudioCut::Adopt wants); the silent reference when the segment is gone.
using RefIn = std::function<uint16_t(uint16_t nStored)>;

bool Write(const LCutListAudio& doc, LByteWriter& out, const RefOut& mapRef);
// Fills doc (which is cleared first). False, with a reason, when the bytes end early or hold
// what no document can be: a rate outside 1..1000000, no channels, a negative
// length, gain or offset, a stretch past 2^31 frames, or a total past 2^31 - 1 frames.
bool Read(LByteReader& in, LCutListAudio& doc, const RefIn& mapRef, std::string* pszWhy = nullptr);

} // namespace LCutListSerial
