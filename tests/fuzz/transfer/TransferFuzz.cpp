/// \file
/// The entry that libFuzzer calls for each input.

#include "TransferFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    fuzzTransfer(bytes, size);
    return 0;
}
