/// \file
/// The entry that libFuzzer calls for each input.

#include "DICOMFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    fuzzDICOM(bytes, size);
    return 0;
}
