#include "OSGMeshShapes.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

OSG_BEGIN_NAMESPACE

namespace
{

struct Vertex
{
    Pnt3f position;
    Vec3f normal;
};

void addTriangle(Mesh &mesh, UInt32 a, UInt32 b, UInt32 c)
{
    // At poles and tips a quad is a triangle.
    const std::vector<Pnt3f> &p = mesh.positions;
    if(p[a] == p[b] || p[b] == p[c] || p[c] == p[a])
        return;
    mesh.triangles.insert(mesh.triangles.end(), {a, b, c});
}

/// Adds columns x rows quads. `vertex(column, row)` gives the corners; rows grow to the left of where columns
/// grow, seen against the normal.
template <class VertexF>
void addGrid(Mesh &mesh, UInt32 columns, UInt32 rows, const VertexF &vertex)
{
    const UInt32 first = UInt32(mesh.positions.size());
    for(UInt32 row = 0; row <= rows; ++row)
    {
        for(UInt32 column = 0; column <= columns; ++column)
        {
            const Vertex v = vertex(column, row);
            mesh.positions.push_back(v.position);
            mesh.normals.push_back(v.normal);
            mesh.texCoords.push_back(Vec2f(Real32(column) / Real32(columns), Real32(row) / Real32(rows)));
        }
    }
    for(UInt32 row = 0; row < rows; ++row)
    {
        for(UInt32 column = 0; column < columns; ++column)
        {
            const UInt32 corner = first + row * (columns + 1) + column;
            addTriangle(mesh, corner, corner + 1, corner + columns + 2);
            addTriangle(mesh, corner, corner + columns + 2, corner + columns + 1);
        }
    }
}

/// The plane through `center`, whose columns go along `across` and whose rows go along `up`, both whole
/// sides.
void addPlane(Mesh &mesh, const Vec3f &center, const Vec3f &across, const Vec3f &up, UInt32 columns,
              UInt32 rows)
{
    Vec3f normal = across.cross(up);
    if(normal.squareLength() > 0.f)
        normal.normalize();
    // Fractions on both sides of the middle mirror each other to the bit, so that the planes of a box meet.
    const auto fraction = [](UInt32 i, UInt32 count) {
        return (Real32(i) - Real32(count - i)) / (2.f * Real32(count));
    };
    addGrid(mesh, columns, rows, [&](UInt32 column, UInt32 row) {
        const Vec3f at = center + across * fraction(column, columns) + up * fraction(row, rows);
        return Vertex{Pnt3f(at[0], at[1], at[2]), normal};
    });
}

/// A full turn in `steps`; the last step is the first again.
Vec2f onCircle(UInt32 step, UInt32 steps)
{
    const double angle = 2.0 * 3.14159265358979323846 * double(step % steps) / double(steps);
    return Vec2f(Real32(std::cos(angle)), Real32(std::sin(angle)));
}

/// The disk about the y axis, looking up or down.
void addDisk(Mesh &mesh, Real32 y, Real32 radius, UInt32 sides, bool up)
{
    const UInt32 center = UInt32(mesh.positions.size());
    const Vec3f normal(0.f, up ? 1.f : -1.f, 0.f);
    mesh.positions.push_back(Pnt3f(0.f, y, 0.f));
    mesh.normals.push_back(normal);
    mesh.texCoords.push_back(Vec2f(0.5f, 0.5f));
    for(UInt32 i = 0; i <= sides; ++i)
    {
        const Vec2f at = onCircle(i, sides);
        mesh.positions.push_back(Pnt3f(at[1] * radius, y, at[0] * radius));
        mesh.normals.push_back(normal);
        mesh.texCoords.push_back(Vec2f(0.5f + at[1] * 0.5f, 0.5f + (up ? -at[0] : at[0]) * 0.5f));
    }
    for(UInt32 i = 0; i < sides; ++i)
    {
        if(up)
            addTriangle(mesh, center, center + 1 + i, center + 2 + i);
        else
            addTriangle(mesh, center, center + 2 + i, center + 1 + i);
    }
}

Vec2f texCoordsOnSphere(const Vec3f &direction)
{
    const Real32 turn = std::atan2(direction[0], direction[2]) / (2.f * Pi);
    const Real32 height = direction[1] < -1.f ? -1.f : direction[1] > 1.f ? 1.f : direction[1];
    return Vec2f(turn < 0.f ? turn + 1.f : turn, std::asin(height) / Pi + 0.5f);
}

} // namespace

Mesh meshOfPlane(Real32 xsize, Real32 ysize, UInt32 hor, UInt32 vert)
{
    Mesh mesh;
    addPlane(mesh, Vec3f(), Vec3f(xsize, 0.f, 0.f), Vec3f(0.f, ysize, 0.f), hor, vert);
    return mesh;
}

Mesh meshOfBox(Real32 xsize, Real32 ysize, Real32 zsize, UInt32 hor, UInt32 vert, UInt32 depth)
{
    Mesh mesh;
    const Vec3f x(xsize, 0.f, 0.f);
    const Vec3f y(0.f, ysize, 0.f);
    const Vec3f z(0.f, 0.f, zsize);
    addPlane(mesh, z * 0.5f, x, y, hor, vert);
    addPlane(mesh, x * 0.5f, -z, y, depth, vert);
    addPlane(mesh, z * -0.5f, -x, y, hor, vert);
    addPlane(mesh, x * -0.5f, z, y, depth, vert);
    addPlane(mesh, y * 0.5f, x, -z, hor, depth);
    addPlane(mesh, y * -0.5f, x, z, hor, depth);
    return mesh;
}

Mesh meshOfConicalFrustum(Real32 height, Real32 topRadius, Real32 bottomRadius, UInt32 sides, bool side,
                          bool top, bool bottom)
{
    Mesh mesh;
    if(side)
    {
        // The normal leans by the slope of the side, the same all around.
        Vec2f slope(height, bottomRadius - topRadius);
        if(slope.squareLength() > 0.f)
            slope.normalize();
        addGrid(mesh, sides, 1, [&](UInt32 column, UInt32 row) {
            const Vec2f at = onCircle(column, sides);
            const Real32 radius = row == 0 ? bottomRadius : topRadius;
            return Vertex{Pnt3f(at[1] * radius, row == 0 ? -height / 2.f : height / 2.f, at[0] * radius),
                          Vec3f(at[1] * slope[0], slope[1], at[0] * slope[0])};
        });
    }
    if(top && topRadius > 0.f)
        addDisk(mesh, height / 2.f, topRadius, sides, true);
    if(bottom && bottomRadius > 0.f)
        addDisk(mesh, -height / 2.f, bottomRadius, sides, false);
    return mesh;
}

Mesh meshOfTorus(Real32 inner, Real32 outer, UInt32 sides, UInt32 rings)
{
    Mesh mesh;
    addGrid(mesh, rings, sides, [&](UInt32 column, UInt32 row) {
        const Vec2f around = onCircle(column, rings);
        const Vec2f tube = onCircle(row, sides);
        const Vec3f normal(around[0] * tube[0], around[1] * tube[0], tube[1]);
        const Real32 distance = outer + inner * tube[0];
        return Vertex{Pnt3f(around[0] * distance, around[1] * distance, inner * tube[1]), normal};
    });
    return mesh;
}

Mesh meshOfLatLongSphere(UInt32 latitudes, UInt32 longitudes, Real32 radius)
{
    Mesh mesh;
    addGrid(mesh, longitudes, latitudes, [&](UInt32 column, UInt32 row) {
        const Vec2f around = onCircle(column, longitudes);
        const double angle = 3.14159265358979323846 * (double(row) / double(latitudes) - 0.5);
        const bool pole = row == 0 || row == latitudes;
        const Real32 ring = pole ? 0.f : Real32(std::cos(angle));
        const Vec3f normal(around[1] * ring, Real32(std::sin(angle)), around[0] * ring);
        return Vertex{Pnt3f(normal[0] * radius, normal[1] * radius, normal[2] * radius), normal};
    });
    return mesh;
}

Mesh meshOfSphere(UInt32 depth, Real32 radius)
{
    // The icosahedron's corners are those of three golden rectangles.
    const Real32 a = 0.525731112119133606f;
    const Real32 b = 0.850650808352039932f;
    std::vector<Vec3f> corners = {Vec3f(-a, 0, b), Vec3f(a, 0, b),  Vec3f(-a, 0, -b), Vec3f(a, 0, -b),
                                  Vec3f(0, b, a),  Vec3f(0, b, -a), Vec3f(0, -b, a),  Vec3f(0, -b, -a),
                                  Vec3f(b, a, 0),  Vec3f(-b, a, 0), Vec3f(b, -a, 0),  Vec3f(-b, -a, 0)};
    std::vector<UInt32> triangles = {0, 1, 4, 0, 4, 9, 9, 4, 5, 4, 8, 5, 4, 1, 8, 8, 1, 10, 8, 10,
                                     3, 5, 8, 3, 5, 3, 2, 2, 3, 7, 7, 3, 10, 7, 10, 6, 7, 6, 11, 11,
                                     6, 0, 0, 6, 1, 6, 10, 1, 9, 11, 0, 9, 2, 11, 9, 5, 2, 7, 11, 2};

    // Each edge is halved once, whichever of its two triangles comes first.
    for(UInt32 round = 0; round < depth; ++round)
    {
        std::map<std::pair<UInt32, UInt32>, UInt32> middles;
        const auto middle = [&](UInt32 from, UInt32 to) {
            const auto found = middles.emplace(std::minmax(from, to), UInt32(corners.size()));
            if(found.second)
            {
                Vec3f direction = corners[from] + corners[to];
                direction.normalize();
                corners.push_back(direction);
            }
            return found.first->second;
        };
        std::vector<UInt32> finer;
        finer.reserve(triangles.size() * 4);
        for(std::size_t i = 0; i < triangles.size(); i += 3)
        {
            const UInt32 c0 = triangles[i];
            const UInt32 c1 = triangles[i + 1];
            const UInt32 c2 = triangles[i + 2];
            const UInt32 m01 = middle(c0, c1);
            const UInt32 m12 = middle(c1, c2);
            const UInt32 m20 = middle(c2, c0);
            finer.insert(finer.end(), {c0, m01, m20, c1, m12, m01, c2, m20, m12, m01, m12, m20});
        }
        triangles.swap(finer);
    }

    Mesh mesh;
    const auto add = [&](const Vec3f &direction, const Vec2f &texCoords) {
        mesh.positions.push_back(Pnt3f(direction[0] * radius, direction[1] * radius, direction[2] * radius));
        mesh.normals.push_back(direction);
        mesh.texCoords.push_back(texCoords);
        return UInt32(mesh.positions.size() - 1);
    };
    for(const Vec3f &corner : corners)
        add(corner, texCoordsOnSphere(corner));

    // A triangle across the seam of the texture gets vertices of its own on the far side.
    std::map<UInt32, UInt32> beyond;
    for(std::size_t i = 0; i < triangles.size(); i += 3)
    {
        UInt32 *const corner = &triangles[i];
        Real32 high = 0.f;
        for(int k = 0; k < 3; ++k)
            high = std::max(high, mesh.texCoords[corner[k]][0]);
        for(int k = 0; k < 3; ++k)
        {
            const Vec2f at = mesh.texCoords[corner[k]];
            if(high - at[0] <= 0.5f)
                continue;
            const auto found = beyond.emplace(corner[k], 0);
            if(found.second)
                found.first->second = add(corners[corner[k]], Vec2f(at[0] + 1.f, at[1]));
            corner[k] = found.first->second;
        }
    }
    mesh.triangles = std::move(triangles);
    return mesh;
}

OSG_END_NAMESPACE
