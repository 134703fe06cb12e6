/// \file
/// The entry that libFuzzer calls for each input.

#include "NRRDFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    fuzzNRRD(bytes, size);
    return 0;
}
