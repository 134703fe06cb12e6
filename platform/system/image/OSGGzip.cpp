/// \file
/// zlib's inflate over the members of a gzip file.

#include "OSGGzip.h"

#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <exception>

OSG_BEGIN_NAMESPACE

namespace
{

constexpr std::size_t ChunkSize = 64 * 1024;

/// Adds the part of a chunk that lies in the wanted range. `start` is the chunk's place in the unpacked file.
bool keepWanted(const std::uint8_t *chunk, std::uint64_t start, std::uint64_t length, std::uint64_t skip,
                std::uint64_t want, const std::string &name, std::uint64_t maxBytes,
                std::vector<std::uint8_t> &out, std::string &error)
{
    const std::uint64_t first = std::max(start, skip);
    const std::uint64_t end = std::min(start + length, skip + want);
    if(first >= end)
        return true;
    const std::size_t old = out.size();
    if(!allocatePixels(out, old + (end - first), maxBytes, name, error))
        return false;
    std::memcpy(out.data() + old, chunk + (first - start), static_cast<std::size_t>(end - first));
    return true;
}

} // namespace

bool isGzip(const std::uint8_t *bytes, std::size_t size)
{
    return size >= 2 && bytes[0] == 0x1f && bytes[1] == 0x8b;
}

bool unpackGzip(const std::uint8_t *bytes, std::size_t size, std::uint64_t skip, std::uint64_t want,
                bool stopEarly, const std::string &name, std::uint64_t maxBytes,
                std::vector<std::uint8_t> &out, std::uint64_t &total, std::string &error)
{
    out.clear();
    total = 0;
    z_stream stream = {};
    if(inflateInit2(&stream, 15 + 16) != Z_OK)
    {
        error = name + ": no memory for unpacking";
        return false;
    }
    // What is wanted is unpacked into one piece of memory; deflate packs no more than 1032 bytes into one, so a lying
    // header asks for no more than the file could hold.
    try
    {
        constexpr std::uint64_t MostPacked = 1032;
        out.reserve(static_cast<std::size_t>(std::min({want, std::uint64_t(size) * MostPacked, maxBytes})));
    }
    catch(const std::exception &)
    {
        error = name + ": no memory for unpacking";
    }
    std::vector<std::uint8_t> chunk(ChunkSize);
    std::size_t position = 0;
    bool done = false;
    while(error.empty() && !done)
    {
        if(stream.avail_in == 0)
        {
            const std::size_t given = std::min(size - position, std::size_t(1) << 30);
            stream.next_in = const_cast<Bytef *>(bytes + position);
            stream.avail_in = static_cast<uInt>(given);
            position += given;
        }
        stream.next_out = chunk.data();
        stream.avail_out = ChunkSize;
        const int result = inflate(&stream, Z_NO_FLUSH);
        const std::size_t at = position - stream.avail_in;
        const std::uint64_t length = ChunkSize - stream.avail_out;
        if(keepWanted(chunk.data(), total, length, skip, want, name, maxBytes, out, error))
        {
            total += length;
            if(total > maxBytes)
                error = name + ": packed byte " + std::to_string(at) +
                        ": unpacks to more than the limit of " + std::to_string(maxBytes) + " bytes";
            else if(stopEarly && out.size() == want)
                done = true;
            else if(result == Z_STREAM_END)
            {
                // One gzip file may follow another; anything else behind the end is left alone.
                done = !isGzip(bytes + at, size - at);
                if(!done)
                    inflateReset(&stream);
            }
            else if(result == Z_BUF_ERROR || (result == Z_OK && length == 0 && at == size))
                error = name + ": packed byte " + std::to_string(at) + ": the file ends here";
            else if(result != Z_OK)
                error = name + ": packed byte " + std::to_string(at) + ": " +
                        (stream.msg ? stream.msg : "broken data");
        }
    }
    inflateEnd(&stream);
    return error.empty();
}

OSG_END_NAMESPACE
