#include "VolumeStage.h"

#include "VolumeNodeHandler.h"

#include "support/Png.h"
#include "support/ReadBack.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGReal16.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGThread.h>
#include <OpenSG/OSGTransform.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>

using namespace osg;

namespace test
{

namespace
{

template <class PointerT>
void edit(const PointerT &container, BitVector fields)
{
    beginEditCP(container, fields);
    endEditCP(container, fields);
}

void addChildTo(const NodePtr &parent, const NodePtr &child)
{
    beginEditCP(parent, Node::ChildrenFieldMask);
    parent->addChild(child);
    endEditCP(parent, Node::ChildrenFieldMask);
}

void setMatrix(const TransformPtr &transform, const Matrix &matrix)
{
    beginEditCP(transform, Transform::MatrixFieldMask);
    transform->setMatrix(matrix);
    endEditCP(transform, Transform::MatrixFieldMask);
}

NodePtr unlitBox(const reference::OpaqueBox &box)
{
    const SimpleMaterialPtr material = SimpleMaterial::create();
    beginEditCP(material);
    material->setLit(false);
    material->setDiffuse(Color3f(box.color.r, box.color.g, box.color.b));
    endEditCP(material);
    const reference::Vec3d size = reference::operator-(box.high, box.low);
    const GeometryPtr geometry = makeBoxGeo(float(size[0]), float(size[1]), float(size[2]), 1, 1, 1);
    beginEditCP(geometry);
    geometry->setMaterial(material);
    endEditCP(geometry);
    TransformPtr transform;
    const NodePtr node = makeCoredNode<Transform>(&transform);
    const reference::Mat4 toMiddle =
        reference::translation(box.low[0] + size[0] / 2, box.low[1] + size[1] / 2, box.low[2] + size[2] / 2);
    setMatrix(transform, matrixOf(reference::operator*(box.toWorld, toMiddle)));
    addChildTo(node, makeNodeFor(geometry));
    return node;
}

Vec3f vectorOf(const reference::Vec3d &v)
{
    return Vec3f(float(v[0]), float(v[1]), float(v[2]));
}

Color3f colorOf(const reference::Color &color)
{
    return Color3f(color.r, color.g, color.b);
}

bool sameColor(const reference::Color &a, const reference::Color &b)
{
    return a.r == b.r && a.g == b.g && a.b == b.b;
}

bool sameBoxes(const std::vector<reference::OpaqueBox> &a, const std::vector<reference::OpaqueBox> &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const reference::OpaqueBox &x, const reference::OpaqueBox &y) {
                          return x.toWorld == y.toWorld && x.low == y.low && x.high == y.high &&
                                 sameColor(x.color, y.color);
                      });
}

bool sameVoxels(const reference::Scene &a, const reference::Scene &b)
{
    return a.volume.width == b.volume.width && a.volume.height == b.volume.height &&
           a.volume.depth == b.volume.depth && a.volume.bits == b.volume.bits &&
           a.volume.voxels == b.volume.voxels && a.swapped == b.swapped &&
           a.sliceThickness == b.sliceThickness && a.dimensions == b.dimensions;
}

bool sameStyle(const reference::Scene &a, const reference::Scene &b)
{
    return a.shading == b.shading && sameColor(a.emissiveColor, b.emissiveColor) &&
           sameColor(a.diffuseColor, b.diffuseColor) && sameColor(a.specularColor, b.specularColor);
}

} // namespace

Matrix matrixOf(const reference::Mat4 &m)
{
    const auto f = [&](int i) { return float(m[std::size_t(i)]); };
    return Matrix(f(0), f(1), f(2), f(3), f(4), f(5), f(6), f(7), f(8), f(9), f(10), f(11), f(12), f(13),
                  f(14), f(15));
}

TextureChunkPtr voxelTexture(const reference::Volume &volume)
{
    const std::vector<std::uint8_t> bytes = volume.bytes();
    const ImagePtr image = Image::create();
    beginEditCP(image);
    image->set(Image::OSG_L_PF, volume.width, volume.height, volume.depth, 1, 1, 0.0, bytes.data(),
               volume.bits == 16 ? Image::OSG_UINT16_IMAGEDATA : Image::OSG_UINT8_IMAGEDATA);
    endEditCP(image);
    const TextureChunkPtr texture = TextureChunk::create();
    beginEditCP(texture);
    texture->setImage(image);
    endEditCP(texture);
    return texture;
}

TextureChunkPtr tableTexture(const reference::TransferSource &source)
{
    if(source.bytes.empty() && source.halves.empty())
        return NullFC;
    const ImagePtr image = Image::create();
    beginEditCP(image);
    if(!source.bytes.empty())
    {
        image->set(Image::OSG_RGBA_PF, 256, 1, 1, 1, 1, 0.0, source.bytes.data(), Image::OSG_UINT8_IMAGEDATA);
    }
    else
    {
        std::vector<Real16> halves;
        for(const float value : source.halves)
            halves.push_back(Real16(value));
        image->set(Image::OSG_RGBA_PF, 256, 256, 1, 1, 1, 0.0, reinterpret_cast<const UInt8 *>(halves.data()),
                   Image::OSG_FLOAT16_IMAGEDATA);
    }
    endEditCP(image);
    const TextureChunkPtr texture = TextureChunk::create();
    beginEditCP(texture);
    texture->setImage(image);
    endEditCP(texture);
    return texture;
}

VolumeStage::VolumeStage(int width, int height, EGLWindowPtr given) : window(given)
{
    volume = VolumeNode::create();
    style = BasicVolumeShadingStyle::create();
    addRefCP(style);
    modulation = ComposableVolumeShadingStyle::create();
    addRefCP(modulation);
    beginEditCP(modulation);
    modulation->setShadingFuncType(3);
    endEditCP(modulation);

    const NodePtr beacon = makeCoredNode<Transform>(&eye);
    volumeHead = makeNodeFor(volume);
    const NodePtr placer = makeCoredNode<Transform>(&place);
    addChildTo(placer, volumeHead);
    boxes = makeCoredNode<Group>();

    // The light moves with the camera, so that its direction is in eye coordinates.
    const DirectionalLightPtr light = DirectionalLight::create();
    beginEditCP(light);
    light->setBeacon(beacon);
    light->setDirection(Vec3f(0, 0, 1));
    light->setDiffuse(Color4f(1, 1, 1, 1));
    light->setSpecular(Color4f(1, 1, 1, 1));
    endEditCP(light);
    root = makeNodeFor(light);
    addRefCP(root);
    addChildTo(root, beacon);
    addChildTo(root, boxes);
    addChildTo(root, placer);

    camera = PerspectiveCamera::create();
    addRefCP(camera);
    beginEditCP(camera);
    camera->setBeacon(beacon);
    endEditCP(camera);
    background = SolidBackground::create();
    addRefCP(background);

    passes = VolumeViewport::create();
    beginEditCP(passes);
    passes->setCamera(camera);
    passes->setRoot(root);
    passes->setBackground(background);
    passes->getVolumeNodes().push_back(volume);
    endEditCP(passes);
    view = Viewport::create();
    beginEditCP(view);
    view->setCamera(camera);
    view->setRoot(root);
    view->setBackground(background);
    view->setSize(0, 0, 1, 1);
    endEditCP(view);

    if(window == NullFC)
        window = EGLWindow::create();
    addRefCP(window);
    beginEditCP(window);
    window->resize(width, height);
    window->addPort(passes);
    window->addPort(view);
    endEditCP(window);
    window->init();
    action = RenderAction::create();
}

VolumeStage::~VolumeStage()
{
    delete action;
    // The node leaves its handler to whoever set it.
    volume->setVolume(nullptr);
    window->deactivate();
    subRefCP(window);
    subRefCP(background);
    subRefCP(camera);
    subRefCP(root);
    subRefCP(modulation);
    subRefCP(style);
    Thread::getCurrentChangeList()->clearAll();
}

void VolumeStage::showVolume(const reference::Scene &scene)
{
    const reference::Scene *const old = _shown.get();
    BitVector fields = 0;
    beginEditCP(volume);
    const bool isNew = old == nullptr || !sameVoxels(*old, scene);
    if(isNew)
    {
        // The extent is read where the volume is made.
        volume->setVoxels(voxelTexture(scene.volume));
        volume->setSwapped(scene.swapped);
        volume->setSliceThickness(vectorOf(scene.sliceThickness));
        volume->setDimensions(vectorOf(scene.dimensions));
        fields |= VolumeNode::VoxelsFieldMask | VolumeNode::SwappedFieldMask |
                  VolumeNode::SliceThicknessFieldMask | VolumeNode::DimensionsFieldMask;
    }
    if(old == nullptr || old->transfer.bytes != scene.transfer.bytes ||
       old->transfer.halves != scene.transfer.halves)
    {
        volume->setTransferFunc(tableTexture(scene.transfer));
        fields |= VolumeNode::TransferFuncFieldMask;
    }
    using V = VolumeNode;
    V *const node = volume.get();
    const auto set = [&](auto old, auto value, auto setter, BitVector field)
    {
        if(old == value)
            return;
        (node->*setter)(value);
        fields |= field;
    };
    set(node->getStepSize(), scene.stepSize, &V::setStepSize, V::StepSizeFieldMask);
    set(node->getRayGenType(), scene.ray == reference::RayType::Simple ? 1u : 2u, &V::setRayGenType,
        V::RayGenTypeFieldMask);
    set(node->getBvGeoType(), scene.geometry == reference::GeometryType::Box ? 1u : 2u, &V::setBvGeoType,
        V::BvGeoTypeFieldMask);
    set(node->getTraversalType(), scene.traversal == reference::TraversalType::Simple ? 1u : 2u,
        &V::setTraversalType, V::TraversalTypeFieldMask);
    set(node->getNormalGenType(), UInt32(scene.normal) + 1u, &V::setNormalGenType, V::NormalGenTypeFieldMask);
    set(node->getTransferFuncType(), scene.preintegrated ? 2u : 1u, &V::setTransferFuncType,
        V::TransferFuncTypeFieldMask);

    if(old == nullptr || !sameStyle(*old, scene))
    {
        beginEditCP(style);
        style->setShadingFuncType(scene.shading == reference::ShadingType::Mip    ? 1
                                  : scene.shading == reference::ShadingType::XRay ? 2
                                                                                  : 0);
        style->setLighting(scene.shading == reference::ShadingType::LitDvr);
        style->setEmissiveColor(colorOf(scene.emissiveColor));
        style->setDiffuseColor(colorOf(scene.diffuseColor));
        style->setSpecularColor(colorOf(scene.specularColor));
        style->setShininess(25.0f / 128.0f);
        endEditCP(style);
    }
    // The plain kind needs no style.
    const bool styled = scene.shading != reference::ShadingType::Dvr;
    if(styled != (volume->getShadingStyle() != NullFC))
    {
        volume->setShadingStyle(styled ? NodeCorePtr(style) : NodeCorePtr());
        fields |= V::ShadingStyleFieldMask;
    }
    if(old == nullptr || old->kgc != scene.kgc || old->kgs != scene.kgs || old->kge != scene.kge)
    {
        beginEditCP(modulation);
        modulation->setRetainedOpacity(scene.kgc);
        modulation->setBoundaryOpacity(scene.kgs);
        modulation->setOpacityFactor(scene.kge);
        endEditCP(modulation);
    }
    if(scene.gradientModulation != (volume->getComposableStyle().size() == 1))
    {
        volume->getComposableStyle().clear();
        if(scene.gradientModulation)
            volume->getComposableStyle().push_back(modulation);
        fields |= V::ComposableStyleFieldMask;
    }
    endEditCP(volume, fields);
    if(isNew && old != nullptr)
    {
        // The viewport hands its textures to the new handler when it hears of the node again.
        edit(passes, VolumeViewport::VolumeNodesFieldMask);
    }
}

void VolumeStage::showBoxes(const reference::Scene &scene)
{
    if(_shown != nullptr && sameBoxes(_shown->boxes, scene.boxes))
        return;
    beginEditCP(boxes, Node::ChildrenFieldMask);
    while(boxes->getNChildren() > 0)
        boxes->subChild(boxes->getNChildren() - 1);
    for(const reference::OpaqueBox &box : scene.boxes)
        boxes->addChild(unlitBox(box));
    endEditCP(boxes, Node::ChildrenFieldMask);
}

void VolumeStage::showCamera(const reference::Scene &scene)
{
    setMatrix(eye, matrixOf(scene.camera.beaconToWorld));
    setMatrix(place, matrixOf(scene.nodeToWorld));
    beginEditCP(camera);
    camera->setFov(float(scene.camera.fov));
    camera->setNear(float(scene.camera.nearPlane));
    camera->setFar(float(scene.camera.farPlane));
    endEditCP(camera);
    beginEditCP(background);
    background->setColor(colorOf(scene.background));
    endEditCP(background);
    if(window->getWidth() != scene.width || window->getHeight() != scene.height)
        window->resize(scene.width, scene.height);
}

void VolumeStage::show(const reference::Scene &scene)
{
    showVolume(scene);
    showBoxes(scene);
    showCamera(scene);
    _shown = std::make_unique<reference::Scene>(scene);
}

RgbaImage VolumeStage::frame()
{
    window->activate();
    window->render(action);
    Thread::getCurrentChangeList()->clearAll();
    return readPixels(0, 0, window->getWidth(), window->getHeight());
}

RgbaImage VolumeStage::picture()
{
    if(!_prepared)
    {
        frame();
        _prepared = true;
    }
    return frame();
}

::testing::AssertionResult VolumeStage::matches(const reference::Scene &scene, const std::string &name,
                                                double judged)
{
    show(scene);
    return agrees(picture(), reference::render(scene), name, judged);
}

TextureChunkPtr VolumeStage::chunkOf(StageTexture which)
{
    if(volume->getVolume() == nullptr)
        return NullFC;
    const NodePtr rootNode = volume->getVolume()->getRootNode();
    const GeometryPtr quad = GeometryPtr::dcast(rootNode->getChild(0)->getCore());
    const ChunkMaterialPtr material = ChunkMaterialPtr::dcast(quad->getMaterial());
    UInt32 unit = 0;
    for(UInt32 i = 0; i < material->getChunks().size(); ++i)
    {
        const TextureChunkPtr texture = TextureChunkPtr::dcast(material->getChunk(i));
        if(texture != NullFC && unit++ == UInt32(which))
            return texture;
    }
    return NullFC;
}

SHLChunkPtr VolumeStage::program()
{
    return volume->getVolume()->getShader();
}

std::pair<int, int> VolumeStage::sizeOf(StageTexture which)
{
    window->activate();
    glBindTexture(GL_TEXTURE_2D, window->getGLObjectId(chunkOf(which)->getGLId()));
    GLint width = 0;
    GLint height = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &height);
    glBindTexture(GL_TEXTURE_2D, 0);
    return {width, height};
}

std::vector<float> VolumeStage::floats(StageTexture which, int channels)
{
    const auto [width, height] = sizeOf(which);
    std::vector<float> values(std::size_t(width) * std::size_t(height) * std::size_t(channels));
    glBindTexture(GL_TEXTURE_2D, window->getGLObjectId(chunkOf(which)->getGLId()));
    glGetTexImage(GL_TEXTURE_2D, 0, channels == 1 ? GL_DEPTH_COMPONENT : GL_RGBA, GL_FLOAT, values.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    return values;
}

std::string complaintsIn(const LogCapture &log)
{
    return log.text(LOG_FATAL) + log.text(LOG_WARNING);
}

RgbaImage imageOf(const reference::Picture &picture)
{
    RgbaImage image(picture.width, picture.height);
    const auto byte = [](float value)
    { return std::uint8_t(std::lround(std::clamp(value, 0.0f, 1.0f) * 255.0f)); };
    for(int y = 0; y < picture.height; ++y)
    {
        for(int x = 0; x < picture.width; ++x)
        {
            const reference::Color &color = picture.pixels[picture.index(x, y)];
            image.set(x, y, {byte(color.r), byte(color.g), byte(color.b), 255});
        }
    }
    return image;
}

::testing::AssertionResult agrees(const RgbaImage &actual, const reference::Picture &expected,
                                  const std::string &name, double judged)
{
    if(actual.width != expected.width || actual.height != expected.height || expected.width == 0)
        return ::testing::AssertionFailure()
               << name << ": " << actual.width << " x " << actual.height << " pixels, expected "
               << expected.width << " x " << expected.height;
    const reference::Comparison found =
        reference::compare(expected, actual.bytes.data(), 4, 2.0f, reference::Undefined | reference::Edge);
    const int pixels = expected.width * expected.height;
    if(found.share() >= 0.995 && found.judged >= judged * pixels)
        return ::testing::AssertionSuccess();

    std::filesystem::create_directories("failed-images");
    writePng("failed-images/" + name + "-actual.png", actual);
    writePng("failed-images/" + name + "-expected.png", imageOf(expected));
    const RgbaImage::Pixel worst = actual.at(found.worstX, found.worstY);
    const std::size_t at = expected.index(found.worstX, found.worstY);
    const reference::Color &color = expected.pixels[at];
    return ::testing::AssertionFailure()
           << name << ": " << found.agreeing << " of " << found.judged << " judged pixels agree; "
           << found.undefined << " undefined, " << found.edge << " edge; mean difference " << found.mean * 255
           << "; worst " << found.worst * 255 << " at (" << found.worstX << ", " << found.worstY
           << "): " << int(worst[0]) << ' ' << int(worst[1]) << ' ' << int(worst[2]) << ", expected "
           << color.r * 255 << ' ' << color.g * 255 << ' ' << color.b * 255 << ", samples "
           << expected.samples[at] << ", alternatives " << expected.alternatives[at].count;
}

} // namespace test
