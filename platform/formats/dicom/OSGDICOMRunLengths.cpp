/// \file
/// Run lengths, each read checked against the end of its fragment.

#include "OSGDICOMRunLengths.h"

#include <algorithm>

OSG_BEGIN_NAMESPACE

namespace dicom
{

namespace
{

/// A count of segments and the places of 15, of four bytes each.
constexpr std::size_t HeadBytes = 64;
constexpr std::size_t MaxSegments = 15;

constexpr std::uint32_t Item = 0xe000fffe;

std::uint32_t numberAt(const std::uint8_t *bytes)
{
    return bytes[0] | std::uint32_t(bytes[1]) << 8 | std::uint32_t(bytes[2]) << 16 | std::uint32_t(bytes[3]) << 24;
}

/// Takes the next item; false at the end of the items.
bool nextItem(const std::uint8_t *&items, std::size_t &size, const std::uint8_t *&bytes, std::size_t &length)
{
    if(size < 8 || numberAt(items) != Item || numberAt(items + 4) > size - 8)
        return false;
    length = numberAt(items + 4);
    bytes = items + 8;
    items += 8 + length;
    size -= 8 + length;
    return true;
}

/// Writes `count` bytes, `step` apart. False where the segment ends ahead of them.
bool unpackSegment(const std::uint8_t *in, const std::uint8_t *end, std::uint8_t *out, std::size_t step,
                   std::size_t count)
{
    std::size_t at = 0;
    while(at < count)
    {
        if(in == end)
            return false;
        const std::uint8_t control = *in++;
        if(control == 128)
            continue;
        const bool repeats = control > 128;
        const std::size_t run = std::min<std::size_t>(repeats ? 257 - control : control + 1, count - at);
        if(std::size_t(end - in) < (repeats ? 1 : run))
            return false;
        for(std::size_t i = 0; i < run; ++i)
            out[(at + i) * step] = in[repeats ? 0 : i];
        in += repeats ? 1 : run;
        at += run;
    }
    return true;
}

bool unpackFrame(const std::uint8_t *bytes, std::size_t length, std::size_t pixels, std::size_t sampleBytes,
                 std::uint8_t *out)
{
    if(length < HeadBytes || numberAt(bytes) != sampleBytes || sampleBytes > MaxSegments)
        return false;
    const std::uint16_t one = 1;
    const bool machineIsBig = *reinterpret_cast<const std::uint8_t *>(&one) == 0;
    for(std::size_t plane = 0; plane < sampleBytes; ++plane)
    {
        const std::size_t begin = numberAt(bytes + 4 * (plane + 1));
        const std::size_t end = plane + 1 < sampleBytes ? numberAt(bytes + 4 * (plane + 2)) : length;
        if(begin < HeadBytes || begin > end || end > length)
            return false;
        const std::size_t byte = machineIsBig ? plane : sampleBytes - 1 - plane;
        if(!unpackSegment(bytes + begin, bytes + end, out + byte, sampleBytes, pixels))
            return false;
    }
    return true;
}

} // namespace

bool unpackRunLengths(const std::uint8_t *items, std::size_t size, std::size_t frames, std::size_t pixels,
                      std::size_t sampleBytes, std::uint8_t *out, std::string &fault)
{
    const std::uint8_t *bytes = nullptr;
    std::size_t length = 0;
    bool there = nextItem(items, size, bytes, length); // the offset table, which nothing here needs
    for(std::size_t frame = 0; frame < frames; ++frame)
    {
        there = there && nextItem(items, size, bytes, length);
        if(!there || !unpackFrame(bytes, length, pixels, sampleBytes, out + frame * pixels * sampleBytes))
        {
            fault = "the run lengths of frame " + std::to_string(frame + 1) + " make no picture";
            return false;
        }
    }
    return true;
}

} // namespace dicom

OSG_END_NAMESPACE
