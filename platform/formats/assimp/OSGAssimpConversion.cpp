/// \file
/// Conversion of assimp's meshes, materials and nodes.

#include "OSGAssimpConversion.h"

#include <assimp/GltfMaterial.h>
#include <assimp/material.h>
#include <assimp/scene.h>

#include <algorithm>
#include <cmath>
#include <utility>

OSG_BEGIN_NAMESPACE

namespace
{

constexpr Real32 CreaseAngle = 1.04719755f; // 60 degrees

bool isFinite(const aiVector3D &v)
{
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

/// One of a material's colours; `otherwise` where it has none or one that is none.
Color3f colorOf(const aiMaterial &material, const char *key, unsigned type, unsigned index,
                const Color3f &otherwise)
{
    aiColor4D color;
    if(aiGetMaterialColor(&material, key, type, index, &color) != AI_SUCCESS || !std::isfinite(color.r) ||
       !std::isfinite(color.g) || !std::isfinite(color.b))
        return otherwise;
    return Color3f(color.r, color.g, color.b);
}

Real32 numberOf(const aiMaterial &material, const char *key, unsigned type, unsigned index, Real32 otherwise)
{
    ai_real number = 0;
    const bool found = aiGetMaterialFloat(&material, key, type, index, &number) == AI_SUCCESS;
    return found && std::isfinite(number) ? Real32(number) : otherwise;
}

/// glTF: the base colour's alpha, where the material says that it matters.
Real32 gltfOpacity(const aiMaterial &source)
{
    aiString mode;
    aiColor4D color;
    if(aiGetMaterialString(&source, AI_MATKEY_GLTF_ALPHAMODE, &mode) != AI_SUCCESS ||
       std::string(mode.C_Str()) != "BLEND" ||
       aiGetMaterialColor(&source, AI_MATKEY_BASE_COLOR, &color) != AI_SUCCESS || !std::isfinite(color.a))
        return 1.f;
    return color.a;
}

bool blends(const aiMaterial &source)
{
    aiString mode;
    return aiGetMaterialString(&source, AI_MATKEY_GLTF_ALPHAMODE, &mode) == AI_SUCCESS &&
           std::string(mode.C_Str()) == "BLEND";
}

SceneMaterial convertMaterial(const aiMaterial &source, bool isGltf)
{
    SceneMaterial material;
    aiString name;
    if(aiGetMaterialString(&source, AI_MATKEY_NAME, &name) == AI_SUCCESS)
        material.name = name.C_Str();
    material.diffuse = colorOf(source, AI_MATKEY_COLOR_DIFFUSE, material.diffuse);
    material.diffuse = colorOf(source, AI_MATKEY_BASE_COLOR, material.diffuse);
    // A material without a word on ambient light reflects it as it does all other light.
    material.ambient = isGltf ? material.diffuse : colorOf(source, AI_MATKEY_COLOR_AMBIENT, material.diffuse);
    material.specular = colorOf(source, AI_MATKEY_COLOR_SPECULAR, material.specular);
    material.emission = colorOf(source, AI_MATKEY_COLOR_EMISSIVE, material.emission);
    material.shininess = std::clamp(numberOf(source, AI_MATKEY_SHININESS, 1.f), 0.f, 128.f);
    material.opacity =
        std::clamp(isGltf ? gltfOpacity(source) : numberOf(source, AI_MATKEY_OPACITY, 1.f), 0.f, 1.f);
    return material;
}

/// Normals of length 1; none where one of the source's has no direction.
std::vector<Vec3f> convertNormals(const aiMesh &source)
{
    std::vector<Vec3f> normals;
    for(unsigned i = 0; source.mNormals && i < source.mNumVertices; ++i)
    {
        const aiVector3D &n = source.mNormals[i];
        const Real64 length = std::sqrt(Real64(n.x) * n.x + Real64(n.y) * n.y + Real64(n.z) * n.z);
        if(!(length > 1e-20 && length < 1e20))
            return {};
        normals.push_back(Vec3f(Real32(n.x / length), Real32(n.y / length), Real32(n.z / length)));
    }
    return normals;
}

/// Points and lines that were left out.
struct LeftOut
{
    UInt64 points = 0;
    UInt64 lines = 0;
};

std::string convertMesh(const aiMesh &source, SceneMesh &mesh, LeftOut &leftOut)
{
    mesh.name = source.mName.C_Str();
    mesh.material = Int32(source.mMaterialIndex);
    const std::size_t count = source.mNumVertices;
    for(unsigned f = 0; f < source.mNumFaces; ++f)
    {
        const aiFace &face = source.mFaces[f];
        leftOut.points += face.mNumIndices == 1;
        leftOut.lines += face.mNumIndices == 2;
        if(face.mNumIndices != 3)
            continue;
        for(unsigned i = 0; i < 3; ++i)
        {
            if(face.mIndices[i] >= count)
                return "a triangle uses position " + std::to_string(face.mIndices[i]) + " of " +
                       std::to_string(count);
            mesh.triangles.push_back(face.mIndices[i]);
        }
    }
    if(mesh.triangles.size() > 0xFFFFFFFFu)
        return "too many triangles";
    if(mesh.triangles.empty())
        return std::string();

    for(std::size_t i = 0; i < count; ++i)
        mesh.positions.push_back(Pnt3f(source.mVertices[i].x, source.mVertices[i].y, source.mVertices[i].z));
    mesh.normals = convertNormals(source);
    for(std::size_t i = 0; source.mColors[0] && i < count; ++i)
    {
        const aiColor4D &c = source.mColors[0][i];
        mesh.colors.push_back(Color4f(c.r, c.g, c.b, c.a));
    }
    for(std::size_t i = 0; source.mTextureCoords[0] && i < count; ++i)
        mesh.texCoords.push_back(Vec2f(source.mTextureCoords[0][i].x, source.mTextureCoords[0][i].y));
    return std::string();
}

/// Vertex colours as glTF means them.
void applyBaseColor(const SceneMaterial &material, bool blending, std::vector<Color4f> &colors)
{
    const Color3f &base = material.diffuse;
    for(Color4f &color : colors)
        color = Color4f(color.red() * base.red(), color.green() * base.green(), color.blue() * base.blue(),
                        blending ? color.alpha() : 1.f);
}

Matrix convertMatrix(const aiMatrix4x4 &m)
{
    return Matrix(m.a1, m.a2, m.a3, m.a4, m.b1, m.b2, m.b3, m.b4, //
                  m.c1, m.c2, m.c3, m.c4, m.d1, m.d2, m.d3, m.d4);
}

std::string convertNodes(const aiNode &root, SceneData &scene)
{
    std::vector<std::pair<const aiNode *, UInt32>> depths(1, {&root, 0u});
    scene.nodes.resize(1);
    // Level by level: a node's children get the places at the end.
    for(std::size_t i = 0; i < depths.size(); ++i)
    {
        const aiNode &source = *depths[i].first;
        if(depths[i].second > MaxSceneDepth)
            return "nodes are nested deeper than " + std::to_string(MaxSceneDepth);
        scene.nodes[i].name = source.mName.C_Str();
        scene.nodes[i].matrix = convertMatrix(source.mTransformation);
        scene.nodes[i].meshes.assign(source.mMeshes, source.mMeshes + source.mNumMeshes);
        for(unsigned c = 0; c < source.mNumChildren; ++c)
        {
            scene.nodes[i].children.push_back(UInt32(depths.size()));
            depths.push_back({source.mChildren[c], depths[i].second + 1});
            scene.nodes.emplace_back();
        }
    }
    return std::string();
}

std::string counted(UInt64 count, const Char8 *what)
{
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

void tellLeftOut(const LeftOut &leftOut, SceneData &scene)
{
    std::string line;
    if(leftOut.points > 0)
        line = counted(leftOut.points, "point");
    if(leftOut.lines > 0)
        line += (line.empty() ? "" : " and ") + counted(leftOut.lines, "line");
    if(!line.empty())
        scene.notices.push_back(line +
                                (leftOut.points + leftOut.lines == 1 ? " is left out" : " are left out"));
}

} // namespace

std::string findImportFault(const aiScene &source)
{
    if(!source.mRootNode)
        return "there are no nodes";
    for(unsigned m = 0; m < source.mNumMeshes; ++m)
    {
        const aiMesh &mesh = *source.mMeshes[m];
        const std::string title = "mesh " + std::to_string(m) + ": ";
        for(unsigned i = 0; i < mesh.mNumVertices; ++i)
            if(!isFinite(mesh.mVertices[i]))
                return title + "position " + std::to_string(i) + " is not finite";
        for(unsigned f = 0; f < mesh.mNumFaces; ++f)
        {
            const aiFace &face = mesh.mFaces[f];
            // One of assimp's assertions would end the process.
            if(face.mNumIndices == 0)
                return title + "face " + std::to_string(f) + " has no corners";
            for(unsigned i = 0; i < face.mNumIndices; ++i)
                if(face.mIndices[i] >= mesh.mNumVertices)
                    return title + "a face uses position " + std::to_string(face.mIndices[i]) + " of " +
                           std::to_string(mesh.mNumVertices);
        }
    }
    return std::string();
}

std::string convertScene(const aiScene &source, bool isGltf, SceneData &scene)
{
    for(unsigned i = 0; i < source.mNumMaterials; ++i)
        scene.materials.push_back(convertMaterial(*source.mMaterials[i], isGltf));
    LeftOut leftOut;
    std::size_t triangles = 0;
    scene.meshes.resize(source.mNumMeshes);
    for(unsigned i = 0; i < source.mNumMeshes; ++i)
    {
        SceneMesh &mesh = scene.meshes[i];
        const std::string fault = convertMesh(*source.mMeshes[i], mesh, leftOut);
        if(!fault.empty())
            return "mesh " + std::to_string(i) + ": " + fault;
        if(isGltf && mesh.material >= 0 && std::size_t(mesh.material) < scene.materials.size())
            applyBaseColor(scene.materials[std::size_t(mesh.material)],
                           blends(*source.mMaterials[mesh.material]), mesh.colors);
        if(mesh.normals.empty())
            addSmoothNormals(mesh, CreaseAngle);
        joinSceneVertices(mesh);
        triangles += mesh.triangles.size() / 3;
    }
    if(triangles == 0)
        return leftOut.points + leftOut.lines > 0 ? "has points or lines, but no triangles"
                                                  : "has no triangles";
    tellLeftOut(leftOut, scene);
    return convertNodes(*source.mRootNode, scene);
}

OSG_END_NAMESPACE
