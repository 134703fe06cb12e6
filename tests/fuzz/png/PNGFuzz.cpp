/// \file
/// The entry that libFuzzer calls for each input.

#include "PNGFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    fuzzPNG(bytes, size);
    return 0;
}
