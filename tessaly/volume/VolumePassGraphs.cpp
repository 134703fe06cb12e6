/// \file
/// The graphs of a VolumeNodeHandler whose pictures say where rays start and how long they are, and the
/// screen quad.

#include "VolumeNodeHandler.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGColorMaskChunk.h>
#include <OpenSG/OSGDepthChunk.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGeoIndicesUI32.h>
#include <OpenSG/OSGGeoPLengthsUI32.h>
#include <OpenSG/OSGGeoPTypesUI8.h>
#include <OpenSG/OSGGeoPositions2f.h>
#include <OpenSG/OSGGeoTexCoords2f.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPolygonChunk.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>

#include "BoundaryQuads.h"
#include "PassText.h"

using namespace osg;

namespace
{

void setCoreOf(const NodePtr &node, const NodeCorePtr &core)
{
    beginEditCP(node, Node::CoreFieldMask);
    node->setCore(core);
    endEditCP(node, Node::CoreFieldMask);
}

void addChildTo(const NodePtr &node, const NodePtr &child)
{
    beginEditCP(node, Node::ChildrenFieldMask);
    node->addChild(child);
    endEditCP(node, Node::ChildrenFieldMask);
}

SHLChunkPtr makeShader(const char *vertexText, const char *fragmentText)
{
    const SHLChunkPtr shader = SHLChunkBase::create();
    const BitVector texts = SHLChunk::VertexProgramFieldMask | SHLChunk::FragmentProgramFieldMask;
    beginEditCP(shader, texts);
    shader->setVertexProgram(vertexText);
    shader->setFragmentProgram(fragmentText);
    endEditCP(shader, texts);
    return shader;
}

PolygonChunkPtr makeCulling(GLenum face)
{
    const PolygonChunkPtr polygon = PolygonChunkBase::create();
    beginEditCP(polygon, PolygonChunk::CullFaceFieldMask);
    polygon->setCullFace(face);
    endEditCP(polygon, PolygonChunk::CullFaceFieldMask);
    return polygon;
}

DepthChunkPtr makeDepthTest(GLenum function)
{
    const DepthChunkPtr depth = DepthChunkBase::create();
    beginEditCP(depth);
    depth->setEnable(true);
    depth->setFunc(function);
    endEditCP(depth);
    return depth;
}

DepthChunkPtr makeNoDepthTest()
{
    const DepthChunkPtr depth = DepthChunkBase::create();
    beginEditCP(depth);
    depth->setEnable(false);
    endEditCP(depth);
    return depth;
}

ColorMaskChunkPtr makeColorMask(bool colors)
{
    const ColorMaskChunkPtr mask = ColorMaskChunkBase::create();
    beginEditCP(mask);
    mask->setMaskR(colors);
    mask->setMaskG(colors);
    mask->setMaskB(colors);
    mask->setMaskA(true);
    endEditCP(mask);
    return mask;
}

ChunkMaterialPtr makeMaterial(Int32 sortKey, std::initializer_list<StateChunkPtr> chunks)
{
    const ChunkMaterialPtr material = ChunkMaterialBase::create();
    beginEditCP(material);
    material->setSortKey(sortKey);
    for(const StateChunkPtr &chunk : chunks)
        material->addChunk(chunk);
    endEditCP(material);
    return material;
}

/// A node that draws everything below it with the material.
NodePtr makeMaterialNode(const MaterialPtr &material)
{
    const MaterialGroupPtr group = MaterialGroupBase::create();
    beginEditCP(group, MaterialGroup::MaterialFieldMask);
    group->setMaterial(material);
    endEditCP(group, MaterialGroup::MaterialFieldMask);
    const NodePtr node = Node::create();
    setCoreOf(node, group);
    return node;
}

void setMatrixOf(const NodePtr &node, const Matrix &matrix)
{
    const TransformPtr transform = node == NullFC ? TransformPtr() : TransformPtr::dcast(node->getCore());
    if(transform == NullFC)
        return;
    beginEditCP(transform, Transform::MatrixFieldMask);
    transform->setMatrix(matrix);
    endEditCP(transform, Transform::MatrixFieldMask);
}

} // namespace

void VolumeNodeHandler::createScreenQuad(NodePtr &node)
{
    GeoPTypesUI8Ptr types = GeoPTypesUI8::create();
    GeoPLengthsUI32Ptr lengths = GeoPLengthsUI32::create();
    GeoPositions2fPtr positions = GeoPositions2f::create();
    GeoTexCoords2fPtr texCoords = GeoTexCoords2f::create();
    GeoIndicesUI32Ptr indices = GeoIndicesUI32::create();
    beginEditCP(types);
    types->getField().push_back(GL_QUADS);
    endEditCP(types);
    beginEditCP(lengths);
    lengths->getField().push_back(4);
    endEditCP(lengths);
    beginEditCP(positions);
    beginEditCP(texCoords);
    beginEditCP(indices);
    for(UInt32 i = 0; i < 4; ++i)
    {
        const std::array<float, 2> &position = tessaly::screenQuadPositions[i];
        const std::array<float, 2> &texCoord = tessaly::screenQuadTexCoords[i];
        positions->getField().push_back(Pnt2f(position[0], position[1]));
        texCoords->getField().push_back(Vec2f(texCoord[0], texCoord[1]));
        indices->getField().push_back(i);
    }
    endEditCP(indices);
    endEditCP(texCoords);
    endEditCP(positions);

    const GeometryPtr geometry = GeometryBase::create();
    beginEditCP(geometry);
    geometry->setTypes(types);
    geometry->setLengths(lengths);
    geometry->setPositions(positions);
    geometry->setTexCoords(texCoords);
    geometry->setIndices(indices);
    endEditCP(geometry);

    node = Node::create();
    setCoreOf(node, geometry);
}

void VolumeNodeHandler::createFrontGraph()
{
    clearRefCP(_frontRoot);
    _frontTransformNode = Node::create();
    setCoreOf(_frontTransformNode, TransformBase::create());
    const NodePtr planeTransformNode = Node::create();
    setCoreOf(planeTransformNode, TransformBase::create());

    _frontRoot = Node::create();
    addRefCP(_frontRoot);
    setCoreOf(_frontRoot, GroupBase::create());
    addChildTo(_frontRoot, _frontTransformNode);
    addChildTo(_frontRoot, planeTransformNode);

    // The materials are drawn in the order of their sort keys, and the picture depends on that: the near
    // plane's points without alpha, alpha where back faces are seen, points and alpha where front faces are
    // nearer.
    NodePtr quadNode;
    createScreenQuad(quadNode);
    addRefCP(quadNode);
    const NodePtr planeNode = Node::create();
    setCoreOf(planeNode, quadNode->getCore());
    _planeShader = makeShader(tessaly::planeVertexText, tessaly::planeFragmentText);
    const NodePtr planeMaterialNode = makeMaterialNode(makeMaterial(1, {_planeShader, makeNoDepthTest()}));
    addChildTo(planeMaterialNode, planeNode);
    addChildTo(planeTransformNode, planeMaterialNode);
    clearRefCP(quadNode);

    _frontFaceNode = Node::create();
    const NodePtr frontMaterialNode = makeMaterialNode(
        makeMaterial(3, {makeCulling(GL_BACK), makeShader(tessaly::faceVertexText, tessaly::faceFragmentText),
                         makeDepthTest(GL_LEQUAL), makeColorMask(true)}));
    addChildTo(frontMaterialNode, _frontFaceNode);
    addChildTo(_frontTransformNode, frontMaterialNode);

    _backFaceNode = Node::create();
    const NodePtr backMaterialNode = makeMaterialNode(makeMaterial(
        2, {makeCulling(GL_FRONT), makeShader(tessaly::faceVertexText, tessaly::faceFragmentText),
            makeDepthTest(GL_LEQUAL), makeColorMask(false)}));
    addChildTo(backMaterialNode, _backFaceNode);
    addChildTo(_frontTransformNode, backMaterialNode);
}

void VolumeNodeHandler::createBackGraph()
{
    clearRefCP(_backRoot);
    _backTransformNode = Node::create();
    setCoreOf(_backTransformNode, TransformBase::create());
    _backRoot = Node::create();
    addRefCP(_backRoot);
    setCoreOf(_backRoot, GroupBase::create());
    addChildTo(_backRoot, _backTransformNode);

    _exitFaceNode = Node::create();
    _exitMaterial = ChunkMaterialBase::create();
    const NodePtr exitMaterialNode = makeMaterialNode(_exitMaterial);
    addChildTo(exitMaterialNode, _exitFaceNode);
    addChildTo(_backTransformNode, exitMaterialNode);
    createExitMaterial();
}

void VolumeNodeHandler::createExitMaterial()
{
    if(_sceneDepth == NullFC || _frontTexture == NullFC || _exitMaterial == NullFC)
        return;
    const ImagePtr image = _frontTexture->getImage();
    const Vec2f textureSize = image == NullFC ? Vec2f(512.0f, 512.0f)
                                              : Vec2f(Real32(image->getWidth()), Real32(image->getHeight()));
    const BitVector chunks = ChunkMaterial::ChunksFieldMask | ChunkMaterial::SlotsFieldMask;
    beginEditCP(_exitMaterial, chunks);
    _exitMaterial->clearChunks();
    if(_exitShader == NullFC)
    {
        _exitShader = makeShader(tessaly::exitVertexText, tessaly::exitFragmentText);
        addRefCP(_exitShader);
    }

    beginEditCP(_exitShader, SHLChunk::ParametersFieldMask);
    _exitShader->setUniformParameter("textureSize", textureSize);
    _exitShader->setUniformParameter("depthRange", Vec2f(0.01f, 100.0f));
    _exitShader->setUniformParameter("startImage", Int32(0));
    _exitShader->setUniformParameter("sceneDepth", Int32(1));
    endEditCP(_exitShader, SHLChunk::ParametersFieldMask);

    // Of the back faces the farthest stays, so a shape with gaps still gives one ray.
    _exitMaterial->addChunk(makeCulling(GL_FRONT));
    _exitMaterial->addChunk(_frontTexture, State::AutoSlot);
    _exitMaterial->addChunk(_sceneDepth, State::AutoSlot);
    _exitMaterial->addChunk(_exitShader);
    _exitMaterial->addChunk(makeDepthTest(GL_GEQUAL));
    _exitMaterial->addChunk(makeColorMask(true));
    endEditCP(_exitMaterial, chunks);
}

void VolumeNodeHandler::setViewMatrix(const Matrix &beaconToWorld)
{
    if(_rootNode == NullFC)
        return;
    Matrix volumeToWorld;
    _rootNode->getToWorld(volumeToWorld);
    Matrix viewToVolume;
    volumeToWorld.inverse(viewToVolume);
    viewToVolume.mult(beaconToWorld);

    if(_frontTransformNode == NullFC || _frontTransformNode->getCore() == NullFC)
        return;
    setMatrixOf(_frontTransformNode, volumeToWorld);
    beginEditCP(_planeShader, SHLChunk::ParametersFieldMask);
    _planeShader->setUniformParameter("viewToVolume", viewToVolume);
    endEditCP(_planeShader, SHLChunk::ParametersFieldMask);
    setMatrixOf(_backTransformNode, volumeToWorld);
}

void VolumeNodeHandler::setDepthRange(Real32 nearPlane, Real32 farPlane)
{
    if(_exitShader == NullFC)
        return;
    beginEditCP(_exitShader, SHLChunk::ParametersFieldMask);
    _exitShader->setUniformParameter("depthRange", Vec2f(nearPlane, farPlane));
    endEditCP(_exitShader, SHLChunk::ParametersFieldMask);
}
