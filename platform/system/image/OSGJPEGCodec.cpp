/// \file
/// libjpeg reports errors by a call that must not return: whatever has a destructor lives outside of the
/// functions that it leaves by a long jump.

#include "OSGJPEGCodec.h"

#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <new>

#include <jpeglib.h>

#include <jerror.h>

OSG_BEGIN_NAMESPACE

namespace
{

constexpr int Quality = 95;

/// A block of 8 x 8 samples takes a bit in every Huffman-coded file.
constexpr std::uint64_t MaxHuffmanRatio = 8 * 64;

/// Arithmetic coding goes below that; real pictures don't come near this.
constexpr std::uint64_t MaxArithmeticRatio = 64 * MaxHuffmanRatio;

/// Each scan walks over the whole picture; no encoder writes this many.
constexpr int MaxScans = 200;

/// What the callbacks of libjpeg reach through its error manager, which comes first.
struct Errors
{
    jpeg_error_mgr manager;
    jmp_buf exit;
    char fault[JMSG_LENGTH_MAX];
    char warning[JMSG_LENGTH_MAX];
    bool dataEnded; ///< coded data ended ahead of the picture
};

struct Decoder
{
    Errors errors;
    jpeg_progress_mgr progress;
    jpeg_source_mgr source;
    jpeg_decompress_struct jpeg;
    const std::uint8_t *bytes;
    std::size_t size;
    const std::string *name;
    std::uint64_t maxBytes;
    PixelData *out;
    std::vector<std::uint8_t> *row; ///< of CMYK samples
    std::string *refusal;           ///< set where we refuse, not libjpeg
    bool ended;                     ///< the bytes ended ahead of the end marker
};

struct Encoder
{
    Errors errors;
    jpeg_destination_mgr destination;
    jpeg_compress_struct jpeg;
    const PixelView *in;
    std::vector<std::uint8_t> *out;
    std::vector<std::uint8_t> *row;
    std::uint8_t buffer[4096];
};

template <class Common>
Errors &errorsOf(Common *jpeg)
{
    return *reinterpret_cast<Errors *>(jpeg->err);
}

[[noreturn]] void leave(j_common_ptr jpeg)
{
    Errors &errors = errorsOf(jpeg);
    jpeg->err->format_message(jpeg, errors.fault);
    std::longjmp(errors.exit, 1);
}

/// Keeps the first warning; levels over -1 are talk.
void noteWarning(j_common_ptr jpeg, int level)
{
    Errors &errors = errorsOf(jpeg);
    if(level != -1)
        return;
    if(jpeg->err->msg_code == JWRN_HIT_MARKER)
        errors.dataEnded = true;
    if(jpeg->err->num_warnings++ == 0)
        jpeg->err->format_message(jpeg, errors.warning);
}

void prepareErrors(Errors &errors)
{
    jpeg_std_error(&errors.manager);
    errors.manager.error_exit = leave;
    errors.manager.emit_message = noteWarning;
    errors.manager.output_message = [](j_common_ptr) {};
    errors.fault[0] = errors.warning[0] = 0;
    errors.dataEnded = false;
}

Decoder &decoderOf(j_decompress_ptr jpeg)
{
    return *static_cast<Decoder *>(jpeg->client_data);
}

void ignore(j_decompress_ptr) {}

/// The bytes are all there from the start; who wants more gets an end marker.
boolean supplyEnd(j_decompress_ptr jpeg)
{
    static const JOCTET end[2] = {0xff, JPEG_EOI};
    decoderOf(jpeg).ended = true;
    jpeg->src->next_input_byte = end;
    jpeg->src->bytes_in_buffer = 2;
    return TRUE;
}

void skipBytes(j_decompress_ptr jpeg, long count)
{
    if(count <= 0)
        return;
    if(static_cast<unsigned long>(count) > jpeg->src->bytes_in_buffer)
    {
        supplyEnd(jpeg);
        return;
    }
    jpeg->src->next_input_byte += count;
    jpeg->src->bytes_in_buffer -= static_cast<std::size_t>(count);
}

void stopEndlessScans(j_common_ptr jpeg)
{
    if(reinterpret_cast<j_decompress_ptr>(jpeg)->input_scan_number > MaxScans)
    {
        std::snprintf(errorsOf(jpeg).fault, sizeof(Errors::fault), "more than %d scans", MaxScans);
        std::longjmp(errorsOf(jpeg).exit, 1);
    }
}

/// Where libjpeg reads.
std::size_t position(const Decoder &d)
{
    return d.ended ? d.size : d.size - d.source.bytes_in_buffer;
}

/// Takes the size and kind of the picture over and makes room for it. No long jump starts in here.
bool prepare(Decoder &d)
{
    const std::uint64_t width = d.jpeg.image_width, height = d.jpeg.image_height;
    const std::uint64_t ratio = d.jpeg.arith_code ? MaxArithmeticRatio : MaxHuffmanRatio;
    if(width * height / ratio > d.size)
    {
        *d.refusal = *d.name + ": byte " + std::to_string(position(d)) + ": " + std::to_string(width) +
                     " x " + std::to_string(height) + " pixels can't be in a file of " +
                     std::to_string(d.size) + " bytes";
        return false;
    }
    const bool grey = d.jpeg.out_color_space == JCS_GRAYSCALE;
    d.out->width = static_cast<int>(width);
    d.out->height = static_cast<int>(height);
    d.out->depth = 1;
    d.out->pixelFormat = grey ? PixelL : PixelRGB;
    d.out->dataType = SampleUInt8;
    return allocatePixels(d.out->data, width * height * (grey ? 1 : 3), d.maxBytes, *d.name, *d.refusal) &&
           (d.jpeg.out_color_space != JCS_CMYK ||
            allocatePixels(*d.row, width * 4, d.maxBytes, *d.name, *d.refusal));
}

/// Ink to light. Files with Adobe's marker hold the light that each ink lets through, all others the ink.
void takeCMYK(const std::uint8_t *cmyk, bool light, std::size_t width, std::uint8_t *rgb)
{
    const unsigned flip = light ? 0 : 255;
    for(std::size_t x = 0; x < width; ++x)
    {
        const unsigned black = cmyk[4 * x + 3] ^ flip;
        for(std::size_t c = 0; c < 3; ++c)
            rgb[3 * x + c] = static_cast<std::uint8_t>(((cmyk[4 * x + c] ^ flip) * black + 127) / 255);
    }
}

/// The steps that libjpeg may leave by a long jump.
bool decodeSteps(Decoder &d)
{
    if(setjmp(d.errors.exit))
        return false;
    jpeg_create_decompress(&d.jpeg);
    d.jpeg.client_data = &d;
    d.jpeg.src = &d.source;
    d.jpeg.progress = &d.progress;
    jpeg_read_header(&d.jpeg, TRUE);
    if(d.jpeg.jpeg_color_space == JCS_CMYK || d.jpeg.jpeg_color_space == JCS_YCCK)
        d.jpeg.out_color_space = JCS_CMYK;
    else
        d.jpeg.out_color_space = d.jpeg.num_components == 1 ? JCS_GRAYSCALE : JCS_RGB;
    if(!prepare(d))
        return false;
    jpeg_start_decompress(&d.jpeg);
    const std::size_t row = d.jpeg.output_width * (d.out->pixelFormat == PixelL ? 1u : 3u);
    while(d.jpeg.output_scanline < d.jpeg.output_height)
    {
        const std::size_t y = d.jpeg.output_height - 1 - d.jpeg.output_scanline;
        std::uint8_t *to = d.out->data.data() + y * row;
        if(d.jpeg.out_color_space == JCS_CMYK)
        {
            JSAMPROW line = d.row->data();
            jpeg_read_scanlines(&d.jpeg, &line, 1);
            takeCMYK(line, d.jpeg.saw_Adobe_marker, d.jpeg.output_width, to);
        }
        else
            jpeg_read_scanlines(&d.jpeg, &to, 1);
    }
    jpeg_finish_decompress(&d.jpeg);
    return true;
}

Encoder &encoderOf(j_compress_ptr jpeg)
{
    return *static_cast<Encoder *>(jpeg->client_data);
}

/// Appends the first `count` bytes of the buffer.
void store(j_compress_ptr jpeg, std::size_t count)
{
    Encoder &e = encoderOf(jpeg);
    // Running out of memory must not unwind through C code.
    bool stored = true;
    try
    {
        e.out->insert(e.out->end(), e.buffer, e.buffer + count);
    }
    catch(const std::bad_alloc &)
    {
        stored = false;
    }
    if(!stored)
    {
        std::snprintf(e.errors.fault, sizeof(e.errors.fault), "no memory for the file");
        std::longjmp(e.errors.exit, 1);
    }
    e.destination.next_output_byte = e.buffer;
    e.destination.free_in_buffer = sizeof(e.buffer);
}

/// One row as L or RGB with 8 bits.
void takeRow(const PixelView &in, std::size_t y, std::uint8_t *to)
{
    const std::size_t channels = pixelChannels(in.pixelFormat), kept = channels < 3 ? 1 : 3;
    const std::size_t width = static_cast<std::size_t>(in.width);
    const std::size_t samples = width * channels;
    if(in.dataType == SampleUInt8)
    {
        const std::uint8_t *from = in.data + y * samples;
        for(std::size_t x = 0; x < width; ++x)
            for(std::size_t c = 0; c < kept; ++c)
                to[x * kept + c] = from[x * channels + c];
        return;
    }
    const std::uint8_t *from = in.data + y * samples * 2;
    for(std::size_t x = 0; x < width; ++x)
        for(std::size_t c = 0; c < kept; ++c)
        {
            std::uint16_t sample;
            std::memcpy(&sample, from + 2 * (x * channels + c), 2);
            to[x * kept + c] = static_cast<std::uint8_t>((sample + 128u) / 257u);
        }
}

bool encodeSteps(Encoder &e)
{
    if(setjmp(e.errors.exit))
        return false;
    jpeg_create_compress(&e.jpeg);
    e.jpeg.client_data = &e;
    e.jpeg.dest = &e.destination;
    const bool grey = pixelChannels(e.in->pixelFormat) < 3;
    e.jpeg.image_width = static_cast<JDIMENSION>(e.in->width);
    e.jpeg.image_height = static_cast<JDIMENSION>(e.in->height);
    e.jpeg.input_components = grey ? 1 : 3;
    e.jpeg.in_color_space = grey ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_set_defaults(&e.jpeg);
    jpeg_set_quality(&e.jpeg, Quality, TRUE);
    jpeg_start_compress(&e.jpeg, TRUE);
    while(e.jpeg.next_scanline < e.jpeg.image_height)
    {
        takeRow(*e.in, e.jpeg.image_height - 1 - e.jpeg.next_scanline, e.row->data());
        JSAMPROW line = e.row->data();
        jpeg_write_scanlines(&e.jpeg, &line, 1);
    }
    jpeg_finish_compress(&e.jpeg);
    return true;
}

} // namespace

bool decodeJPEG(const std::uint8_t *bytes, std::size_t size, const std::string &name, PixelData &out,
                std::string &error, std::uint64_t maxBytes)
{
    out = PixelData();
    error.clear();
    if(size < 3 || bytes[0] != 0xff || bytes[1] != 0xd8 || bytes[2] != 0xff)
    {
        error = name + ": byte 0: no JPEG signature";
        return false;
    }
    std::vector<std::uint8_t> row;
    Decoder d = {};
    prepareErrors(d.errors);
    d.jpeg.err = &d.errors.manager;
    d.bytes = bytes;
    d.size = size;
    d.name = &name;
    d.maxBytes = maxBytes;
    d.out = &out;
    d.row = &row;
    d.refusal = &error;
    d.progress.progress_monitor = stopEndlessScans;
    d.source.next_input_byte = bytes;
    d.source.bytes_in_buffer = size;
    d.source.init_source = ignore;
    d.source.fill_input_buffer = supplyEnd;
    d.source.skip_input_data = skipBytes;
    d.source.resync_to_restart = jpeg_resync_to_restart;
    d.source.term_source = ignore;

    bool done = decodeSteps(d);
    if(d.ended && (d.errors.dataEnded || !done) && error.empty())
    {
        done = false;
        error = name + ": byte " + std::to_string(size) + ": the file ends here";
    }
    else if(!done && error.empty())
        error = name + ": byte " + std::to_string(position(d)) + ": " + d.errors.fault;
    if(done && d.errors.warning[0])
        out.notices.push_back(name + ": " + d.errors.warning);
    else if(done && d.ended)
        out.notices.push_back(name + ": the end marker lacks");
    jpeg_destroy_decompress(&d.jpeg);
    if(!done)
        out = PixelData();
    return done;
}

bool encodeJPEG(const PixelView &in, const std::string &name, std::vector<std::uint8_t> &out,
                std::string &error)
{
    const unsigned channels = pixelChannels(in.pixelFormat);
    if(channels == 0 || (in.dataType != SampleUInt8 && in.dataType != SampleUInt16) || in.width < 1 ||
       in.height < 1 || in.depth > 1 || !in.data || in.width > JPEG_MAX_DIMENSION ||
       in.height > JPEG_MAX_DIMENSION)
    {
        error = name + ": JPEG holds L and RGB pictures of 8 bits with sides up to " +
                std::to_string(JPEG_MAX_DIMENSION) + ", not " + std::to_string(in.width) + " x " +
                std::to_string(in.height) + " x " + std::to_string(in.depth) + " pixels of format " +
                std::to_string(in.pixelFormat) + " and type " + std::to_string(in.dataType);
        return false;
    }
    out.clear();
    std::vector<std::uint8_t> row;
    if(!allocatePixels(row, std::uint64_t(in.width) * 3, DefaultMaxPixelBytes, name, error))
        return false;
    Encoder e = {};
    prepareErrors(e.errors);
    e.jpeg.err = &e.errors.manager;
    e.in = &in;
    e.out = &out;
    e.row = &row;
    e.destination.init_destination = [](j_compress_ptr jpeg) { store(jpeg, 0); };
    e.destination.empty_output_buffer = [](j_compress_ptr jpeg) -> boolean {
        store(jpeg, sizeof(Encoder::buffer));
        return TRUE;
    };
    e.destination.term_destination = [](j_compress_ptr jpeg) {
        store(jpeg, sizeof(Encoder::buffer) - encoderOf(jpeg).destination.free_in_buffer);
    };
    const bool done = encodeSteps(e);
    if(!done)
        error = name + ": " + e.errors.fault;
    jpeg_destroy_compress(&e.jpeg);
    return done;
}

OSG_END_NAMESPACE
