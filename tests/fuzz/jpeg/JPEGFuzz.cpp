/// \file
/// The entry that libFuzzer calls for each input.

#include "JPEGFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    fuzzJPEG(bytes, size);
    return 0;
}
