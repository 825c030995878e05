// The file dialogs' filters for audio files, built from the audio-file door's list of formats so
// that a format is offered exactly where the door can read or write it.
#pragma once

#include <QString>

namespace LAudioFilters {
// "Audio Files" with every readable pattern, one filter per file type, then "All Files".
QString Open();
// The same for the formats that can be written.
QString Save();
} // namespace LAudioFilters
