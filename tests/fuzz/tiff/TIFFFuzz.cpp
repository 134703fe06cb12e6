/// \file
/// The entry that libFuzzer calls for each input.

#include "TIFFFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    fuzzTIFF(bytes, size);
    return 0;
}
