// Opening a verb's input sound file, with the one way of saying why it cannot be read.
#pragma once

#include <string>

#include "core/LSoundSourceBase.h"

struct LAudioFileDetails;

// The file as a source; null, after "sonitra-cli: [szWho: ]PATH: why" on stderr, when it cannot
// be read. Fills *pDetails when given.
LSoundSourcePtr LCliOpenSound(const std::string& szPath, LAudioFileDetails* pDetails = nullptr,
                              const std::string& szWho = std::string());
