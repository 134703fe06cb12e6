/// \file
/// The lookup table of the colour filter as bytes.

#include "ShadingTable.h"

#include <algorithm>

namespace tessaly
{

namespace
{

/// The low byte of the truncated value.
osg::UInt8 truncatedByte(float value)
{
    const float scaled = value * 255.f;
    constexpr float Largest = 1e9f;
    const osg::Int32 whole = scaled == scaled ? osg::Int32(std::min(std::max(scaled, -Largest), Largest)) : 0;
    return osg::UInt8(osg::UInt32(whole) & 0xFFu);
}

/// Whether the sides multiply to the count, without an overflow of the product.
bool hasCount(osg::UInt32 width, osg::UInt32 height, osg::UInt32 depth, std::size_t count)
{
    if(width == 0 || height == 0 || depth == 0 || count == 0)
        return false;
    const osg::UInt64 layer = osg::UInt64(width) * height;
    return layer <= count && count % layer == 0 && count / layer == depth;
}

} // namespace

bool makeShadingTable(const std::vector<osg::Vec3f> &entries, osg::UInt32 width, osg::UInt32 height,
                      osg::UInt32 depth, ShadingTable &table)
{
    if(!hasCount(width, height, depth, entries.size()))
    {
        table.width = 1;
        table.height = 1;
        table.depth = 2;
        table.bytes = {0, 0, 0, 255, 255, 255};
        return false;
    }
    table.width = width;
    table.height = height;
    table.depth = depth;
    table.bytes.clear();
    table.bytes.reserve(3 * entries.size());
    for(const osg::Vec3f &entry : entries)
        for(int c = 0; c < 3; ++c)
            table.bytes.push_back(truncatedByte(entry[c]));
    return true;
}

} // namespace tessaly
