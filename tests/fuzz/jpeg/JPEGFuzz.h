#ifndef TESTS_FUZZ_JPEG_JPEGFUZZ_H
#define TESTS_FUZZ_JPEG_JPEGFUZZ_H

/// \file
/// The JPEG reader over arbitrary bytes; what it accepts must be taken by the writer and read again.

#include <OpenSG/OSGJPEGCodec.h>

#include <cstdlib>

/// One run; aborts where the reader breaks a promise. No picture over 1 MiB is decoded.
inline void fuzzJPEG(const std::uint8_t *bytes, std::size_t size)
{
    osg::PixelData out;
    std::string error;
    if(!osg::decodeJPEG(bytes, size, "fuzz.jpg", out, error, 1 << 20))
    {
        if(error.rfind("fuzz.jpg: ", 0) != 0 || error.find('\n') != std::string::npos || !out.data.empty())
            std::abort();
        return;
    }
    if(out.data.size() !=
       std::size_t(out.width) * std::size_t(out.height) * osg::pixelChannels(out.pixelFormat))
        std::abort();
    osg::PixelView view;
    view.width = out.width;
    view.height = out.height;
    view.depth = 1;
    view.pixelFormat = out.pixelFormat;
    view.dataType = out.dataType;
    view.data = out.data.data();
    std::vector<std::uint8_t> file;
    osg::PixelData again;
    // libjpeg reads sides of up to 65535 but writes no more than 65500.
    if(out.width > 65500 || out.height > 65500)
        return;
    if(!osg::encodeJPEG(view, "fuzz.jpg", file, error) ||
       !osg::decodeJPEG(file.data(), file.size(), "fuzz.jpg", again, error) || again.width != out.width ||
       again.height != out.height || again.pixelFormat != out.pixelFormat)
        std::abort();
}

#endif
