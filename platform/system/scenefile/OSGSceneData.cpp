/// \file
/// What makes a scene usable.

#include "OSGSceneData.h"

#include <algorithm>
#include <cmath>

OSG_BEGIN_NAMESPACE

namespace
{

std::string titleOf(const Char8 *kind, std::size_t index, const std::string &name)
{
    return std::string(kind) + " " + std::to_string(index) + (name.empty() ? "" : " (\"" + name + "\")");
}

template <class ValueT>
bool isFinite(const ValueT &value, UInt32 count)
{
    return std::all_of(value.getValues(), value.getValues() + count,
                       [](Real32 v) { return std::isfinite(v); });
}

bool isFinite(const Color4f &color)
{
    return std::isfinite(color.red()) && std::isfinite(color.green()) && std::isfinite(color.blue()) &&
           std::isfinite(color.alpha());
}

bool isFinite(const Matrix &matrix)
{
    return std::all_of(matrix.getValues(), matrix.getValues() + 16,
                       [](Real32 v) { return std::isfinite(v); });
}

/// The first of the values that is not finite; as many as there are if all are.
template <class ValueT>
std::size_t firstNotFinite(const std::vector<ValueT> &values, UInt32 count)
{
    return std::size_t(
        std::find_if(values.begin(), values.end(), [count](const ValueT &v) { return !isFinite(v, count); }) -
        values.begin());
}

std::string findMeshFault(const SceneMesh &mesh, std::size_t numMaterials)
{
    const std::size_t count = mesh.positions.size();
    const auto misfit = [count](std::size_t size, const Char8 *what)
    {
        return size == 0 || size == count
                   ? std::string()
                   : std::to_string(count) + " positions, but " + std::to_string(size) + " " + what;
    };
    for(const std::string &fault :
        {misfit(mesh.normals.size(), "normals"), misfit(mesh.colors.size(), "colours"),
         misfit(mesh.texCoords.size(), "texture coordinates")})
        if(!fault.empty())
            return fault;
    if(mesh.triangles.size() % 3 != 0)
        return std::to_string(mesh.triangles.size()) + " indices make no triangles";
    if(mesh.triangles.size() > 0xFFFFFFFFu)
        return "too many triangles";
    for(const UInt32 index : mesh.triangles)
        if(index >= count)
            return "a triangle uses position " + std::to_string(index) + " of " + std::to_string(count);
    if(mesh.material < -1 || (mesh.material >= 0 && std::size_t(mesh.material) >= numMaterials))
        return "it uses material " + std::to_string(mesh.material) + " of " + std::to_string(numMaterials);

    const std::size_t position = firstNotFinite(mesh.positions, 3);
    if(position < count)
        return "position " + std::to_string(position) + " is not finite";
    const std::size_t normal = firstNotFinite(mesh.normals, 3);
    if(normal < mesh.normals.size())
        return "normal " + std::to_string(normal) + " is not finite";
    const std::size_t texCoord = firstNotFinite(mesh.texCoords, 2);
    if(texCoord < mesh.texCoords.size())
        return "texture coordinate " + std::to_string(texCoord) + " is not finite";
    for(std::size_t i = 0; i < mesh.colors.size(); ++i)
        if(!isFinite(mesh.colors[i]))
            return "colour " + std::to_string(i) + " is not finite";
    return std::string();
}

std::string findNodeFault(const SceneNode &node, const SceneData &scene)
{
    for(const UInt32 mesh : node.meshes)
        if(mesh >= scene.meshes.size())
            return "it shows mesh " + std::to_string(mesh) + " of " + std::to_string(scene.meshes.size());
    for(const UInt32 child : node.children)
        if(child >= scene.nodes.size())
            return "its child is node " + std::to_string(child) + " of " + std::to_string(scene.nodes.size());
    return isFinite(node.matrix) ? std::string() : "its matrix is not finite";
}

/// Whether the nodes are a tree below the first, and not too deep.
std::string findTreeFault(const std::vector<SceneNode> &nodes)
{
    // Each node but the root is reached once in a tree; what is reached twice closes a ring or has two
    // parents.
    std::vector<bool> reached(nodes.size(), false);
    std::vector<UInt32> level(1, 0u), below;
    reached[0] = true;
    UInt32 depth = 0;
    for(; !level.empty(); ++depth, level.swap(below))
    {
        if(depth > MaxSceneDepth)
            return "nodes are nested deeper than " + std::to_string(MaxSceneDepth);
        below.clear();
        for(const UInt32 node : level)
            for(const UInt32 child : nodes[node].children)
            {
                if(reached[child])
                    return titleOf("node", child, nodes[child].name) + " is below two nodes or below itself";
                reached[child] = true;
                below.push_back(child);
            }
    }
    return std::string();
}

} // namespace

std::string findSceneFault(const SceneData &scene)
{
    if(scene.nodes.empty())
        return "there are no nodes";
    for(std::size_t i = 0; i < scene.meshes.size(); ++i)
    {
        const std::string fault = findMeshFault(scene.meshes[i], scene.materials.size());
        if(!fault.empty())
            return titleOf("mesh", i, scene.meshes[i].name) + ": " + fault;
    }
    for(std::size_t i = 0; i < scene.nodes.size(); ++i)
    {
        const std::string fault = findNodeFault(scene.nodes[i], scene);
        if(!fault.empty())
            return titleOf("node", i, scene.nodes[i].name) + ": " + fault;
    }
    return findTreeFault(scene.nodes);
}

OSG_END_NAMESPACE
