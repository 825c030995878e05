// The label of a compressor ratio setting ("1:1" ... "Limit"); an index beyond the list gives "?".
#pragma once

#include <cstdint>

const char* LCompressorRatioLabel(int32_t nIndex);
