// What a waveform display needs to draw a document: a source over it and its cuts.
#pragma once

#include <memory>

#include "ui/LWaveColumns.h"

class LCutListAudio;

std::shared_ptr<LWaveContent> LWaveContentOf(const LCutListAudio& doc);
