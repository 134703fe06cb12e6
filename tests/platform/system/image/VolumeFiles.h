#ifndef TESTS_PLATFORM_SYSTEM_IMAGE_VOLUMEFILES_H
#define TESTS_PLATFORM_SYSTEM_IMAGE_VOLUMEFILES_H

/// \file
/// Builds small image files byte by byte, apart from the code that reads them.

#include <zlib.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

template <class T>
void put(Bytes &bytes, std::size_t at, T value, bool swapped = false)
{
    std::uint8_t raw[sizeof(T)];
    std::memcpy(raw, &value, sizeof(T));
    for(std::size_t i = 0; i < sizeof(T); ++i)
        bytes[at + i] = raw[swapped ? sizeof(T) - 1 - i : i];
}

/// A NIfTI-1 file of the given voxels; `bits` a voxel, sizes of 0 are left out behind the last.
inline Bytes niftiFile(std::vector<std::int16_t> dims, std::int16_t dataType, std::int16_t bits,
                       const Bytes &voxels, bool swapped = false)
{
    Bytes file(352, 0);
    put<std::int32_t>(file, 0, 348, swapped);
    put<std::int16_t>(file, 40, static_cast<std::int16_t>(dims.size()), swapped);
    for(std::size_t i = 0; i < 7; ++i)
        put<std::int16_t>(file, 42 + 2 * i, i < dims.size() ? dims[i] : std::int16_t(1), swapped);
    put<std::int16_t>(file, 70, dataType, swapped);
    put<std::int16_t>(file, 72, bits, swapped);
    const float spacing[4] = {1.f, 0.5f, 0.75f, 2.f};
    for(std::size_t i = 0; i < 4; ++i)
        put<float>(file, 76 + 4 * i, spacing[i], swapped);
    put<float>(file, 108, 352.f, swapped);
    std::memcpy(file.data() + 344, "n+1", 4);
    file.insert(file.end(), voxels.begin(), voxels.end());
    return file;
}

template <class T>
Bytes asBytes(const std::vector<T> &values, bool swapped = false)
{
    Bytes bytes(values.size() * sizeof(T));
    for(std::size_t i = 0; i < values.size(); ++i)
        put<T>(bytes, i * sizeof(T), values[i], swapped);
    return bytes;
}

template <class T>
std::vector<T> fromBytes(const Bytes &bytes)
{
    std::vector<T> values(bytes.size() / sizeof(T));
    if(!values.empty())
        std::memcpy(values.data(), bytes.data(), values.size() * sizeof(T));
    return values;
}

inline Bytes deflated(const Bytes &bytes, int windowBits)
{
    z_stream stream = {};
    deflateInit2(&stream, 9, Z_DEFLATED, windowBits, 8, Z_DEFAULT_STRATEGY);
    Bytes out(bytes.size() + bytes.size() / 100 + 200);
    stream.next_in = const_cast<Bytef *>(bytes.data());
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = out.data();
    stream.avail_out = static_cast<uInt>(out.size());
    deflate(&stream, Z_FINISH);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    return out;
}

inline Bytes gzipped(const Bytes &bytes)
{
    return deflated(bytes, 15 + 16);
}

inline void putBig32(Bytes &bytes, std::uint32_t value)
{
    for(int shift = 24; shift >= 0; shift -= 8)
        bytes.push_back(static_cast<std::uint8_t>(value >> shift));
}

inline void pngChunk(Bytes &file, const char *type, const Bytes &data)
{
    putBig32(file, static_cast<std::uint32_t>(data.size()));
    Bytes checked(type, type + 4);
    checked.insert(checked.end(), data.begin(), data.end());
    file.insert(file.end(), checked.begin(), checked.end());
    putBig32(file, static_cast<std::uint32_t>(crc32(0, checked.data(), static_cast<uInt>(checked.size()))));
}

/// A PNG file of the given scan lines, each with its filter byte ahead; `between` are chunks between IHDR and
/// IDAT.
inline Bytes pngFile(std::uint32_t width, std::uint32_t height, std::uint8_t bits, std::uint8_t colourType,
                     const Bytes &lines, std::vector<std::pair<const char *, Bytes>> between = {},
                     bool interlaced = false)
{
    Bytes file = {0x89, 'P', 'N', 'G', 13, 10, 26, 10};
    Bytes header;
    putBig32(header, width);
    putBig32(header, height);
    header.insert(header.end(), {bits, colourType, 0, 0, static_cast<std::uint8_t>(interlaced ? 1 : 0)});
    pngChunk(file, "IHDR", header);
    for(const auto &chunk : between)
        pngChunk(file, chunk.first, chunk.second);
    pngChunk(file, "IDAT", deflated(lines, 15));
    pngChunk(file, "IEND", {});
    return file;
}

inline Bytes textBytes(const std::string &text)
{
    return Bytes(text.begin(), text.end());
}

#endif
