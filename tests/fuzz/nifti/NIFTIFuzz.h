#ifndef TESTS_FUZZ_NIFTI_NIFTIFUZZ_H
#define TESTS_FUZZ_NIFTI_NIFTIFUZZ_H

/// \file
/// One run of the NIfTI reader over arbitrary bytes, packed or not.

#include <OpenSG/OSGNIFTICodec.h>

#include <cstdlib>

/// Aborts where the reader breaks a promise. No volume over 16 MiB is decoded.
inline void fuzzNIFTI(const std::uint8_t *bytes, std::size_t size)
{
    osg::PixelData out;
    std::string error;
    if(!osg::decodeNIFTI(bytes, size, "fuzz.nii", out, error, 16 << 20))
    {
        if(error.rfind("fuzz.nii: ", 0) != 0 || error.find('\n') != std::string::npos || !out.data.empty())
            std::abort();
        return;
    }
    const std::size_t sample = out.dataType == osg::SampleUInt16 ? 2 : 1;
    if(out.data.size() != std::size_t(out.width) * std::size_t(out.height) * std::size_t(out.depth) *
                              osg::pixelChannels(out.pixelFormat) * sample)
        std::abort();
    for(const float spacing : out.spacing)
        if(!(spacing > 0.f))
            std::abort();
}

#endif
