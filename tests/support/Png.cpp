/// \file
/// PNG files through libpng's simplified interface.

#include "support/Png.h"

#include <png.h>

namespace
{

png_image rgbaHeader()
{
    png_image header = png_image();
    header.version = PNG_IMAGE_VERSION;
    return header;
}

} // namespace

bool test::writePng(const std::string &path, const RgbaImage &image)
{
    png_image header = rgbaHeader();
    header.width = static_cast<png_uint_32>(image.width);
    header.height = static_cast<png_uint_32>(image.height);
    header.format = PNG_FORMAT_RGBA;
    // A negative stride says that the lowest row comes first.
    return png_image_write_to_file(&header, path.c_str(), 0, image.bytes.data(), -4 * image.width, nullptr) !=
           0;
}

bool test::readPng(const std::string &path, RgbaImage &image)
{
    png_image header = rgbaHeader();
    if (!png_image_begin_read_from_file(&header, path.c_str()))
    {
        return false;
    }
    header.format = PNG_FORMAT_RGBA;
    RgbaImage read(static_cast<int>(header.width), static_cast<int>(header.height));
    if (!png_image_finish_read(&header, nullptr, read.bytes.data(), -4 * read.width, nullptr))
    {
        png_image_free(&header);
        return false;
    }
    image = std::move(read);
    return true;
}
