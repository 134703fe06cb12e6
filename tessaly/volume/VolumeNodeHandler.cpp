#include "VolumeNodeHandler.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDepthChunk.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>

#include "BVGeometry.h"
#include "BitVolume.h"
#include "BlockVolume.h"
#include "ImageAccess.h"
#include "NormalVolume.h"
#include "ProgramText.h"
#include "RayGeneration.h"
#include "ShadingFunctions.h"
#include "Transferfunction.h"
#include "TraversalFunctions.h"
#include "VolumeData.h"

using namespace osg;

namespace
{

/// Voxels per edge of a block.
constexpr int blockEdge = 8;

} // namespace

VolumeNodeHandler::~VolumeNodeHandler()
{
    delete _volumeData;
    clearRefCP(_quadNode);
    clearRefCP(_rootNode);
    clearRefCP(_material);
    clearRefCP(_shader);
    clearRefCP(_frontRoot);
    clearRefCP(_backRoot);
    clearRefCP(_exitShader);
    clearRefCP(_sceneColor);
    clearRefCP(_sceneDepth);
    clearRefCP(_frontTexture);
    clearRefCP(_backTexture);
    delete _bvGeometry;
    delete _rayGeneration;
    delete _normalVolume;
    delete _transferfunction;
    delete _shadingFunctions;
    delete _traversalFunctions;
}

bool VolumeNodeHandler::setVolumeData(TextureChunkPtr voxels, bool swapped, bool normalised)
{
    delete _volumeData;
    _volumeData = new VolumeData;
    return _volumeData->setVolume(voxels, swapped, normalised);
}

void VolumeNodeHandler::setStepSize(Real32 stepSize)
{
    _stepSize = stepSize;
    if(_shader == NullFC)
        return;
    beginEditCP(_shader, SHLChunk::ParametersFieldMask);
    _shader->setUniformParameter("stepSize", _stepSize);
    endEditCP(_shader, SHLChunk::ParametersFieldMask);
}

void VolumeNodeHandler::setRayGeneration(RayGeneration *rayGeneration)
{
    if(_rayGeneration != rayGeneration)
        delete _rayGeneration;
    _rayGeneration = rayGeneration;
    _rayGeneration->setVolumeData(_volumeData);
    rebuild();
}

void VolumeNodeHandler::setNormalVolume(NormalVolume *normalVolume)
{
    delete _normalVolume;
    _normalVolume = normalVolume;
    _normalVolume->setVolumeData(_volumeData);
    rebuild();
}

void VolumeNodeHandler::setShadingFunctions(ShadingFunctions *shadingFunctions)
{
    delete _shadingFunctions;
    _shadingFunctions = shadingFunctions;
    _shadingFunctions->setVolumeData(_volumeData);
    rebuild();
}

void VolumeNodeHandler::setTraversalFunctions(TraversalFunctions *traversalFunctions)
{
    delete _traversalFunctions;
    _traversalFunctions = traversalFunctions;
    _traversalFunctions->setVolumeData(_volumeData);
    rebuild();
}

void VolumeNodeHandler::setBVGeometry(BVGeometry *bvGeometry)
{
    delete _bvGeometry;
    _bvGeometry = bvGeometry;
    _bvGeometry->setVolumeData(_volumeData);
    rebuild();
}

void VolumeNodeHandler::setTransferfunction(Transferfunction *function)
{
    const ImagePtr voxels = _volumeData == nullptr ? ImagePtr() : _volumeData->getImage();
    function->dependentTexture =
        voxels != NullFC && voxels->getDataType() == Image::OSG_UINT16_IMAGEDATA ? 1 : 0;
    if(_transferfunction != function)
        delete _transferfunction;
    _transferfunction = function;
    if(_volumeData != nullptr)
    {
        _transferfunction->setVolumeData(_volumeData);
        _transferfunction->calcSummedAreaTable();
        _transferfunction->calcDependTransferTextur();
    }
    rebuild();
}

void VolumeNodeHandler::setRayTextures(TextureChunkPtr front, TextureChunkPtr back)
{
    setRefdCP(_frontTexture, front);
    setRefdCP(_backTexture, back);
    createExitMaterial();
    buildProgram();
}

void VolumeNodeHandler::setSceneTextures(TextureChunkPtr color, TextureChunkPtr depth)
{
    setRefdCP(_sceneColor, color);
    setRefdCP(_sceneDepth, depth);
    createExitMaterial();
    buildProgram();
}

bool VolumeNodeHandler::rebuild()
{
    if(_volumeData == nullptr || _bvGeometry == nullptr || _rayGeneration == nullptr ||
       _normalVolume == nullptr || _transferfunction == nullptr || _shadingFunctions == nullptr ||
       _traversalFunctions == nullptr)
        return true;

    // The blocks depend on the voxels, the verdicts also on the transfer function.
    if(_volumeData->getBlockVolume() == nullptr)
        _volumeData->setBlockVolume(new BlockVolume);
    _volumeData->getBlockVolume()->calcBlockVolumen(*_volumeData, blockEdge);
    if(_volumeData->getBitVolume() == nullptr)
        _volumeData->setBitVolume(new BitVolume);
    _volumeData->getBitVolume()->calcBitVolumen(_volumeData->getBlockVolume()->getImage(),
                                                _transferfunction->getSummedAreaImage());

    if(_bvGeometry->getNode() == NullFC)
    {
        _bvGeometry->createGeometry(_volumeData);
        createFrontGraph();
        createBackGraph();
        const NodeCorePtr core =
            _bvGeometry->getNode() == NullFC ? NodeCorePtr() : _bvGeometry->getNode()->getCore();
        for(const NodePtr &node : {_backFaceNode, _exitFaceNode, _frontFaceNode})
        {
            beginEditCP(node, Node::CoreFieldMask);
            node->setCore(core);
            endEditCP(node, Node::CoreFieldMask);
        }
    }
    else
        _bvGeometry->updateGeometry(_volumeData);
    _normalVolume->setVolumeData(_volumeData);

    if(_quadNode == NullFC)
    {
        createScreenQuad(_quadNode);
        addRefCP(_quadNode);
    }
    if(_rootNode == NullFC)
    {
        _rootNode = Node::create();
        addRefCP(_rootNode);
        setName(_rootNode, "VolumeNode");
        beginEditCP(_rootNode, Node::ChildrenFieldMask);
        _rootNode->addChild(_quadNode);
        endEditCP(_rootNode, Node::ChildrenFieldMask);
    }
    const TransformPtr transform = TransformBase::create();
    beginEditCP(transform, Transform::MatrixFieldMask);
    transform->setMatrix(placement());
    endEditCP(transform, Transform::MatrixFieldMask);
    beginEditCP(_rootNode, Node::CoreFieldMask);
    _rootNode->setCore(transform);
    endEditCP(_rootNode, Node::CoreFieldMask);

    return buildProgram();
}

Matrix VolumeNodeHandler::placement() const
{
    const Vec3f size = _volumeData->getVolumeSize();
    const Vec3f thickness = _volumeData->getSliceThickness();
    const std::array<float, 16> values = tessaly::placementMatrix(
        {size[0], size[1], size[2]}, {_dimensions[0], _dimensions[1], _dimensions[2]},
        tessaly::sidesOf(_volumeData->getImage()), {thickness[0], thickness[1], thickness[2]});
    Matrix matrix;
    matrix.setValue(values.data());
    return matrix;
}

bool VolumeNodeHandler::buildProgram()
{
    if(_shader == NullFC)
    {
        _shader = SHLChunkBase::create();
        addRefCP(_shader);
    }
    const BitVector parameters = SHLChunk::ParametersFieldMask | SHLChunk::ProgramParameterNamesFieldMask |
                                 SHLChunk::ProgramParameterValuesFieldMask;
    beginEditCP(_shader, parameters);
    _shader->clearProgramParameters();
    _shader->clearUniformParameters();
    endEditCP(_shader, parameters);
    if(_rayGeneration == nullptr || _normalVolume == nullptr || _transferfunction == nullptr ||
       _shadingFunctions == nullptr || _traversalFunctions == nullptr)
        return false;

    const std::string text = tessaly::joinFragmentProgram(
        _rayGeneration->getShaderCode(), _normalVolume->getShaderCode(), _transferfunction->getShaderCode(),
        _shadingFunctions->getShaderCode(), _traversalFunctions->getShaderCode());
    const BitVector texts =
        SHLChunk::ParametersFieldMask | SHLChunk::FragmentProgramFieldMask | SHLChunk::VertexProgramFieldMask;
    beginEditCP(_shader, texts);
    _shader->setVertexProgram(tessaly::programVertexText);
    _shader->setFragmentProgram(text);
    _shader->clearUniformParameters();
    endEditCP(_shader, texts);

    if(_material == NullFC)
    {
        _material = ChunkMaterialBase::create();
        addRefCP(_material);
    }
    beginEditCP(_material, ChunkMaterial::ChunksFieldMask);
    _material->clearChunks();
    endEditCP(_material, ChunkMaterial::ChunksFieldMask);

    _textureUnit = 0;
    setProgramParameters(_material, _shader, _textureUnit);
    _rayGeneration->setShaderParameters(_material, _shader, _textureUnit, _volumeData);
    _normalVolume->setShaderParameters(_material, _shader, _textureUnit, _volumeData);
    _transferfunction->setShaderParameters(_material, _shader, _textureUnit, _volumeData);
    _shadingFunctions->setShaderParameters(_material, _shader, _textureUnit, _volumeData);
    _traversalFunctions->setShaderParameters(_material, _shader, _textureUnit, _volumeData);

    const GeometryPtr geometry =
        _quadNode == NullFC ? GeometryPtr() : GeometryPtr::dcast(_quadNode->getCore());
    if(geometry == NullFC)
        return false;
    beginEditCP(geometry, Geometry::MaterialFieldMask);
    geometry->setMaterial(_material);
    endEditCP(geometry, Geometry::MaterialFieldMask);
    return true;
}

void VolumeNodeHandler::setProgramParameters(ChunkMaterialPtr material, SHLChunkPtr shader,
                                             UInt32 &textureUnit)
{
    if(material == NullFC || shader == NullFC)
        return;
    // The quad is not hidden by the scene, and does not write depth.
    const DepthChunkPtr depth = DepthChunkBase::create();
    beginEditCP(depth);
    depth->setEnable(true);
    depth->setReadOnly(true);
    depth->setFunc(GL_ALWAYS);
    endEditCP(depth);

    const BitVector chunks = ChunkMaterial::ChunksFieldMask | ChunkMaterial::SlotsFieldMask;
    beginEditCP(material, chunks);
    beginEditCP(shader, SHLChunk::ParametersFieldMask);
    material->addChunk(depth);
    material->addChunk(_shader);
    shader->setUniformParameter("stepSize", _stepSize);

    const auto addTexture = [&](const TextureChunkPtr &texture, const char *uniform)
    {
        material->addChunk(texture, State::AutoSlot);
        shader->setUniformParameter(uniform, Int32(textureUnit));
        ++textureUnit;
    };
    if(_volumeData != nullptr && _volumeData->getTexture() != NullFC)
    {
        const Vec3us sides = _volumeData->getResolution();
        const Vec3f resolution(sides[0], sides[1], sides[2]);
        addTexture(_volumeData->getTexture(), "volume");
        shader->setUniformParameter("volumeSize", _volumeData->getVolumeSize());
        shader->setUniformParameter("volumeResolution", resolution);
        shader->setUniformParameter("texelSize",
                                    Vec3f(1.0f / resolution[0], 1.0f / resolution[1], 1.0f / resolution[2]));
    }
    if(_frontTexture != NullFC)
        addTexture(_frontTexture, "frontTexture");
    if(_backTexture != NullFC)
        addTexture(_backTexture, "backTexture");
    if(_sceneColor != NullFC)
        addTexture(_sceneColor, "sceneColor");
    if(_sceneDepth != NullFC)
        addTexture(_sceneDepth, "sceneDepth");
    endEditCP(shader, SHLChunk::ParametersFieldMask);
    endEditCP(material, chunks);
}
