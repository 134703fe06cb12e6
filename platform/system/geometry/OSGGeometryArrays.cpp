#include "OSGGeometryArrays.h"

#include <algorithm>
#include <cstring>

#include "OSGGL.h"

OSG_BEGIN_NAMESPACE

namespace
{

template <class T>
T load(const UInt8 *data, std::size_t index)
{
    T value;
    std::memcpy(&value, data + index * sizeof(T), sizeof(T));
    return value;
}

struct IndexRange
{
    UInt32 low = 0xFFFFFFFFu;
    UInt32 high = 0;
};

/// Of the indices at `place` in the first `vertices` vertices.
template <class T>
IndexRange findRange(const IndexArray &indices, UInt32 place, UInt32 vertices)
{
    IndexRange range;
    const UInt8 *const data = indices.data + place * sizeof(T);
    for(std::size_t i = 0; i < vertices; ++i)
    {
        const UInt32 index = load<T>(data, i * indices.perVertex);
        range.low = std::min(range.low, index);
        range.high = std::max(range.high, index);
    }
    return range;
}

IndexRange findRange(const IndexArray &indices, UInt32 place, UInt32 vertices)
{
    switch(indices.bytes)
    {
    case 1: return findRange<UInt8>(indices, place, vertices);
    case 2: return findRange<UInt16>(indices, place, vertices);
    default: return findRange<UInt32>(indices, place, vertices);
    }
}

/// Vertices of a primitive of a type that can be joined with its like; 0 for all other types.
UInt32 verticesOfOne(UInt32 type)
{
    switch(type)
    {
    case GL_POINTS: return 1;
    case GL_LINES: return 2;
    case GL_TRIANGLES: return 3;
    case GL_QUADS: return 4;
    default: return 0;
    }
}

void append(std::vector<DrawRange> &ranges, const DrawRange &range)
{
    const UInt32 one = verticesOfOne(range.type);
    if(!ranges.empty() && one != 0)
    {
        DrawRange &last = ranges.back();
        if(last.type == range.type && last.first + last.count == range.first && last.count % one == 0)
        {
            last.count += range.count;
            return;
        }
    }
    ranges.push_back(range);
}

} // namespace

UInt32 IndexArray::operator[](UInt32 index) const
{
    switch(bytes)
    {
    case 1: return data[index];
    case 2: return load<UInt16>(data, index);
    default: return load<UInt32>(data, index);
    }
}

void countPrimitive(UInt32 type, UInt32 length, PrimitiveCounts &counts)
{
    ++counts.primitives;
    counts.vertices += length;
    switch(type)
    {
    case GL_POINTS: counts.points += length; break;
    case GL_LINES: counts.lines += length / 2; break;
    case GL_LINE_STRIP: counts.lines += length >= 2 ? length - 1 : 0; break;
    case GL_LINE_LOOP: counts.lines += length >= 2 ? length : 0; break;
    case GL_TRIANGLES: counts.triangles += length / 3; break;
    case GL_QUADS: counts.triangles += length / 4 * 2; break;
    case GL_QUAD_STRIP: counts.triangles += length >= 4 ? (length / 2 - 1) * 2 : 0; break;
    case GL_TRIANGLE_STRIP:
    case GL_TRIANGLE_FAN:
    case GL_POLYGON: counts.triangles += length >= 3 ? length - 2 : 0; break;
    default: break;
    }
}

DrawPlan planDrawing(const GeometryArrays &arrays)
{
    DrawPlan plan;
    const auto complain = [&plan](const char *problem) {
        if(plan.problem.empty())
            plan.problem = problem;
    };

    const VertexArray &positions = arrays.arrays[PositionRole];
    if(!positions.isUsed() || arrays.types.empty())
        return plan;
    const UInt32 vertices = arrays.indexed ? arrays.indices.vertices() : positions.size;

    // Lay the primitives one behind the other, as far as there are vertices.
    std::vector<UInt32> lengths = arrays.lengths;
    if(!arrays.hasLengths)
        lengths.assign(1, vertices);
    if(lengths.size() != arrays.types.size())
        complain("as many types as lengths are needed");
    const std::size_t primitives = std::min(lengths.size(), arrays.types.size());
    std::vector<DrawRange> laid;
    laid.reserve(primitives);
    UInt32 end = 0;
    for(std::size_t i = 0; i < primitives; ++i)
    {
        const UInt32 count = std::min(lengths[i], vertices - end);
        if(count < lengths[i])
            complain("the lengths ask for more vertices than there are");
        if(arrays.types[i] > GL_POLYGON)
            complain("a type is none of GL's");
        else if(count != 0)
            laid.push_back(DrawRange{arrays.types[i], end, count});
        end += count;
    }

    // End primitives ahead of the first position that is not there.
    if(arrays.indexed && end != 0 &&
       findRange(arrays.indices, UInt32(positions.place), end).high >= positions.size)
    {
        complain("an index is beyond the positions");
        for(DrawRange &range : laid)
        {
            UInt32 good = 0;
            while(good < range.count &&
                  arrays.indices[(range.first + good) * arrays.indices.perVertex + UInt32(positions.place)] <
                      positions.size)
                ++good;
            range.count = good;
        }
        laid.erase(std::remove_if(laid.begin(), laid.end(), [](const DrawRange &r) { return r.count == 0; }),
                   laid.end());
    }
    if(laid.empty())
        return plan;

    for(const DrawRange &range : laid)
    {
        countPrimitive(range.type, range.count, plan.counts);
        append(plan.ranges, range);
    }

    // Leave out what does not reach as far as the vertices in use. Where vertices were cut off, only those
    // that are left count.
    std::vector<IndexRange> used(arrays.indexed ? arrays.indices.perVertex : 1);
    for(UInt32 place = 0; place < used.size(); ++place)
    {
        for(const DrawRange &range : plan.ranges)
        {
            IndexRange here{range.first, range.first + range.count - 1};
            if(arrays.indexed)
            {
                IndexArray part = arrays.indices;
                part.data += std::size_t(range.first) * part.perVertex * part.bytes;
                here = findRange(part, place, range.count);
            }
            used[place].low = std::min(used[place].low, here.low);
            used[place].high = std::max(used[place].high, here.high);
        }
    }
    for(UInt32 role = 0; role < NumVertexArrayRoles; ++role)
    {
        const VertexArray &array = arrays.arrays[role];
        if(!array.isUsed())
            continue;
        if(used[std::size_t(array.place)].high < array.size)
            plan.usable |= 1u << role;
        else
            complain("a property has fewer values than the vertices need");
    }
    plan.minIndex = used[std::size_t(positions.place)].low;
    plan.maxIndex = used[std::size_t(positions.place)].high;
    return plan;
}

bool needsExpansion(const GeometryArrays &arrays)
{
    return arrays.indexed && arrays.indices.perVertex > 1;
}

void expandVertices(const GeometryArrays &arrays, const DrawPlan &plan, std::vector<UInt8> &store,
                    GeometryArrays &result)
{
    result = GeometryArrays();
    const UInt32 vertices =
        plan.ranges.empty() ? 0 : plan.ranges.back().first + plan.ranges.back().count;

    std::size_t offsets[NumVertexArrayRoles] = {};
    std::size_t total = 0;
    for(UInt32 role = 0; role < NumVertexArrayRoles; ++role)
    {
        if((plan.usable & (1u << role)) == 0)
            continue;
        offsets[role] = total;
        total += (std::size_t(arrays.arrays[role].valueBytes()) * vertices + 3) / 4 * 4;
    }
    store.assign(total, 0);

    for(UInt32 role = 0; role < NumVertexArrayRoles; ++role)
    {
        if((plan.usable & (1u << role)) == 0)
            continue;
        const VertexArray &from = arrays.arrays[role];
        UInt8 *const to = store.data() + offsets[role];
        const std::size_t bytes = from.valueBytes();
        for(const DrawRange &range : plan.ranges)
        {
            for(UInt32 i = range.first; i < range.first + range.count; ++i)
            {
                const UInt32 index =
                    arrays.indexed ? arrays.indices[i * arrays.indices.perVertex + UInt32(from.place)] : i;
                std::memcpy(to + bytes * i, from.data + bytes * index, bytes);
            }
        }
        result.arrays[role] = from;
        result.arrays[role].data = to;
        result.arrays[role].size = vertices;
        result.arrays[role].place = 0;
    }
    result.types = arrays.types;
    result.lengths = arrays.lengths;
    result.hasLengths = arrays.hasLengths;
}

OSG_END_NAMESPACE
