#ifndef TESTS_FUZZ_DICOM_DICOMFUZZ_H
#define TESTS_FUZZ_DICOM_DICOMFUZZ_H

/// \file
/// The DICOM reader over arbitrary bytes.

#include <OSGDICOMCodec.h>

#include <cstdlib>

/// One run; aborts where the reader breaks a promise. Nothing over 16 MiB is decoded.
inline void fuzzDICOM(const std::uint8_t *bytes, std::size_t size)
{
    osg::PixelData out;
    std::string error;
    if(osg::decodeDICOM(bytes, size, "fuzz.dcm", out, error, 1 << 24))
    {
        if(out.data.size() != std::size_t(out.width) * std::size_t(out.height) * std::size_t(out.depth) *
                                  osg::pixelChannels(out.pixelFormat) *
                                  (out.dataType == osg::SampleUInt16 ? 2u : 1u))
            std::abort();
    }
    else if(error.rfind("fuzz.dcm: ", 0) != 0 || error.find('\n') != std::string::npos || !out.data.empty())
        std::abort();
}

#endif
