// What this build is: the version text the program shows, its number and where it came from.
#pragma once

namespace LVersion {
const char* Text();   // "Sonitra v 1.10"
const char* Number(); // "1.10.0"
const char* Build();  // the source revision and the day it was configured
} // namespace LVersion
