#ifndef TESTS_FUZZ_PNG_PNGFUZZ_H
#define TESTS_FUZZ_PNG_PNGFUZZ_H

/// \file
/// The PNG reader over arbitrary bytes; what it accepts must survive a trip through the writer.

#include <OpenSG/OSGPNGCodec.h>

#include <zlib.h>

#include <cstdlib>

/// The bytes with the check sum of each whole chunk put right, so that changed bytes get past it.
inline std::vector<std::uint8_t> withCheckSums(const std::uint8_t *bytes, std::size_t size)
{
    std::vector<std::uint8_t> file(bytes, bytes + size);
    for(std::size_t at = 8; size >= 12 && at <= size - 12;)
    {
        const std::size_t length = (std::size_t(file[at]) << 24) | (std::size_t(file[at + 1]) << 16) |
                                   (std::size_t(file[at + 2]) << 8) | file[at + 3];
        if(length > size - 12 - at)
            break;
        const unsigned long sum = crc32(0, file.data() + at + 4, static_cast<uInt>(length + 4));
        for(std::size_t i = 0; i < 4; ++i)
            file[at + 8 + length + i] = static_cast<std::uint8_t>(sum >> (24 - 8 * i));
        at += 12 + length;
    }
    return file;
}

/// One run; aborts where the reader breaks a promise. No picture over 16 MiB is decoded.
inline void decodeOnce(const std::uint8_t *bytes, std::size_t size)
{
    osg::PixelData out;
    std::string error;
    if(!osg::decodePNG(bytes, size, "fuzz.png", out, error, 16 << 20))
    {
        if(error.rfind("fuzz.png: ", 0) != 0 || error.find('\n') != std::string::npos || !out.data.empty())
            std::abort();
        return;
    }
    osg::PixelView view;
    view.width = out.width;
    view.height = out.height;
    view.depth = out.depth;
    view.pixelFormat = out.pixelFormat;
    view.dataType = out.dataType;
    view.data = out.data.data();
    std::vector<std::uint8_t> file;
    osg::PixelData again;
    if(!osg::encodePNG(view, "fuzz.png", file, error) ||
       !osg::decodePNG(file.data(), file.size(), "fuzz.png", again, error) || again.data != out.data)
        std::abort();
}

/// The bytes as they are, and once more with their check sums put right.
inline void fuzzPNG(const std::uint8_t *bytes, std::size_t size)
{
    decodeOnce(bytes, size);
    const std::vector<std::uint8_t> file = withCheckSums(bytes, size);
    decodeOnce(file.data(), file.size());
}

#endif
