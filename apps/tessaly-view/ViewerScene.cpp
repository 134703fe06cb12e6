/// \file
/// The scene graph of one volume, and the window that it is drawn in.

#include "ViewerScene.h"

#include "AutomaticTransferFunction.h"
#include "HiddenAir.h"
#include "NumberText.h"
#include "Outline.h"

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGImageFileHandler.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGViewport.h>
#include <Tessaly/OSGBasicVolumeShadingStyle.h>
#include <Tessaly/OSGComposableVolumeShadingStyle.h>
#include <Tessaly/OSGVolumeViewport.h>

#include <algorithm>
#include <cstring>
#include <sstream>

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

osg::Vec3f vec(const Vec3 &v)
{
    return osg::Vec3f(static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2]));
}

osg::Color3f color3(const Vec3 &c)
{
    return osg::Color3f(static_cast<float>(c[0]), static_cast<float>(c[1]), static_cast<float>(c[2]));
}

/// The voxel spacing that the file stated; 1 for an axis where it stated none that can be.
Vec3 spacingOf(const osg::ImagePtr &scan)
{
    Vec3 spacing{1, 1, 1};
    const std::string *text = scan->findAttachmentField("SliceThickness");
    if (text == nullptr)
    {
        return spacing;
    }
    std::istringstream words(*text);
    std::string word;
    for (double &side : spacing)
    {
        double value = 0.0;
        if (words >> word && numberFrom(word, value) && value > 0.0)
        {
            side = value;
        }
    }
    return spacing;
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

    Box box() const { return {center - 0.5 * size, center + 0.5 * size}; }
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

} // namespace

ViewerScene::ViewerScene() = default;

ViewerScene::~ViewerScene()
{
    // The node leaves its handler to whoever made the node.
    if (_volume != osg::NullFC)
    {
        _volume->setVolume(nullptr);
    }
    _action.reset();
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

bool ViewerScene::read(const std::string &fileName, std::string &error)
{
    const osg::ImagePtr scan = osg::ImageFileHandler::the().read(fileName.c_str());
    if (scan == osg::NullFC)
    {
        error = fileName + ": could not be read";
        return false;
    }
    _scan = keep(scan);

    const std::array<int, 3> voxels{scan->getWidth(), scan->getHeight(), scan->getDepth()};
    const std::string sides =
        std::to_string(voxels[0]) + " x " + std::to_string(voxels[1]) + " x " + std::to_string(voxels[2]);
    if (*std::min_element(voxels.begin(), voxels.end()) < 2)
    {
        error = fileName + ": has " + sides + " voxels, a volume has at least 2 along each axis";
        return false;
    }
    if (scan->getComponentCount() != 1)
    {
        error = fileName + ": has " + std::to_string(scan->getComponentCount()) +
                " samples a voxel, only one can be drawn";
        return false;
    }
    const osg::Int32 type = scan->getDataType();
    if (type != osg::Image::OSG_UINT8_IMAGEDATA && type != osg::Image::OSG_UINT16_IMAGEDATA)
    {
        error =
            fileName + ": has voxels of a type that can't be drawn, only 8 and 16 bits without a sign can";
        return false;
    }

    _facts.voxels = voxels;
    _facts.bits = type == osg::Image::OSG_UINT8_IMAGEDATA ? 8 : 16;
    _facts.spacing = spacingOf(scan);
    _facts.bytes = static_cast<std::size_t>(_facts.bits / 8);
    for (std::size_t axis = 0; axis < 3; ++axis)
    {
        _facts.extent[axis] = _facts.spacing[axis] * voxels[axis];
        _facts.bytes *= static_cast<std::size_t>(voxels[axis]);
    }
    return true;
}

Histogram ViewerScene::histogram() const
{
    const osg::UInt8 *voxels = _scan->getData();
    return _facts.bits == 8 ? histogramOf8(voxels, _facts.bytes) : histogramOf16(voxels, _facts.bytes / 2);
}

bool ViewerScene::build(const Options &options, const TransferPoints *points, std::string &error)
{
    using namespace osg;
    _width = options.width;
    _height = options.height;
    _bounds = _facts.box();
    if (options.opaque.enabled)
    {
        _bounds = unite(_bounds, place(options.opaque, _facts.extent).box());
    }

    // The library brings 16-bit voxels to its own range as it takes them, so their histogram comes later.
    TransferPoints chosen = points != nullptr ? *points : TransferPoints();
    if (_facts.bits == 8)
    {
        if (points == nullptr)
        {
            chosen = automaticTransferFunction(histogram());
        }
        const bool classified = options.shading == Shading::Dvr || options.shading == Shading::Lit;
        if (classified && hidesAir(byteTable(chosen)))
        {
            liftAir(_scan->editData(), _facts.bytes);
        }
    }
    buildVolume(options);
    if (_volume->getVolume() == nullptr)
    {
        error = options.input + ": could not be set up as a volume";
        return false;
    }
    if (_facts.bits != 8 && points == nullptr)
    {
        chosen = automaticTransferFunction(histogram());
    }
    setTransferFunction(chosen);

    NodePtr head = keep(Node::create());
    beginEditCP(head, Node::CoreFieldMask);
    head->setCore(_volume);
    endEditCP(head, Node::CoreFieldMask);

    // The camera's frame, which the light moves with.
    _eye = keep(Transform::create());
    NodePtr beacon = keep(Node::create());
    beginEditCP(beacon, Node::CoreFieldMask);
    beacon->setCore(_eye);
    endEditCP(beacon, Node::CoreFieldMask);
    _camera = keep(PerspectiveCamera::create());
    beginEditCP(_camera, Camera::BeaconFieldMask);
    _camera->setBeacon(beacon);
    endEditCP(_camera, Camera::BeaconFieldMask);
    setCamera(options.camera);

    // Over the viewer's left shoulder; the direction is towards the light.
    DirectionalLightPtr light = keep(DirectionalLight::create());
    beginEditCP(light);
    light->setDirection(Vec3f(-0.5f, 0.6f, 1.0f));
    light->setAmbient(0.25f, 0.25f, 0.25f, 1.0f);
    light->setDiffuse(1.0f, 1.0f, 1.0f, 1.0f);
    light->setSpecular(1.0f, 1.0f, 1.0f, 1.0f);
    light->setBeacon(beacon);
    endEditCP(light);

    NodePtr root = keep(Node::create());
    beginEditCP(root, Node::CoreFieldMask | Node::ChildrenFieldMask);
    root->setCore(light);
    root->addChild(beacon);
    if (options.opaque.enabled)
    {
        root->addChild(opaqueBox(options.opaque));
    }
    root->addChild(head);
    endEditCP(root, Node::CoreFieldMask | Node::ChildrenFieldMask);

    SolidBackgroundPtr background = keep(SolidBackground::create());
    beginEditCP(background, SolidBackground::ColorFieldMask);
    background->setColor(color3(options.background));
    endEditCP(background, SolidBackground::ColorFieldMask);

    // The passes stand ahead of the viewport that shows the scene.
    VolumeViewportPtr passes = keep(VolumeViewport::create());
    beginEditCP(passes);
    passes->setCamera(_camera);
    passes->setRoot(root);
    passes->setBackground(background);
    passes->getVolumeNodes().push_back(_volume);
    endEditCP(passes);

    _picture = keep(Image::create());
    if (!_picture->set(Image::OSG_RGB_PF, _width, _height))
    {
        error = "no memory for a picture of " + std::to_string(_width) + " x " + std::to_string(_height) +
                " pixels";
        return false;
    }
    GrabForegroundPtr grab = keep(GrabForeground::create());
    beginEditCP(grab);
    grab->setImage(_picture);
    endEditCP(grab);

    ViewportPtr view = keep(Viewport::create());
    beginEditCP(view);
    view->setCamera(_camera);
    view->setRoot(root);
    view->setBackground(background);
    view->setSize(0, 0, 1, 1);
    view->getForegrounds().push_back(grab);
    endEditCP(view);

    _window = keep(EGLWindow::create());
    beginEditCP(_window);
    _window->resize(_width, _height);
    _window->addPort(passes);
    _window->addPort(view);
    endEditCP(_window);
    return true;
}

void ViewerScene::buildVolume(const Options &options)
{
    using namespace osg;
    TextureChunkPtr voxels = keep(TextureChunk::create());
    beginEditCP(voxels);
    voxels->setImage(_scan);
    endEditCP(voxels);

    // All fields in one edit ahead of the first frame: each one that changes later derives everything anew.
    _volume = keep(VolumeNode::create());
    beginEditCP(_volume);
    _volume->setVoxels(voxels);
    _volume->setSwapped(options.swapped);
    _volume->setSliceThickness(vec(_facts.spacing));
    _volume->setDimensions(Vec3f(-1, -1, -1)); // voxels times thickness
    _volume->setStepSize(static_cast<Real32>(options.step));
    _volume->setRayGenType(fieldValue(options.ray));
    _volume->setBvGeoType(fieldValue(options.geometry));
    _volume->setTraversalType(fieldValue(options.traversal));
    _volume->setNormalGenType(fieldValue(options.normals));
    _volume->setTransferFuncType(options.preIntegrated ? preIntegratedTransferFunction
                                                       : simpleTransferFunction);
    _volume->setShadingStyle(shadingStyle(options.shading));
    if (options.gradientModulation.enabled)
    {
        ComposableVolumeShadingStylePtr modulation = keep(ComposableVolumeShadingStyle::create());
        beginEditCP(modulation);
        modulation->setShadingFuncType(styleGradientModulation);
        modulation->setRetainedOpacity(static_cast<Real32>(options.gradientModulation.retained));
        modulation->setBoundaryOpacity(static_cast<Real32>(options.gradientModulation.boundary));
        modulation->setOpacityFactor(static_cast<Real32>(options.gradientModulation.factor));
        endEditCP(modulation);
        _volume->getComposableStyle().push_back(modulation);
    }
    endEditCP(_volume);
}

osg::NodeCorePtr ViewerScene::shadingStyle(Shading shading)
{
    using namespace osg;
    BasicVolumeShadingStylePtr style = keep(BasicVolumeShadingStyle::create());
    beginEditCP(style);
    style->setShadingFuncType(shading == Shading::Mip    ? styleMip
                              : shading == Shading::Xray ? styleXray
                                                         : styleDvr);
    style->setLighting(shading == Shading::Lit);
    style->setEmissiveColor(Color3f(0.28f, 0.28f, 0.28f));
    style->setDiffuseColor(Color3f(1.0f, 1.0f, 1.0f));
    style->setSpecularColor(Color3f(0.22f, 0.22f, 0.22f));
    style->setShininess(0.2f);
    endEditCP(style);
    return style;
}

osg::NodePtr ViewerScene::opaqueBox(const OpaqueBox &box)
{
    using namespace osg;
    const PlacedBox placed = place(box, _facts.extent);

    SimpleMaterialPtr material = keep(SimpleMaterial::create());
    beginEditCP(material);
    material->setAmbient(color3(box.color));
    material->setDiffuse(color3(box.color));
    material->setSpecular(Color3f(0.3f, 0.3f, 0.3f));
    material->setShininess(20.0f);
    endEditCP(material);
    MaterialGroupPtr coloured = keep(MaterialGroup::create());
    beginEditCP(coloured, MaterialGroup::MaterialFieldMask);
    coloured->setMaterial(material);
    endEditCP(coloured, MaterialGroup::MaterialFieldMask);

    const Vec3f size = vec(placed.size);
    NodePtr shape = keep(makeBox(size.x(), size.y(), size.z(), 1, 1, 1));
    NodePtr paint = keep(Node::create());
    beginEditCP(paint, Node::CoreFieldMask | Node::ChildrenFieldMask);
    paint->setCore(coloured);
    paint->addChild(shape);
    endEditCP(paint, Node::CoreFieldMask | Node::ChildrenFieldMask);

    Matrix matrix;
    matrix.setTranslate(vec(placed.center));
    TransformPtr shift = keep(Transform::create());
    beginEditCP(shift, Transform::MatrixFieldMask);
    shift->setMatrix(matrix);
    endEditCP(shift, Transform::MatrixFieldMask);
    NodePtr node = keep(Node::create());
    beginEditCP(node, Node::CoreFieldMask | Node::ChildrenFieldMask);
    node->setCore(shift);
    node->addChild(paint);
    endEditCP(node, Node::CoreFieldMask | Node::ChildrenFieldMask);
    return node;
}

void ViewerScene::setTransferFunction(const TransferPoints &points)
{
    using namespace osg;
    ImagePtr table = Image::create();
    std::vector<bool> visible;
    beginEditCP(table);
    if (_facts.bits == 8)
    {
        const std::vector<std::uint8_t> entries = byteTable(points);
        table->set(Image::OSG_RGBA_PF, 256, 1, 1, 1, 1, 0.0, entries.data(), Image::OSG_UINT8_IMAGEDATA);
        for (std::size_t i = 3; i < entries.size(); i += 4)
        {
            visible.push_back(entries[i] != 0);
        }
    }
    else
    {
        const std::vector<std::uint16_t> entries = halfTable(points);
        table->set(Image::OSG_RGBA_PF, 256, 256, 1, 1, 1, 0.0, nullptr, Image::OSG_FLOAT16_IMAGEDATA);
        std::memcpy(table->editData(), entries.data(), entries.size() * sizeof(entries[0]));
        for (std::size_t i = 3; i < entries.size(); i += 4)
        {
            visible.push_back(entries[i] != 0);
        }
    }
    endEditCP(table);
    frame(visible);

    TextureChunkPtr chunk = keep(TextureChunk::create());
    beginEditCP(chunk);
    chunk->setImage(table);
    endEditCP(chunk);
    beginEditCP(_volume, VolumeNode::TransferFuncFieldMask);
    _volume->setTransferFunc(chunk);
    endEditCP(_volume, VolumeNode::TransferFuncFieldMask);
}

void ViewerScene::frame(const std::vector<bool> &visible)
{
    _framed = outlineOf({_scan->getData(), _facts.bits, _facts.voxels}, visible);
    for (Vec3 &point : _framed)
    {
        for (std::size_t axis = 0; axis < 3; ++axis)
        {
            point[axis] = point[axis] * _facts.spacing[axis] - 0.5 * _facts.extent[axis];
        }
    }
    if (_framed.empty())
    {
        _framed = cornersOf(_facts.box());
    }
}

void ViewerScene::setCamera(const CameraRequest &request)
{
    using namespace osg;
    const CameraPlacement placed =
        placeCamera(request, _framed, _bounds, static_cast<double>(_width) / static_cast<double>(_height));

    beginEditCP(_eye, Transform::MatrixFieldMask);
    _eye->setMatrix(Matrix(vec(placed.right), vec(placed.up), vec(placed.back), vec(placed.position)));
    endEditCP(_eye, Transform::MatrixFieldMask);
    beginEditCP(_camera);
    _camera->setFov(static_cast<Real32>(placed.fieldOfView));
    _camera->setNear(static_cast<Real32>(placed.nearPlane));
    _camera->setFar(static_cast<Real32>(placed.farPlane));
    endEditCP(_camera);
}

bool ViewerScene::open(std::string &error)
{
    // The context stays current: frames then don't change it twice each.
    _window->init();
    if (!_window->activate())
    {
        error = "no GL context could be made";
        return false;
    }
    GLint largest = 0;
    glGetIntegerv(GL_MAX_3D_TEXTURE_SIZE, &largest);
    const int side = *std::max_element(_facts.voxels.begin(), _facts.voxels.end());
    if (side > largest)
    {
        error = "the volume has " + std::to_string(side) + " voxels along an axis, this machine's GL takes " +
                std::to_string(largest);
        return false;
    }
    GLint viewport[2] = {0, 0};
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, viewport);
    if (_width > viewport[0] || _height > viewport[1])
    {
        error = "a picture of " + std::to_string(_width) + " x " + std::to_string(_height) +
                " pixels is too large, this machine's GL takes " + std::to_string(viewport[0]) + " x " +
                std::to_string(viewport[1]);
        return false;
    }
    _action.reset(osg::RenderAction::create());
    return true;
}

void ViewerScene::draw()
{
    _window->render(_action.get());
}

bool ViewerScene::write(const std::string &fileName, std::string &error)
{
    if (!osg::ImageFileHandler::the().write(_picture, fileName.c_str()))
    {
        error = fileName + ": could not be written";
        return false;
    }
    return true;
}

} // namespace viewer
