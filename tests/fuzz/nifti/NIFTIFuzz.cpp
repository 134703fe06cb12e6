/// \file
/// The entry that libFuzzer calls for each input.

#include "NIFTIFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    fuzzNIFTI(bytes, size);
    return 0;
}
