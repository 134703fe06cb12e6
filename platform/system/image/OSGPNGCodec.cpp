/// \file
/// libpng reports errors by a long jump: whatever has a destructor lives outside of the functions that it
/// leaves.

#include "OSGPNGCodec.h"

#include <png.h>

#include <cstdio>
#include <cstring>

OSG_BEGIN_NAMESPACE

namespace
{

/// No deflate stream unpacks to more than 1032 times its size.
constexpr std::uint64_t MaxDeflateRatio = 1032;

struct Decoder
{
    const std::uint8_t *bytes;
    std::size_t size;
    std::size_t position;
    const std::string *name;
    std::uint64_t maxBytes;
    PixelData *out;
    std::vector<png_bytep> rows;
    std::string refusal; ///< set where we refuse, not libpng
    char fault[160];     ///< libpng's own words
    png_structp png;
    png_infop info;
};

struct Encoder
{
    const PixelView *in;
    std::vector<std::uint8_t> *out;
    std::vector<png_bytep> rows;
    char fault[160];
    png_structp png;
    png_infop info;
};

template <class Coder>
void fail(png_structp png, png_const_charp message)
{
    Coder *coder = static_cast<Coder *>(png_get_error_ptr(png));
    std::snprintf(coder->fault, sizeof(coder->fault), "%s", message);
    png_longjmp(png, 1);
}

void ignoreWarning(png_structp, png_const_charp) {}

void readBytes(png_structp png, png_bytep to, size_t count)
{
    Decoder *decoder = static_cast<Decoder *>(png_get_io_ptr(png));
    if(count > decoder->size - decoder->position)
    {
        decoder->position = decoder->size;
        png_error(png, "the file ends here");
    }
    std::memcpy(to, decoder->bytes + decoder->position, count);
    decoder->position += count;
}

void writeBytes(png_structp png, png_bytep from, size_t count)
{
    Encoder *encoder = static_cast<Encoder *>(png_get_io_ptr(png));
    // Running out of memory must not unwind through C code.
    bool stored = true;
    try
    {
        encoder->out->insert(encoder->out->end(), from, from + count);
    }
    catch(const std::bad_alloc &)
    {
        stored = false;
    }
    if(!stored)
        png_error(png, "no memory for the file");
}

void flushBytes(png_structp) {}

bool littleEndian()
{
    const std::uint16_t one = 1;
    std::uint8_t first;
    std::memcpy(&first, &one, 1);
    return first == 1;
}

/// False where the file is too short for what its header promises. No long jump starts in here.
bool plausible(Decoder &d, unsigned width, unsigned height, std::uint64_t packedRow)
{
    if((packedRow + 1) * height / MaxDeflateRatio <= d.size)
        return true;
    d.refusal = *d.name + ": byte 16: " + std::to_string(width) + " x " + std::to_string(height) +
                " pixels can't be in a file of " + std::to_string(d.size) + " bytes";
    return false;
}

/// Takes the size and kind of the picture over and makes room for it. No long jump starts in here.
bool prepare(Decoder &d, unsigned width, unsigned height, unsigned depth, unsigned channels,
             std::uint64_t row)
{
    static const unsigned formats[] = {0, PixelL, PixelLA, PixelRGB, PixelRGBA};
    d.out->width = static_cast<int>(width);
    d.out->height = static_cast<int>(height);
    d.out->depth = 1;
    d.out->pixelFormat = formats[channels];
    d.out->dataType = depth == 16 ? SampleUInt16 : SampleUInt8;
    if(!allocatePixels(d.out->data, row * height, d.maxBytes, *d.name, d.refusal))
        return false;
    d.rows.resize(height);
    for(std::size_t y = 0; y < height; ++y)
        d.rows[height - 1 - y] = d.out->data.data() + y * row;
    return true;
}

/// The steps that libpng may leave by a long jump.
bool decodeSteps(Decoder &d)
{
    if(setjmp(png_jmpbuf(d.png)))
        return false;
    png_set_read_fn(d.png, &d, readBytes);
    png_set_chunk_malloc_max(d.png, 1 << 20);
    png_set_chunk_cache_max(d.png, 16);
    png_read_info(d.png, d.info);

    const png_uint_32 width = png_get_image_width(d.png, d.info);
    const png_uint_32 height = png_get_image_height(d.png, d.info);
    // Before libpng makes room for its rows.
    if(!plausible(d, width, height, png_get_rowbytes(d.png, d.info)))
        return false;
    png_set_expand(d.png);
    if(png_get_bit_depth(d.png, d.info) == 16 && littleEndian())
        png_set_swap(d.png);
    png_set_interlace_handling(d.png);
    png_read_update_info(d.png, d.info);

    if(!prepare(d, width, height, png_get_bit_depth(d.png, d.info), png_get_channels(d.png, d.info),
                png_get_rowbytes(d.png, d.info)))
        return false;
    png_read_image(d.png, d.rows.data());
    png_read_end(d.png, nullptr);
    return true;
}

bool encodeSteps(Encoder &e)
{
    if(setjmp(png_jmpbuf(e.png)))
        return false;
    png_set_write_fn(e.png, &e, writeBytes, flushBytes);
    static const int colours[] = {0, PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_GRAY_ALPHA, PNG_COLOR_TYPE_RGB,
                                  PNG_COLOR_TYPE_RGB_ALPHA};
    png_set_IHDR(e.png, e.info, static_cast<png_uint_32>(e.in->width), static_cast<png_uint_32>(e.in->height),
                 e.in->dataType == SampleUInt16 ? 16 : 8, colours[pixelChannels(e.in->pixelFormat)],
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(e.png, e.info);
    if(e.in->dataType == SampleUInt16 && littleEndian())
        png_set_swap(e.png);
    png_write_image(e.png, e.rows.data());
    png_write_end(e.png, nullptr);
    return true;
}

} // namespace

bool decodePNG(const std::uint8_t *bytes, std::size_t size, const std::string &name, PixelData &out,
               std::string &error, std::uint64_t maxBytes)
{
    if(size < 8 || png_sig_cmp(bytes, 0, 8) != 0)
    {
        error = name + ": byte 0: no PNG signature";
        return false;
    }
    out = PixelData();
    Decoder d = {bytes, size, 0, &name, maxBytes, &out, {}, {}, {}, nullptr, nullptr};
    d.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &d, fail<Decoder>, ignoreWarning);
    d.info = d.png ? png_create_info_struct(d.png) : nullptr;
    const bool done = d.info && decodeSteps(d);
    if(!done)
    {
        error = d.refusal;
        if(error.empty())
            error = name + ": byte " + std::to_string(d.position) + ": " +
                    (d.fault[0] ? d.fault : "libpng has no memory");
        out = PixelData();
    }
    png_destroy_read_struct(d.png ? &d.png : nullptr, d.info ? &d.info : nullptr, nullptr);
    return done;
}

bool encodePNG(const PixelView &in, const std::string &name, std::vector<std::uint8_t> &out,
               std::string &error)
{
    const unsigned channels = pixelChannels(in.pixelFormat);
    if(channels == 0 || (in.dataType != SampleUInt8 && in.dataType != SampleUInt16) || in.width < 1 ||
       in.height < 1 || in.depth > 1 || !in.data)
    {
        error = name + ": PNG holds L, LA, RGB and RGBA pictures of 8 or 16 bits, not " +
                std::to_string(in.width) + " x " + std::to_string(in.height) + " x " +
                std::to_string(in.depth) + " pixels of format " + std::to_string(in.pixelFormat) +
                " and type " + std::to_string(in.dataType);
        return false;
    }
    out.clear();
    Encoder e = {&in, &out, {}, {}, nullptr, nullptr};
    const std::size_t height = static_cast<std::size_t>(in.height);
    const std::size_t row =
        static_cast<std::size_t>(in.width) * channels * (in.dataType == SampleUInt16 ? 2 : 1);
    e.rows.resize(height);
    for(std::size_t y = 0; y < height; ++y)
        e.rows[height - 1 - y] = const_cast<png_bytep>(in.data + y * row);

    e.png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &e, fail<Encoder>, ignoreWarning);
    e.info = e.png ? png_create_info_struct(e.png) : nullptr;
    const bool done = e.info && encodeSteps(e);
    if(!done)
        error = name + ": " + (e.fault[0] ? e.fault : "libpng has no memory");
    png_destroy_write_struct(e.png ? &e.png : nullptr, e.info ? &e.info : nullptr);
    return done;
}

OSG_END_NAMESPACE
