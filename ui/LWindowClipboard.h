// The system clipboard: audio goes out as WAV data through "clipboard.wav" in the working
// folder, and WAV data from other programs comes in the same way.
#pragma once

#include <string>

class LCutListAudio;

namespace LWindowClipboard
{
// Puts the audio on the system clipboard as wave data; false when there is none or it fails.
bool RenderTo(const LCutListAudio& audio);
// Writes the system clipboard's wave data to "clipboard.wav" and names it in szPath; false
// when the clipboard holds none.
bool RenderFrom(std::string& szPath);
// Whether the system clipboard holds wave data.
bool HasWave();
} // namespace LWindowClipboard
