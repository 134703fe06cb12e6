/// \file
/// The entry that libFuzzer calls for each input.

#include "DATFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    fuzzDAT(bytes, size);
    return 0;
}
