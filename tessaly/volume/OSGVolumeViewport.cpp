#include <Tessaly/OSGVolumeViewport.h>

#include <cstdlib>

#include <OpenSG/OSGCamera.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGFBOViewport.h>
#include <OpenSG/OSGForeground.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPolygonForeground.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTextureFunctions.h>
#include <OpenSG/OSGWindow.h>
#include <Tessaly/OSGVolumeNode.h>

#include "VolumeNodeHandler.h"

OSG_BEGIN_NAMESPACE

namespace
{

constexpr BitVector sizeFields =
    Viewport::LeftFieldMask | Viewport::RightFieldMask | Viewport::BottomFieldMask | Viewport::TopFieldMask;

/// The formats of a texture that a pass renders to. The image only carries the size.
struct TargetFormat
{
    UInt32 imageFormat;
    UInt32 internalFormat;
    UInt32 externalFormat; ///< GL_NONE leaves the chunk's
};

constexpr TargetFormat sceneColorFormat = {GL_RGBA, GL_RGBA16F, GL_NONE};
constexpr TargetFormat sceneDepthFormat = {GL_LUMINANCE, GL_DEPTH_COMPONENT24, GL_DEPTH_COMPONENT};
constexpr TargetFormat rayFormat = {GL_RGBA, GL_RGBA32F, GL_NONE};

void setTargetImage(const ImagePtr &image, UInt32 format, Int32 width, Int32 height)
{
    beginEditCP(image);
    image->set(format, width, height, 1, 1, 1, 0.0, nullptr, Image::OSG_UINT8_IMAGEDATA, true, 1);
    endEditCP(image);
}

/// Replaces `texture` by a new one, with one reference.
void makeTarget(TextureChunkPtr &texture, const TargetFormat &format, Int32 width, Int32 height)
{
    const ImagePtr image = ImageBase::create();
    setTargetImage(image, format.imageFormat, width, height);
    setRefdCP(texture, TextureChunkPtr(TextureChunkBase::create()));
    beginEditCP(texture);
    texture->setImage(image);
    texture->setMinFilter(GL_NEAREST);
    texture->setMagFilter(GL_NEAREST);
    texture->setTarget(GL_TEXTURE_2D);
    texture->setInternalFormat(format.internalFormat);
    if(format.externalFormat != GL_NONE)
        texture->setExternalFormat(format.externalFormat);
    endEditCP(texture);
}

void resizeTarget(const TextureChunkPtr &texture, const TargetFormat &format, Int32 width, Int32 height)
{
    if(texture == NullFC || texture->getImage() == NullFC)
        return;
    setTargetImage(texture->getImage(), format.imageFormat, width, height);
    beginEditCP(texture);
    texture->imageContentChanged(-1, -1, -1, -1, -1, -1);
    endEditCP(texture);
}

void setPortSize(const FBOViewportPtr &port, Int32 width, Int32 height)
{
    port->setLeft(0.0f);
    port->setRight(Real32(width - 1));
    port->setBottom(0.0f);
    port->setTop(Real32(height - 1));
    port->setStorageWidth(width);
    port->setStorageHeight(height);
    port->setDirty(true);
}

void resizePort(const FBOViewportPtr &port, Int32 width, Int32 height)
{
    if(port == NullFC)
        return;
    const BitVector fields = sizeFields | FBOViewport::StorageWidthFieldMask |
                             FBOViewport::StorageHeightFieldMask | FBOViewport::DirtyFieldMask;
    beginEditCP(port, fields);
    setPortSize(port, width, height);
    endEditCP(port, fields);
}

/// Replaces `port` by a new one, with one reference. The root may be set later.
void makePort(FBOViewportPtr &port, const BackgroundPtr &background, const NodePtr &root,
              const CameraPtr &camera, Int32 width, Int32 height,
              std::initializer_list<TextureChunkPtr> textures, bool depthMap)
{
    setRefdCP(port, FBOViewportPtr(FBOViewportBase::create()));
    beginEditCP(port);
    port->setBackground(background);
    port->setRoot(root);
    port->setCamera(camera);
    setPortSize(port, width, height);
    port->setFboOn(true);
    port->setGenerateDepthmaps(depthMap);
    for(const TextureChunkPtr &texture : textures)
        port->getTextures().push_back(texture);
    endEditCP(port);
}

BackgroundPtr makeClear(Real32 depth)
{
    const SolidBackgroundPtr background = SolidBackgroundBase::create();
    beginEditCP(background);
    background->setColor(Color3f(0.0f, 0.0f, 0.0f));
    background->setAlpha(0.0f);
    background->setDepth(depth);
    endEditCP(background);
    return background;
}

/// Replaces `polygon` by a new one that shows the texture in a quarter of a strip, counted from below.
void makePolygon(PolygonForegroundPtr &polygon, const TextureChunkPtr &texture, Real32 left, Real32 right,
                 int quarter)
{
    const ChunkMaterialPtr material = ChunkMaterialBase::create();
    beginEditCP(material);
    material->addChunk(texture);
    endEditCP(material);

    const Real32 bottom = Real32(quarter) * 0.25f;
    const Real32 top = bottom + 0.25f;
    setRefdCP(polygon, PolygonForegroundPtr(PolygonForegroundBase::create()));
    beginEditCP(polygon);
    polygon->setMaterial(material);
    polygon->getTexCoords().push_back(Vec3f(0.0f, 0.0f, 0.0f));
    polygon->getTexCoords().push_back(Vec3f(1.0f, 0.0f, 0.0f));
    polygon->getTexCoords().push_back(Vec3f(1.0f, 1.0f, 0.0f));
    polygon->getTexCoords().push_back(Vec3f(0.0f, 1.0f, 0.0f));
    polygon->getPositions().push_back(Pnt2f(left, bottom));
    polygon->getPositions().push_back(Pnt2f(right, bottom));
    polygon->getPositions().push_back(Pnt2f(right, top));
    polygon->getPositions().push_back(Pnt2f(left, top));
    polygon->setNormalizedX(true);
    polygon->setNormalizedY(true);
    endEditCP(polygon);
}

/// An action for a set-up pass. It is never deleted, which is meant; the list keeps it reachable.
RenderAction *makePassAction()
{
    static std::vector<RenderAction *> *const actions = new std::vector<RenderAction *>;
    RenderAction *const action = RenderAction::create();
    action->setFrustumCulling(false);
    action->setZWriteTrans(true);
    actions->push_back(action);
    return action;
}

} // namespace

void VolumeViewport::initMethod() {}

VolumeViewport::VolumeViewport() = default;

VolumeViewport::VolumeViewport(const VolumeViewport &source) : Inherited(source) {}

VolumeViewport::~VolumeViewport()
{
    clearRefCP(_frontTexture);
    clearRefCP(_backTexture);
    clearRefCP(_sceneColor);
    clearRefCP(_sceneDepth);
    clearRefCP(_frontPort);
    clearRefCP(_backPort);
    clearRefCP(_scenePort);
    clearRefCP(_frontPolygon);
    clearRefCP(_backPolygon);
    clearRefCP(_colorPolygon);
    clearRefCP(_depthPolygon);
}

void VolumeViewport::onCreate(const VolumeViewport *source)
{
    Inherited::onCreate(source);
    _heldExcludeNodes.follow(_mfExcludeNodes, ChangedOrigin::External);
    _heldVolumeNodes.follow(_mfVolumeNodes, ChangedOrigin::External);
}

void VolumeViewport::onDestroy()
{
    _heldExcludeNodes.release();
    _heldVolumeNodes.release();
    Inherited::onDestroy();
}

void VolumeViewport::changed(BitVector whichField, UInt32 origin)
{
    _changes |= whichField;
    if((whichField & ExcludeNodesFieldMask) != 0)
        _heldExcludeNodes.follow(_mfExcludeNodes, origin);
    if((whichField & VolumeNodesFieldMask) != 0)
        _heldVolumeNodes.follow(_mfVolumeNodes, origin);
    Inherited::changed(whichField, origin);
}

void VolumeViewport::dump(UInt32, const BitVector) const { SLOG << "Dump VolumeViewport NI" << std::endl; }

VolumeNode *VolumeViewport::volumeNode(UInt32 index)
{
    return VolumeNodePtr::dcast(getVolumeNodes(index)).getCPtr();
}

void VolumeViewport::setPixelSize(Int32 width, Int32 height)
{
    const VolumeViewportPtr self(*this);
    beginEditCP(self, sizeFields);
    setLeft(0.0f);
    setRight(Real32(width - 1));
    setBottom(0.0f);
    setTop(Real32(height - 1));
    endEditCP(self, sizeFields);
}

bool VolumeViewport::initialize(void)
{
    if(_initialized &&
       (_changes & (VolumeNodesFieldMask | CameraFieldMask | BackgroundFieldMask | RootFieldMask)) == 0)
    {
        _changes = 0;
        return true;
    }
    for(UInt32 i = 0; i < getVolumeNodes().size(); ++i)
    {
        VolumeNode *const node = volumeNode(i);
        if(node == nullptr || (node->getVolume() == nullptr && !node->createVolume()))
            return false;
    }
    FLOG(("VolumeViewport::initialize()"));

    if(getParent() != NullFC)
    {
        setPixelSize(Int32(getParent()->getWidth()), Int32(getParent()->getHeight()));
        activateSize();
    }
    const Int32 width = getPixelWidth();
    const Int32 height = getPixelHeight();
    _frontAction = makePassAction();
    _backAction = makePassAction();

    checkTextureSizes(width, height);
    makeTarget(_sceneColor, sceneColorFormat, width, height);
    makeTarget(_sceneDepth, sceneDepthFormat, width, height);
    makePort(_scenePort, getBackground(), getRoot(), getCamera(), width, height, {_sceneColor, _sceneDepth},
             true);
    makeTarget(_frontTexture, rayFormat, width, height);
    makePort(_frontPort, makeClear(1.0f), NullFC, getCamera(), width, height, {_frontTexture}, false);
    // The back pass keeps what is farthest, so it clears to the near end.
    makeTarget(_backTexture, rayFormat, width, height);
    makePort(_backPort, makeClear(0.0f), NullFC, getCamera(), width, height, {_backTexture}, false);
    initPolygonForegrounds();

    bool served = false;
    for(UInt32 i = 0; i < getVolumeNodes().size(); ++i)
    {
        VolumeNode *const node = volumeNode(i);
        if(node == nullptr || node->getVolume() == nullptr)
            continue;
        node->initVolume();
        FNOTICE(("Initializing Textures and Fbo's...\n"));
        VolumeNodeHandler *const handler = node->getVolume();
        handler->setRayTextures(_frontTexture, _backTexture);
        handler->setSceneTextures(_sceneColor, _sceneDepth);
        // Cleared for each volume, so that with several only the last is left out of the scene; that is
        // meant.
        beginEditCP(_scenePort, FBOViewport::ExcludeNodesFieldMask);
        _scenePort->getExcludeNodes().clear();
        _scenePort->getExcludeNodes().push_back(handler->getRootNode());
        endEditCP(_scenePort, FBOViewport::ExcludeNodesFieldMask);
        node->attachVolume();
        served = true;
    }
    if(!served)
        return false;
    _changes = 0;
    return true;
}

void VolumeViewport::checkTextureSizes(Int32 width, Int32 height)
{
    const WindowPtr window = getParent();
    const bool arePowersOf2 = (width & (width - 1)) == 0 && (height & (height - 1)) == 0;
    if(_warned || arePowersOf2 || window == NullFC || TextureFunctions(window.get()).hasNonPowerOf2)
        return;
    // The texts look the whole of a texture up; in a larger one the picture has a corner only.
    FWARNING(("VolumeViewport: without GL_ARB_texture_non_power_of_two the picture is only right where its sides are "
              "powers of two, not at %d x %d\n",
              width, height));
    _warned = true;
}

void VolumeViewport::initPolygonForegrounds(void)
{
    // The first strip of a process is at the right edge, all later ones at the left; that is meant.
    static bool atRight = true;
    const Real32 left = atRight ? 0.75f : 0.0f;
    const Real32 right = atRight ? 1.0f : 0.25f;
    makePolygon(_frontPolygon, _frontTexture, left, right, 0);
    makePolygon(_backPolygon, _backTexture, left, right, 1);
    makePolygon(_colorPolygon, _sceneColor, left, right, 2);
    makePolygon(_depthPolygon, _sceneDepth, left, right, 3);
    atRight = false;
}

void VolumeViewport::resize(int width, int height)
{
    if(getPixelWidth() == width && getPixelHeight() == height)
        return;
    SNOTICE << "VolumeViewport::resize(" << width << ", " << height << ")";
    setPixelSize(width, height);
    checkTextureSizes(width, height);

    resizeTarget(_sceneColor, sceneColorFormat, width, height);
    resizeTarget(_sceneDepth, sceneDepthFormat, width, height);
    resizePort(_scenePort, width, height);
    resizeTarget(_frontTexture, rayFormat, width, height);
    resizePort(_frontPort, width, height);
    resizeTarget(_backTexture, rayFormat, width, height);
    resizePort(_backPort, width, height);

    for(UInt32 i = 0; i < getVolumeNodes().size(); ++i)
    {
        VolumeNode *const node = volumeNode(i);
        if(node == nullptr || node->getVolume() == nullptr)
            continue;
        node->getVolume()->setRayTextures(_frontTexture, _backTexture);
        node->getVolume()->setSceneTextures(_sceneColor, _sceneDepth);
    }
}

void VolumeViewport::render(RenderActionBase *action)
{
    if(!getEnabled() || action == nullptr)
        return;
    Window *const window = action->getWindow();
    RenderAction *const renderAction = dynamic_cast<RenderAction *>(action);
    if(getVolumeNodes().empty() || renderAction == nullptr || window == nullptr)
        return;

    const bool ready = initialize();
    if(!_initialized)
    {
        if(!ready)
            return;
        // The first frame only prepares; the passes begin with the next.
        window->frameInit();
        _initialized = true;
        return;
    }

    const UInt32 numPorts = window->getPort().size();
    const ViewportPtr lastPort = numPorts == 0 ? ViewportPtr() : window->getPort(numPorts - 1);
    if(lastPort != NullFC)
        resize(lastPort->getPixelWidth(), lastPort->getPixelHeight());

    const bool culling = renderAction->getFrustumCulling();
    renderAction->setFrustumCulling(false);
    for(UInt32 i = 0; i < getVolumeNodes().size(); ++i)
    {
        VolumeNode *const node = volumeNode(i);
        if(node == nullptr || node->getVolume() == nullptr)
            continue;
        node->initVolume();
        VolumeNodeHandler *const handler = node->getVolume();
        // The passes run behind the loop, so with several volumes they show the last; that is meant.
        for(const auto &[port, root] : {std::make_pair(_frontPort, handler->getFrontRoot()),
                                        std::make_pair(_backPort, handler->getBackRoot())})
        {
            if(port == NullFC)
                continue;
            beginEditCP(port, Viewport::RootFieldMask);
            port->setRoot(root);
            endEditCP(port, Viewport::RootFieldMask);
        }
        const CameraPtr camera = getCamera();
        if(camera == NullFC)
            continue;
        Matrix beaconToWorld;
        if(camera->getBeacon() != NullFC)
            camera->getBeacon()->getToWorld(beaconToWorld);
        handler->setViewMatrix(beaconToWorld);
        handler->setDepthRange(camera->getNear(), camera->getFar());
    }

    renderPass(_scenePort, action);
    if(std::getenv("DEBUG_VOLUME") != nullptr && lastPort != NullFC)
        showPolygons(lastPort);
    if(_frontAction != nullptr)
        _frontAction->setWindow(window);
    renderPass(_frontPort, _frontAction);
    if(_backAction != nullptr)
        _backAction->setWindow(window);
    renderPass(_backPort, _backAction);
    renderAction->setFrustumCulling(culling);
}

void VolumeViewport::showPolygons(const ViewportPtr &port)
{
    const ForegroundPtr polygons[] = {_frontPolygon, _backPolygon, _colorPolygon, _depthPolygon};
    for(const ForegroundPtr &polygon : polygons)
    {
        if(polygon == NullFC)
            return;
        for(UInt32 i = 0; i < port->getForegrounds().size(); ++i)
            if(port->getForegrounds(i) == polygon)
                return;
    }
    beginEditCP(port, Viewport::ForegroundsFieldMask);
    for(const ForegroundPtr &polygon : polygons)
        port->getForegrounds().push_back(polygon);
    endEditCP(port, Viewport::ForegroundsFieldMask);
}

void VolumeViewport::renderPass(const FBOViewportPtr &port, RenderActionBase *action)
{
    if(port == NullFC || action == nullptr)
        return;
    // The port belongs to the window only for the duration of the pass.
    beginEditCP(port, Viewport::ParentFieldMask);
    port->setParent(getParent());
    endEditCP(port, Viewport::ParentFieldMask);
    port->render(action);
    beginEditCP(port, Viewport::ParentFieldMask);
    port->setParent(NullFC);
    endEditCP(port, Viewport::ParentFieldMask);
}

OSG_END_NAMESPACE
