/// \file
/// Containers from plain arrays.

#include "OSGSceneMaker.h"

#include <algorithm>
#include <map>
#include <utility>

#include "OSGGL.h"
#include "OSGGeoColors4f.h"
#include "OSGGeoIndicesUI32.h"
#include "OSGGeoNormals3f.h"
#include "OSGGeoPLengthsUI32.h"
#include "OSGGeoPTypesUI8.h"
#include "OSGGeoPositions3f.h"
#include "OSGGeoTexCoords2f.h"
#include "OSGGeometry.h"
#include "OSGLog.h"
#include "OSGName.h"
#include "OSGNode.h"
#include "OSGSimpleMaterial.h"
#include "OSGTransform.h"

OSG_BEGIN_NAMESPACE

namespace
{

template <class PtrT>
PtrT makeProperty(const typename PtrT::StoredObjectType::StoredFieldType::StorageType &values)
{
    const PtrT property = PtrT::StoredObjectType::create();
    beginEditCP(property);
    property->getField().setValues(values);
    endEditCP(property);
    return property;
}

/// How a material's look depends on the mesh that it is on.
enum class ColorUse
{
    None,
    Opaque,
    Transparent
};

/// Makes what several meshes and nodes share once.
class Maker
{
  public:
    explicit Maker(const SceneData &scene) : _scene(scene), _geometries(scene.meshes.size()) {}

    NodePtr make(UInt32 index)
    {
        const SceneNode &source = _scene.nodes[index];
        TransformPtr core;
        const NodePtr node = makeCoredNode<Transform>(&core);
        beginEditCP(core, Transform::MatrixFieldMask);
        core->setMatrix(source.matrix);
        endEditCP(core, Transform::MatrixFieldMask);
        setName(node, source.name);

        beginEditCP(node, Node::ChildrenFieldMask);
        for(const UInt32 mesh : source.meshes)
            if(!_scene.meshes[mesh].triangles.empty())
            {
                const NodePtr child = makeNodeFor(geometryOf(mesh));
                setName(child, _scene.meshes[mesh].name);
                node->addChild(child);
            }
        for(const UInt32 child : source.children)
            node->addChild(make(child));
        endEditCP(node, Node::ChildrenFieldMask);
        return node;
    }

  private:
    GeometryPtr geometryOf(UInt32 index)
    {
        GeometryPtr &geometry = _geometries[index];
        if(geometry != NullFC)
            return geometry;
        const SceneMesh &mesh = _scene.meshes[index];
        const MaterialPtr material = materialOf(mesh);
        geometry = Geometry::create();
        beginEditCP(geometry);
        geometry->setTypes(makeProperty<GeoPTypesUI8Ptr>({UInt8(GL_TRIANGLES)}));
        geometry->setLengths(makeProperty<GeoPLengthsUI32Ptr>({UInt32(mesh.triangles.size())}));
        geometry->setPositions(makeProperty<GeoPositions3fPtr>(mesh.positions));
        if(!mesh.normals.empty())
            geometry->setNormals(makeProperty<GeoNormals3fPtr>(mesh.normals));
        if(!mesh.colors.empty())
            geometry->setColors(makeProperty<GeoColors4fPtr>(colorsOf(mesh)));
        if(!mesh.texCoords.empty())
            geometry->setTexCoords(makeProperty<GeoTexCoords2fPtr>(mesh.texCoords));
        geometry->setIndices(makeProperty<GeoIndicesUI32Ptr>(mesh.triangles));
        geometry->getIndexMapping().push_back(Geometry::MapPosition | Geometry::MapNormal |
                                              Geometry::MapColor | Geometry::MapTexCoords);
        geometry->setMaterial(material);
        endEditCP(geometry);
        return geometry;
    }

    Real32 opacityOf(const SceneMesh &mesh) const
    {
        const Real32 opacity = mesh.material < 0 ? 1.f : _scene.materials[std::size_t(mesh.material)].opacity;
        return std::clamp(opacity, 0.f, 1.f);
    }

    std::vector<Color4f> colorsOf(const SceneMesh &mesh) const
    {
        const Real32 opacity = opacityOf(mesh);
        std::vector<Color4f> colors = mesh.colors;
        for(Color4f &color : colors)
            color = Color4f(color.red(), color.green(), color.blue(), color.alpha() * opacity);
        return colors;
    }

    MaterialPtr materialOf(const SceneMesh &mesh)
    {
        ColorUse use = ColorUse::None;
        if(!mesh.colors.empty())
            use = std::any_of(mesh.colors.begin(), mesh.colors.end(),
                              [](const Color4f &color) { return color.alpha() < 1.f; })
                      ? ColorUse::Transparent
                      : ColorUse::Opaque;
        if(mesh.material < 0 && use == ColorUse::None)
            return getDefaultMaterial();
        const auto known = _materials.find({mesh.material, use});
        if(known != _materials.end())
            return known->second;

        const SceneMaterial source =
            mesh.material < 0 ? SceneMaterial() : _scene.materials[std::size_t(mesh.material)];
        const SimpleMaterialPtr material = SimpleMaterial::create();
        beginEditCP(material);
        material->setAmbient(source.ambient);
        material->setDiffuse(source.diffuse);
        material->setSpecular(source.specular);
        material->setEmission(source.emission);
        material->setShininess(std::clamp(source.shininess, 0.f, 128.f));
        material->setTransparency(1.f - opacityOf(mesh));
        if(use != ColorUse::None)
            material->setColorMaterial(GL_AMBIENT_AND_DIFFUSE);
        if(use == ColorUse::Transparent)
            material->setTransparencyMode(ChunkMaterial::TransparencyForceTransparent);
        endEditCP(material);
        setName(material, source.name);
        _materials[{mesh.material, use}] = material;
        return material;
    }

    const SceneData &_scene;
    std::vector<GeometryPtr> _geometries;
    std::map<std::pair<Int32, ColorUse>, MaterialPtr> _materials;
};

} // namespace

NodePtr makeScene(const SceneData &scene, const std::string &name)
{
    const std::string fault = findSceneFault(scene);
    if(!fault.empty())
    {
        FWARNING(("%s: %s\n", name.c_str(), fault.c_str()));
        return NullFC;
    }
    return Maker(scene).make(0);
}

OSG_END_NAMESPACE
