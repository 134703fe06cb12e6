/// \file
/// What options come to in nodes, cores and viewports.

#include "ViewerScene.h"

#include "Outline.h"

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGSceneFileHandler.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGVolume.h>
#include <Tessaly/OSGComposableVolumeShadingStyle.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace viewer
{

namespace
{

// What the fields of VolumeNode and the shading styles call their choices.
constexpr osg::UInt32 simpleTransferFunction = 1;
constexpr osg::UInt32 preIntegratedTransferFunction = 2;
constexpr osg::UInt32 styleDvr = 0;
constexpr osg::UInt32 styleMip = 1;
constexpr osg::UInt32 styleXray = 2;
constexpr osg::UInt32 styleGradientModulation = 3;

osg::UInt32 fieldValue(Ray ray)
{
    return ray == Ray::Simple ? 1 : 2;
}

osg::UInt32 fieldValue(BoundingGeometry geometry)
{
    return geometry == BoundingGeometry::Box ? 1 : 2;
}

osg::UInt32 fieldValue(Traversal traversal)
{
    return traversal == Traversal::Simple ? 1 : 2;
}

osg::UInt32 fieldValue(Normals normals)
{
    switch (normals)
    {
    case Normals::Precomputed:
        return 1;
    case Normals::Central:
        return 2;
    case Normals::Sobel:
        return 3;
    }
    return 2;
}

osg::UInt32 transferFieldValue(bool preIntegrated)
{
    return preIntegrated ? preIntegratedTransferFunction : simpleTransferFunction;
}

osg::Vec3f vec(const Vec3 &v)
{
    return osg::Vec3f(static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2]));
}

osg::Color3f color3(const Vec3 &c)
{
    return osg::Color3f(static_cast<float>(c[0]), static_cast<float>(c[1]), static_cast<float>(c[2]));
}

Box unite(const Box &a, const Box &b)
{
    Box result = a;
    for (std::size_t axis = 0; axis < 3; ++axis)
    {
        result.low[axis] = std::min(a.low[axis], b.low[axis]);
        result.high[axis] = std::max(a.high[axis], b.high[axis]);
    }
    return result;
}

/// The opaque box in the scene's units, around its own middle and as it lies in the scene.
struct PlacedBox
{
    Vec3 size{};
    Vec3 center{};
};

PlacedBox place(const OpaqueBox &box, const Vec3 &extent)
{
    PlacedBox placed;
    for (std::size_t axis = 0; axis < 3; ++axis)
    {
        placed.size[axis] = box.size[axis] * extent[axis];
        placed.center[axis] = box.center[axis] * extent[axis];
    }
    return placed;
}

/// Whether a change of one of these begins a new program, behind which the style has no more say.
bool sameStrategies(const Options &a, const Options &b)
{
    return a.ray == b.ray && a.geometry == b.geometry && a.traversal == b.traversal &&
           a.normals == b.normals && a.preIntegrated == b.preIntegrated &&
           a.gradientModulation == b.gradientModulation;
}

/// Whether the style's exponent differs from what a new program begins with, so that it has to be handed in
/// behind each. Gradient modulation makes a program of its own last of all: then the exponent stays.
bool ownExponent(const Options &options)
{
    return options.shading == Shading::Lit && !options.gradientModulation.enabled &&
           options.material.shininess != Material::defaultShininess;
}

/// A core on a node of its own, with that child.
osg::NodePtr nodeOver(const osg::NodeCorePtr &core, const osg::NodePtr &child)
{
    const osg::NodePtr node = osg::makeNodeFor(core);
    if (child != osg::NullFC)
    {
        osg::beginEditCP(node, osg::Node::ChildrenFieldMask);
        node->addChild(child);
        osg::endEditCP(node, osg::Node::ChildrenFieldMask);
    }
    return node;
}

/// Moves what is below it.
osg::NodePtr shifted(const Vec3 &shift, const osg::NodePtr &child)
{
    osg::Matrix matrix;
    matrix.setTranslate(vec(shift));
    const osg::TransformPtr transform = osg::Transform::create();
    osg::beginEditCP(transform, osg::Transform::MatrixFieldMask);
    transform->setMatrix(matrix);
    osg::endEditCP(transform, osg::Transform::MatrixFieldMask);
    return nodeOver(transform, child);
}

/// The library pads volumes with zeros behind the last voxels, to whole blocks.
constexpr int blockEdge = 8;

Vec3 paddedExtent(const VolumeFacts &facts)
{
    Vec3 extent{};
    for (std::size_t axis = 0; axis < 3; ++axis)
    {
        const int blocks = (facts.voxels[axis] + blockEdge - 1) / blockEdge;
        extent[axis] = facts.spacing[axis] * blockEdge * blocks;
    }
    return extent;
}

osg::NodePtr boxNode(const OpaqueBox &box, const PlacedBox &placed)
{
    using namespace osg;
    const SimpleMaterialPtr material = SimpleMaterial::create();
    beginEditCP(material);
    material->setAmbient(color3(box.color));
    material->setDiffuse(color3(box.color));
    material->setSpecular(Color3f(0.3f, 0.3f, 0.3f));
    material->setShininess(20.0f);
    endEditCP(material);
    const MaterialGroupPtr coloured = MaterialGroup::create();
    beginEditCP(coloured, MaterialGroup::MaterialFieldMask);
    coloured->setMaterial(material);
    endEditCP(coloured, MaterialGroup::MaterialFieldMask);

    const Vec3f size = vec(placed.size);
    return shifted(placed.center, nodeOver(coloured, makeBox(size.x(), size.y(), size.z(), 1, 1, 1)));
}

/// The box around a node and everything below it, in the node's own coordinates.
Box boundsOf(const osg::NodePtr &node)
{
    node->updateVolume();
    osg::Pnt3f low;
    osg::Pnt3f high;
    node->getVolume().getBounds(low, high);
    Box box;
    for (osg::UInt32 axis = 0; axis < 3; ++axis)
    {
        box.low[axis] = low[axis];
        box.high[axis] = high[axis];
    }
    return box;
}

} // namespace

ViewerScene::ViewerScene() = default;

ViewerScene::~ViewerScene()
{
    // The node leaves its handler to whoever made the node.
    if (_volume != osg::NullFC)
    {
        _volume->setVolume(nullptr);
    }
    while (!_kept.empty())
    {
        osg::subRefCP(_kept.back());
        _kept.pop_back();
    }
}

template <typename Ptr>
Ptr ViewerScene::keep(const Ptr &container)
{
    osg::addRefCP(container);
    _kept.push_back(container);
    return container;
}

bool ViewerScene::build(const Scan &scan, const Options &options, const TransferPoints &points,
                        std::string &error)
{
    using namespace osg;
    _options = options;
    _facts = scan.facts();
    _scan = keep(scan.image());
    const Vec3 padded = paddedExtent(_facts);
    _volumeBox = {_facts.box().low, _facts.box().low + padded};
    _shift = -0.5 * (padded - _facts.extent);

    buildVolume(options);
    if (_volume->getVolume() == nullptr)
    {
        error = scan.name() + ": could not be set up as a volume";
        return false;
    }
    setTransferFunction(points);

    // The camera's frame, which the light moves with.
    _eye = keep(Transform::create());
    const NodePtr beacon = keep(makeNodeFor(_eye));
    _camera = keep(PerspectiveCamera::create());
    beginEditCP(_camera, Camera::BeaconFieldMask);
    _camera->setBeacon(beacon);
    endEditCP(_camera, Camera::BeaconFieldMask);

    // Over the viewer's left shoulder; the direction is towards the light.
    const DirectionalLightPtr light = keep(DirectionalLight::create());
    beginEditCP(light);
    light->setDirection(Vec3f(-0.5f, 0.6f, 1.0f));
    light->setAmbient(0.25f, 0.25f, 0.25f, 1.0f);
    light->setDiffuse(1.0f, 1.0f, 1.0f, 1.0f);
    light->setSpecular(1.0f, 1.0f, 1.0f, 1.0f);
    light->setBeacon(beacon);
    endEditCP(light);

    _root = keep(makeNodeFor(light));
    beginEditCP(_root, Node::ChildrenFieldMask);
    _root->addChild(beacon);
    _root->addChild(makeNodeFor(_volume));
    endEditCP(_root, Node::ChildrenFieldMask);
    if (!editOpaque(options.opaque, error))
    {
        return false;
    }

    buildViewports(options);
    setCamera(options.camera);
    startProgram();
    // The first frame makes textures and programs, the second has the picture.
    _framesDue = 2;
    return true;
}

void ViewerScene::buildVolume(const Options &options)
{
    using namespace osg;
    const TextureChunkPtr voxels = TextureChunk::create();
    beginEditCP(voxels);
    voxels->setImage(_scan);
    endEditCP(voxels);

    _style = keep(BasicVolumeShadingStyle::create());
    editStyle(options);

    // All fields in one edit ahead of the first frame: each one that changes later derives everything anew.
    _volume = keep(VolumeNode::create());
    beginEditCP(_volume);
    _volume->setVoxels(voxels);
    _volume->setSliceThickness(vec(_facts.spacing));
    _volume->setDimensions(Vec3f(-1, -1, -1)); // voxels times thickness
    _volume->setStepSize(static_cast<Real32>(options.step));
    _volume->setRayGenType(fieldValue(options.ray));
    _volume->setBvGeoType(fieldValue(options.geometry));
    _volume->setTraversalType(fieldValue(options.traversal));
    _volume->setNormalGenType(fieldValue(options.normals));
    _volume->setTransferFuncType(transferFieldValue(options.preIntegrated));
    _volume->setShadingStyle(_style);
    endEditCP(_volume);
    editModulation(options.gradientModulation);
}

void ViewerScene::buildViewports(const Options &options)
{
    using namespace osg;
    _background = keep(SolidBackground::create());
    beginEditCP(_background, SolidBackground::ColorFieldMask);
    _background->setColor(color3(options.background));
    endEditCP(_background, SolidBackground::ColorFieldMask);

    _passes = keep(VolumeViewport::create());
    beginEditCP(_passes);
    _passes->setCamera(_camera);
    _passes->setRoot(_root);
    _passes->setBackground(_background);
    _passes->getVolumeNodes().push_back(_volume);
    endEditCP(_passes);

    _view = keep(Viewport::create());
    beginEditCP(_view);
    _view->setCamera(_camera);
    _view->setRoot(_root);
    _view->setBackground(_background);
    _view->setSize(0, 0, 1, 1);
    endEditCP(_view);
}

void ViewerScene::editStyle(const Options &options)
{
    using namespace osg;
    beginEditCP(_style);
    _style->setShadingFuncType(options.shading == Shading::Mip    ? styleMip
                               : options.shading == Shading::Xray ? styleXray
                                                                  : styleDvr);
    _style->setLighting(options.shading == Shading::Lit);
    _style->setEmissiveColor(color3(options.material.emissive));
    _style->setDiffuseColor(color3(options.material.diffuse));
    _style->setSpecularColor(color3(options.material.specular));
    _style->setShininess(static_cast<Real32>(options.material.shininess));
    endEditCP(_style);
}

void ViewerScene::editModulation(const GradientModulation &modulation)
{
    using namespace osg;
    beginEditCP(_volume, VolumeNode::ComposableStyleFieldMask);
    _volume->getComposableStyle().clear();
    if (modulation.enabled)
    {
        const ComposableVolumeShadingStylePtr style = ComposableVolumeShadingStyle::create();
        beginEditCP(style);
        style->setShadingFuncType(styleGradientModulation);
        style->setRetainedOpacity(static_cast<Real32>(modulation.retained));
        style->setBoundaryOpacity(static_cast<Real32>(modulation.boundary));
        style->setOpacityFactor(static_cast<Real32>(modulation.factor));
        endEditCP(style);
        _volume->getComposableStyle().push_back(style);
    }
    endEditCP(_volume, VolumeNode::ComposableStyleFieldMask);
}

bool ViewerScene::editOpaque(const OpaqueBox &opaque, std::string &error)
{
    using namespace osg;
    NodePtr node;
    if (opaque.enabled && opaque.file.empty())
    {
        node = boxNode(opaque, place(opaque, _facts.extent));
    }
    else if (opaque.enabled)
    {
        node = SceneFileHandler::the().read(opaque.file.c_str());
        if (node == NullFC)
        {
            error = opaque.file + ": could not be read";
            return false;
        }
    }

    beginEditCP(_root, Node::ChildrenFieldMask);
    if (_opaque != NullFC)
    {
        _root->subChild(_opaque);
    }
    _opaque = NullFC;
    _bounds = _volumeBox;
    if (node != NullFC)
    {
        _bounds = unite(_bounds, boundsOf(node));
        // Ahead of the volume, which is drawn over what the rays stop at.
        _opaque = shifted(_shift, node);
        _root->insertChild(1, _opaque);
    }
    endEditCP(_root, Node::ChildrenFieldMask);
    return true;
}

void ViewerScene::setTransferFunction(const TransferPoints &points)
{
    using namespace osg;
    const ImagePtr table = Image::create();
    _visible.clear();
    beginEditCP(table);
    if (_facts.bits == 8)
    {
        const std::vector<std::uint8_t> entries = byteTable(points);
        table->set(Image::OSG_RGBA_PF, 256, 1, 1, 1, 1, 0.0, entries.data(), Image::OSG_UINT8_IMAGEDATA);
        for (std::size_t i = 3; i < entries.size(); i += 4)
        {
            _visible.push_back(entries[i] != 0);
        }
    }
    else
    {
        const std::vector<std::uint16_t> entries = halfTable(points);
        table->set(Image::OSG_RGBA_PF, 256, 256, 1, 1, 1, 0.0, nullptr, Image::OSG_FLOAT16_IMAGEDATA);
        std::memcpy(table->editData(), entries.data(), entries.size() * sizeof(entries[0]));
        for (std::size_t i = 3; i < entries.size(); i += 4)
        {
            _visible.push_back(entries[i] != 0);
        }
    }
    endEditCP(table);

    const TextureChunkPtr chunk = TextureChunk::create();
    beginEditCP(chunk);
    chunk->setImage(table);
    endEditCP(chunk);
    beginEditCP(_volume, VolumeNode::TransferFuncFieldMask);
    _volume->setTransferFunc(chunk);
    endEditCP(_volume, VolumeNode::TransferFuncFieldMask);
    _framesDue = std::max(_framesDue, 1);
    // In a frame the function comes ahead of the style, so that one frame does for both.
    if (_styleDue == 0 && ownExponent(_options))
    {
        _styleDue = 1;
    }
}

std::vector<Vec3> ViewerScene::framed() const
{
    std::vector<Vec3> points = outlineOf({_scan->getData(), _facts.bits, _facts.voxels}, _visible);
    for (Vec3 &point : points)
    {
        for (std::size_t axis = 0; axis < 3; ++axis)
        {
            point[axis] = point[axis] * _facts.spacing[axis] - 0.5 * _facts.extent[axis];
        }
    }
    return points.empty() ? cornersOf(_facts.box()) : points;
}

void ViewerScene::setCamera(const CameraRequest &request)
{
    using namespace osg;
    _options.camera = request;
    // With a position and a focal point nothing is framed, and looking for what to frame takes a while.
    const bool placed = request.position && request.focalPoint;
    _placement = placeCamera(request, placed ? cornersOf(_facts.box()) : framed(), _bounds,
                             static_cast<double>(_options.width) / _options.height);

    beginEditCP(_eye, Transform::MatrixFieldMask);
    _eye->setMatrix(Matrix(vec(_placement.right), vec(_placement.up), vec(_placement.back),
                           vec(_placement.position + _shift)));
    endEditCP(_eye, Transform::MatrixFieldMask);
    beginEditCP(_camera);
    _camera->setFov(static_cast<Real32>(_placement.fieldOfView));
    _camera->setNear(static_cast<Real32>(_placement.nearPlane));
    _camera->setFar(static_cast<Real32>(_placement.farPlane));
    endEditCP(_camera);
    _framesDue = std::max(_framesDue, 1);
}

void ViewerScene::editStep()
{
    using namespace osg;
    const Real32 step = static_cast<Real32>(_detail.step * _options.step);
    if (step == _volume->getStepSize())
    {
        return;
    }
    beginEditCP(_volume, VolumeNode::StepSizeFieldMask);
    _volume->setStepSize(step);
    endEditCP(_volume, VolumeNode::StepSizeFieldMask);
    _framesDue = std::max(_framesDue, 1);
}

void ViewerScene::editSize()
{
    using namespace osg;
    // Sides up to 1 are shares of the window's, above they are its last pixel.
    const auto last = [this](int side)
    { return static_cast<Real32>(std::max(side / _detail.shrink, 3) - 1); };
    const bool whole = _detail.shrink == 1;
    beginEditCP(_view);
    _view->setSize(0, 0, whole ? 1.0f : last(_options.width), whole ? 1.0f : last(_options.height));
    endEditCP(_view);
    startProgram();
}

void ViewerScene::setDetail(const Detail &detail)
{
    const int shrink = std::exchange(_detail, detail).shrink;
    editStep();
    if (detail.shrink != shrink)
    {
        editSize();
    }
}

void ViewerScene::startProgram()
{
    _framesDue = std::max(_framesDue, 1);
    if (ownExponent(_options))
    {
        _styleDue = 2;
        _framesDue = 2;
    }
}

bool ViewerScene::apply(const Options &options, std::string &error)
{
    using namespace osg;
    const Options before = _options;
    _options = options;
    _options.camera = before.camera;
    bool done = true;

    editStep();
    BitVector changed = 0;
    const auto field = [&](bool differs, BitVector mask) { changed |= differs ? mask : 0; };
    field(options.ray != before.ray, VolumeNode::RayGenTypeFieldMask);
    field(options.geometry != before.geometry, VolumeNode::BvGeoTypeFieldMask);
    field(options.traversal != before.traversal, VolumeNode::TraversalTypeFieldMask);
    field(options.normals != before.normals, VolumeNode::NormalGenTypeFieldMask);
    field(options.preIntegrated != before.preIntegrated, VolumeNode::TransferFuncTypeFieldMask);
    if (changed != 0)
    {
        beginEditCP(_volume, changed);
        _volume->setRayGenType(fieldValue(options.ray));
        _volume->setBvGeoType(fieldValue(options.geometry));
        _volume->setTraversalType(fieldValue(options.traversal));
        _volume->setNormalGenType(fieldValue(options.normals));
        _volume->setTransferFuncType(transferFieldValue(options.preIntegrated));
        endEditCP(_volume, changed);
    }
    if (!(options.gradientModulation == before.gradientModulation))
    {
        editModulation(options.gradientModulation);
    }
    if (options.shading != before.shading || !(options.material == before.material))
    {
        editStyle(options);
    }
    if (options.background != before.background)
    {
        beginEditCP(_background, SolidBackground::ColorFieldMask);
        _background->setColor(color3(options.background));
        endEditCP(_background, SolidBackground::ColorFieldMask);
    }
    bool newBounds = false;
    if (!(options.opaque == before.opaque))
    {
        done = editOpaque(options.opaque, error);
        newBounds = done;
        if (!done)
        {
            _options.opaque = before.opaque;
        }
    }
    const bool newShape = options.width != before.width || options.height != before.height;
    if (newShape)
    {
        editSize();
    }
    if (newBounds || newShape || !(options.camera == before.camera))
    {
        setCamera(options.camera);
    }

    _framesDue = std::max(_framesDue, 1);
    if (!sameStrategies(options, before))
    {
        startProgram();
    }
    else if (ownExponent(options))
    {
        _styleDue = std::max(_styleDue, 1);
    }
    return done;
}

void ViewerScene::prepareFrame()
{
    using namespace osg;
    if (_styleDue > 0 && --_styleDue == 0)
    {
        beginEditCP(_style, BasicVolumeShadingStyle::ShininessFieldMask);
        endEditCP(_style, BasicVolumeShadingStyle::ShininessFieldMask);
    }
    // The passes would do it, too; here its time is told apart from theirs.
    _volume->initVolume();
}

void ViewerScene::frameDrawn()
{
    _framesDue = std::max(_framesDue - 1, 0);
}

} // namespace viewer
