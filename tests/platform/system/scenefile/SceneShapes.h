#ifndef TESTS_PLATFORM_SYSTEM_SCENEFILE_SCENESHAPES_H
#define TESTS_PLATFORM_SYSTEM_SCENEFILE_SCENESHAPES_H

/// \file
/// Small scenes in plain arrays, and what is measured on meshes.

#include <OpenSG/OSGSceneData.h>

#include <map>

namespace scenefile_test
{

/// From 0 to 1 in x and y, at z = 0, seen from +z; without normals.
inline osg::SceneMesh makeSquare()
{
    osg::SceneMesh mesh;
    mesh.positions = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
    mesh.triangles = {0, 1, 2, 0, 2, 3};
    return mesh;
}

/// From 0 to 1 in all directions, with eight positions and no normals.
inline osg::SceneMesh makeCube()
{
    osg::SceneMesh mesh;
    for(int i = 0; i < 8; ++i)
        mesh.positions.push_back(osg::Pnt3f(float(i & 1), float((i >> 1) & 1), float(i >> 2)));
    mesh.triangles = {0, 2, 3, 0, 3, 1, 4, 5, 7, 4, 7, 6, 0, 1, 5, 0, 5, 4,
                      2, 6, 7, 2, 7, 3, 0, 4, 6, 0, 6, 2, 1, 3, 7, 1, 7, 5};
    return mesh;
}

inline osg::Vec3f cornerOf(const osg::SceneMesh &mesh, std::size_t corner)
{
    const osg::Pnt3f &p = mesh.positions[mesh.triangles[corner]];
    return osg::Vec3f(p.x(), p.y(), p.z());
}

inline double areaOf(const osg::SceneMesh &mesh)
{
    double area = 0;
    for(std::size_t i = 0; i + 2 < mesh.triangles.size(); i += 3)
        area += 0.5 * (cornerOf(mesh, i + 1) - cornerOf(mesh, i))
                          .cross(cornerOf(mesh, i + 2) - cornerOf(mesh, i))
                          .length();
    return area;
}

/// Of a closed mesh; positive where its triangles are counter-clockwise seen from outside.
inline double volumeOf(const osg::SceneMesh &mesh)
{
    double volume = 0;
    for(std::size_t i = 0; i + 2 < mesh.triangles.size(); i += 3)
        volume += cornerOf(mesh, i).dot(cornerOf(mesh, i + 1).cross(cornerOf(mesh, i + 2))) / 6.0;
    return volume;
}

/// One node that shows one mesh.
inline osg::SceneData sceneOf(const osg::SceneMesh &mesh)
{
    osg::SceneData scene;
    scene.meshes.push_back(mesh);
    scene.nodes.emplace_back();
    scene.nodes[0].meshes.push_back(0);
    return scene;
}

} // namespace scenefile_test

#endif
