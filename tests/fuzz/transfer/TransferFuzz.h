#ifndef TESTS_FUZZ_TRANSFER_TRANSFERFUZZ_H
#define TESTS_FUZZ_TRANSFER_TRANSFERFUZZ_H

/// \file
/// One run of the reader of transfer functions over arbitrary text, and of the fills of both forms of table.

#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "volume/TransferTable.h"

/// Aborts where the reader breaks a promise.
inline void fuzzTransfer(const std::uint8_t *bytes, std::size_t size)
{
    std::istringstream text(std::string(reinterpret_cast<const char *>(bytes), size));
    const tessaly::TransferPoints points = tessaly::readTransferPoints(text);
    // A list is never empty, and a point takes at least two characters of text.
    const std::size_t defaults = 2;
    if(points.alpha.empty() || points.color.empty() || points.alpha.size() > size / 2 + defaults ||
       points.color.size() > size / 2 + defaults)
        std::abort();

    std::vector<std::uint8_t> narrow(4 * tessaly::byteTableEntries);
    tessaly::fillOpacity(points.alpha, narrow.data());
    tessaly::fillColor(points.color, narrow.data());
    std::vector<float> sums(tessaly::byteTableEntries);
    tessaly::sumOpacity(narrow.data(), tessaly::byteTableEntries, sums.data());
    for(std::size_t i = 1; i < sums.size(); ++i)
        if(!(sums[i] >= sums[i - 1] && sums[i] <= 255.0f * 256.0f))
            std::abort();

    std::vector<osg::Real16> wide(4 * tessaly::halfTableEntries);
    tessaly::fillOpacity(points.alpha, wide.data());
    tessaly::fillColor(points.color, wide.data());
}

#endif
