/// \file
/// Normals for meshes that have none, and vertices that are alike made one.

#include "OSGSceneData.h"

#include <algorithm>
#include <cmath>
#include <cstring>

OSG_BEGIN_NAMESPACE

namespace
{

/// Beyond this many triangles at one place all are averaged: comparing each with each would take too long.
constexpr std::size_t MaxCompared = 256;

/// Numbers of rows that are alike to the bit: rows get 0, 1, 2 ... in the order in which they come first.
class RowNumbers
{
  public:
    explicit RowNumbers(std::size_t width, std::size_t expected) : _width(width)
    {
        std::size_t size = 16;
        while(size < 2 * expected)
            size *= 2;
        _slots.assign(size, Empty);
    }

    /// Rows must not be more than expected.
    UInt32 numberOf(const Real32 *row)
    {
        const std::size_t mask = _slots.size() - 1;
        for(std::size_t slot = hash(row) & mask;; slot = (slot + 1) & mask)
        {
            if(_slots[slot] == Empty)
            {
                _slots[slot] = UInt32(_rows.size() / _width);
                _rows.insert(_rows.end(), row, row + _width);
                return _slots[slot];
            }
            if(std::memcmp(&_rows[_slots[slot] * _width], row, _width * sizeof(Real32)) == 0)
                return _slots[slot];
        }
    }
    std::size_t size() const { return _rows.size() / _width; }

  private:
    static constexpr UInt32 Empty = 0xFFFFFFFFu;

    std::size_t hash(const Real32 *row) const
    {
        UInt64 sum = 0;
        for(std::size_t i = 0; i < _width; ++i)
        {
            UInt32 bits;
            std::memcpy(&bits, row + i, sizeof(bits));
            sum = (sum ^ bits) * 0x9E3779B97F4A7C15u;
            sum ^= sum >> 29;
        }
        return std::size_t(sum);
    }

    std::size_t _width;
    std::vector<Real32> _rows;
    std::vector<UInt32> _slots; ///< a power of two of them, half empty
};

/// The values at the corners of the triangles, one behind the other.
template <class ValueT>
std::vector<ValueT> atCorners(const std::vector<ValueT> &values, const std::vector<UInt32> &corners)
{
    std::vector<ValueT> result;
    if(values.empty())
        return result;
    result.reserve(corners.size());
    for(const UInt32 corner : corners)
        result.push_back(values[corner]);
    return result;
}

Vec3d directionOf(const Vec3d &vector)
{
    const Real64 length = vector.length();
    return length > 0 && std::isfinite(length) ? vector / length : Vec3d(0, 0, 0);
}

Vec3d asDouble(const Pnt3f &p)
{
    return Vec3d(p.x(), p.y(), p.z());
}

/// What a triangle adds to the normals of its corners.
struct CornerPart
{
    Vec3d normal; ///< of the triangle, of length 1; zero where it has no area
    Real64 angle = 0;
};

std::vector<CornerPart> partsOf(const std::vector<Pnt3f> &corners)
{
    std::vector<CornerPart> parts(corners.size());
    for(std::size_t first = 0; first + 2 < corners.size(); first += 3)
    {
        const Vec3d p[3] = {asDouble(corners[first]), asDouble(corners[first + 1]),
                            asDouble(corners[first + 2])};
        const Vec3d normal = directionOf((p[1] - p[0]).cross(p[2] - p[0]));
        for(std::size_t i = 0; i < 3; ++i)
        {
            const Vec3d a = directionOf(p[(i + 1) % 3] - p[i]), b = directionOf(p[(i + 2) % 3] - p[i]);
            parts[first + i].normal = normal;
            parts[first + i].angle = std::acos(std::clamp(a.dot(b), -1.0, 1.0));
        }
    }
    return parts;
}

} // namespace

void addSmoothNormals(SceneMesh &mesh, Real32 creaseAngle)
{
    mesh.positions = atCorners(mesh.positions, mesh.triangles);
    mesh.colors = atCorners(mesh.colors, mesh.triangles);
    mesh.texCoords = atCorners(mesh.texCoords, mesh.triangles);
    const std::size_t count = mesh.positions.size();
    const std::vector<CornerPart> parts = partsOf(mesh.positions);

    // The corners of each place, one place behind the other.
    RowNumbers places(3, count);
    std::vector<UInt32> place(count), order(count);
    for(std::size_t i = 0; i < count; ++i)
    {
        const Pnt3f &p = mesh.positions[i];
        const Real32 row[3] = {p.x() + 0.f, p.y() + 0.f, p.z() + 0.f}; // -0 is at 0
        place[i] = places.numberOf(row);
    }
    std::vector<UInt32> begin(places.size() + 1, 0u);
    for(const UInt32 number : place)
        ++begin[number + 1];
    for(std::size_t i = 1; i < begin.size(); ++i)
        begin[i] += begin[i - 1];
    std::vector<UInt32> fill(begin.begin(), begin.end() - 1);
    for(std::size_t i = 0; i < count; ++i)
        order[fill[place[i]]++] = UInt32(i);

    const Real64 leastCosine = std::cos(Real64(creaseAngle)) - 1e-6;
    mesh.normals.assign(count, Vec3f(0, 0, 1));
    for(std::size_t group = 0; group + 1 < begin.size(); ++group)
    {
        const bool all = begin[group + 1] - begin[group] > MaxCompared;
        Vec3d shared(0, 0, 0);
        for(UInt32 i = begin[group]; all && i < begin[group + 1]; ++i)
            shared += parts[order[i]].normal * parts[order[i]].angle;
        for(UInt32 i = begin[group]; i < begin[group + 1]; ++i)
        {
            const CornerPart &own = parts[order[i]];
            Vec3d sum = shared;
            for(UInt32 j = begin[group]; !all && j < begin[group + 1]; ++j)
                if(own.normal.dot(parts[order[j]].normal) >= leastCosine)
                    sum += parts[order[j]].normal * parts[order[j]].angle;
            Vec3d normal = directionOf(sum);
            if(normal.length() == 0)
                normal = own.normal;
            if(normal.length() > 0) // else a triangle without area, of which nothing is seen
                mesh.normals[order[i]] = Vec3f(Real32(normal.x()), Real32(normal.y()), Real32(normal.z()));
        }
    }
    for(std::size_t i = 0; i < count; ++i)
        mesh.triangles[i] = UInt32(i);
}

void joinSceneVertices(SceneMesh &mesh)
{
    const bool hasNormals = !mesh.normals.empty(), hasColors = !mesh.colors.empty(),
               hasTexCoords = !mesh.texCoords.empty();
    SceneMesh joined;
    RowNumbers vertices(12, std::min(mesh.positions.size(), mesh.triangles.size()));
    for(UInt32 &index : mesh.triangles)
    {
        const Vec3f normal = hasNormals ? mesh.normals[index] : Vec3f();
        const Color4f color = hasColors ? mesh.colors[index] : Color4f();
        const Vec2f texCoord = hasTexCoords ? mesh.texCoords[index] : Vec2f();
        const Pnt3f position = mesh.positions[index];
        const Real32 row[12] = {position.x(), position.y(),  position.z(), normal.x(),
                                normal.y(),   normal.z(),    color.red(),  color.green(),
                                color.blue(), color.alpha(), texCoord.x(), texCoord.y()};
        index = vertices.numberOf(row);
        if(index < joined.positions.size())
            continue;
        joined.positions.push_back(position);
        if(hasNormals)
            joined.normals.push_back(normal);
        if(hasColors)
            joined.colors.push_back(color);
        if(hasTexCoords)
            joined.texCoords.push_back(texCoord);
    }
    mesh.positions.swap(joined.positions);
    mesh.normals.swap(joined.normals);
    mesh.colors.swap(joined.colors);
    mesh.texCoords.swap(joined.texCoords);
}

OSG_END_NAMESPACE
