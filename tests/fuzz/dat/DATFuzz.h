#ifndef TESTS_FUZZ_DAT_DATFUZZ_H
#define TESTS_FUZZ_DAT_DATFUZZ_H

/// \file
/// One run of the .dat reader over arbitrary bytes: text up to the first zero byte, voxels behind it.

#include <OpenSG/OSGDATCodec.h>

#include <algorithm>
#include <cstdlib>

/// Aborts where the reader breaks a promise. No volume over 16 MiB is decoded.
inline void fuzzDAT(const std::uint8_t *bytes, std::size_t size)
{
    const std::uint8_t *textEnd = std::find(bytes, bytes + size, std::uint8_t(0));
    const std::size_t textSize = static_cast<std::size_t>(textEnd - bytes);
    osg::DATHeader header;
    std::string error;
    if(!osg::parseDAT(bytes, textSize, "fuzz.dat", header, error))
    {
        if(error.rfind("fuzz.dat: ", 0) != 0 || error.find('\n') != std::string::npos)
            std::abort();
        return;
    }
    const std::size_t rawStart = std::min(textSize + 1, size);
    osg::PixelData out;
    if(!osg::decodeDAT(header, bytes + rawStart, size - rawStart, "fuzz.raw", out, error, 16 << 20))
    {
        if(error.rfind("fuzz.raw: ", 0) != 0 || error.find('\n') != std::string::npos || !out.data.empty())
            std::abort();
        return;
    }
    const std::size_t sample = out.dataType == osg::SampleUInt16 ? 2 : 1;
    if(out.data.size() != std::size_t(out.width) * std::size_t(out.height) * std::size_t(out.depth) *
                              osg::pixelChannels(out.pixelFormat) * sample)
        std::abort();
}

#endif
