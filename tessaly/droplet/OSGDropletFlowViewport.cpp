#include <Tessaly/OSGDropletFlowViewport.h>

#include <cmath>
#include <cstdlib>

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGRenderActionBase.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTime.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGWindow.h>

#include "DropletFlow.h"
#include "DropletFlowContext.h"
#include "DropletPixels.h"
#include "DropletSources.h"

OSG_BEGIN_NAMESPACE

namespace
{

/// What a simulation is made of and can't take over later.
constexpr BitVector rebuildMask = DropletFlowViewport::TexturesFieldMask |
                                  DropletFlowViewport::MaterialFieldMask |
                                  DropletFlowViewport::SurfaceMapSizeFieldMask;

constexpr BitVector parametersMask =
    DropletFlowViewport::TimeStepFieldMask | DropletFlowViewport::TimeDelayFieldMask |
    DropletFlowViewport::FluidDensityFieldMask | DropletFlowViewport::FluidViscosityFieldMask |
    DropletFlowViewport::FrictionNFieldMask | DropletFlowViewport::FrictionSigmaFieldMask;

/// The system's clock in seconds, in whole milliseconds.
Real64 systemSeconds()
{
    return std::floor(getSystemTime() * 1000.0) / 1000.0;
}

/// A plane that shows a texture, in its place in the world.
NodePtr makeDebugPlane(Real32 x, const TextureChunkPtr &texture)
{
    Matrix place;
    place.setTranslate(x, -10.0f, 10.0f);
    const TransformPtr transform = TransformBase::create();
    beginEditCP(transform, Transform::MatrixFieldMask);
    transform->setMatrix(place);
    endEditCP(transform, Transform::MatrixFieldMask);
    const NodePtr node = makeNodeFor(transform);
    beginEditCP(node, Node::ChildrenFieldMask);
    node->addChild(DropletFlowContext::get()->makeQuad({texture}, 5.0f));
    endEditCP(node, Node::ChildrenFieldMask);
    return node;
}

} // namespace

void DropletFlowViewport::initMethod() {}

DropletFlowViewport::DropletFlowViewport() = default;

DropletFlowViewport::DropletFlowViewport(const DropletFlowViewport &source)
    : Inherited(source), _keptMaterial(source.getMaterial())
{
}

// Each aspect's copy may have a simulation of its own.
DropletFlowViewport::~DropletFlowViewport()
{
    deleteDropletFlow();
}

void DropletFlowViewport::onCreate(const DropletFlowViewport *source)
{
    Inherited::onCreate(source);
    _keptMaterial.adopt();
    _heldTextures.follow(_mfTextures, ChangedOrigin::External);
}

void DropletFlowViewport::onDestroy()
{
    deleteDropletFlow();
    _keptMaterial.release();
    _heldTextures.release();
    Inherited::onDestroy();
}

void DropletFlowViewport::changed(BitVector whichField, UInt32 origin)
{
    _changedFields |= whichField;
    if((whichField & MaterialFieldMask) != 0)
        _keptMaterial.follow(getMaterial(), origin);
    if((whichField & TexturesFieldMask) != 0)
        _heldTextures.follow(_mfTextures, origin);
    Inherited::changed(whichField, origin);
}

void DropletFlowViewport::dump(UInt32, const BitVector) const
{
    SLOG << "Dump DropletFlowViewport NI" << std::endl;
}

void DropletFlowViewport::render(RenderActionBase *action)
{
    if(!getEnabled() || action == nullptr || action->getWindow() == nullptr)
        return;
    // Ahead of initialize, which bakes and steps where a field asks for it.
    _context = DropletFlowContext::get();
    _context->setRender(getParent(), action);
    initialize();
    if(_droplet == nullptr)
    {
        // The next frame bakes, and runs the first step.
        if(getRoot() != NullFC)
            setupDropletFlow(getRoot());
        return;
    }

    DropletFlowTimer *const timer = _droplet->getTimer();
    if(!_initialized)
    {
        action->getWindow()->frameInit();
        _droplet->bakeSurfaceMaps(getPerturbAngle());
        timer->setTime(getTime());
        timer->setEnabled(!getPause());
        _initialized = true;
    }
    _droplet->updateInvViewMatrix();
    if(_renderSources)
    {
        _droplet->getSources()->render(_clearSurface);
        _renderSources = false;
    }
    timer->update();
}

bool DropletFlowViewport::initialize()
{
    if(_context == nullptr)
        _context = DropletFlowContext::get();
    if(_droplet == nullptr)
        return false;
    if(!_initialized || (_changedFields == 0 && !getDirty()))
        return _initialized;
    if((_changedFields & rebuildMask) != 0)
    {
        deleteDropletFlow();
        _initialized = false;
        _changedFields &= ~rebuildMask;
        return false;
    }

    if((_changedFields & TimeFieldMask) != 0 || getDirty())
        applyClock();
    if((_changedFields & parametersMask) != 0)
        applySimulationParameters();
    if((_changedFields & (NoiseMapSizeFieldMask | PerturbAngleFieldMask)) != 0)
    {
        _droplet->createNoiseMap(tessaly::cellsOf(getNoiseMapSize()[0]),
                                 tessaly::cellsOf(getNoiseMapSize()[1]));
        _droplet->bakeSurfaceMaps(getPerturbAngle());
    }
    if((_changedFields & ContactAngleFieldMask) != 0)
        _droplet->getSources()->createSplat(getContactAngle());
    if((_changedFields & FluidColorFieldMask) != 0)
        _droplet->setFluidColor(getFluidColor());
    if((_changedFields & ForceFieldMask) != 0)
        _droplet->setForce(getForce());
    if((_changedFields & SourcesFieldMask) != 0)
        applySources();
    if((_changedFields & PauseFieldMask) != 0)
        _droplet->getTimer()->setEnabled(!getPause());

    const DropletFlowViewportPtr self(*this);
    beginEditCP(self, DirtyFieldMask);
    setDirty(false);
    endEditCP(self, DirtyFieldMask);
    // Only now, so that the edit just made does not count as a change.
    _changedFields = 0;
    return true;
}

void DropletFlowViewport::applyClock()
{
    DropletFlowTimer *const timer = _droplet->getTimer();
    if((_changedFields & TimeFieldMask) != 0)
    {
        timer->setTime(getTime());
        return;
    }
    // The first time that `dirty` alone moves the clock, it goes over from the host's time to the system's.
    const bool same = timer->getTime() == getTime();
    timer->setTime(systemSeconds());
    if(same && !getPause())
        timer->reset();
}

void DropletFlowViewport::applySimulationParameters()
{
    _droplet->setSimulationParameters(tessaly::narrowed(getTimeDelay()), tessaly::narrowed(getTimeStep()),
                                      getFluidDensity(), getFluidViscosity(), getFrictionN(),
                                      getFrictionSigma());
}

void DropletFlowViewport::applySources()
{
    DropletSources *const sources = _droplet->getSources();
    sources->clearSources();
    for(const Vec3f &source : getSources())
        sources->addSource(Vec4f(source[0], source[1], source[2], 1.0f));
    // An empty list wipes the map; that is meant.
    updateRenderMode(true, getSources().empty());
}

void DropletFlowViewport::updateRenderMode(bool renderSources, bool clearSurface)
{
    _renderSources = renderSources;
    _clearSurface = clearSurface;
}

void DropletFlowViewport::setupDropletFlow(NodePtr root)
{
    TextureChunkPtr surfaceTexture;
    if(getMatMode() == 0 && !getTextures().empty())
        surfaceTexture = getTextures(0);
    _droplet = new DropletFlow(root, getMaterial(), tessaly::cellsOf(getSurfaceMapSize()[0]),
                               tessaly::cellsOf(getSurfaceMapSize()[1]), getMatMode(), surfaceTexture);
    _droplet->getTimer()->setTime(getTime());
    _droplet->createNoiseMap(tessaly::cellsOf(getNoiseMapSize()[0]), tessaly::cellsOf(getNoiseMapSize()[1]));
    _droplet->getSources()->createSplat(getContactAngle());
    _droplet->setForce(getForce());
    applySimulationParameters();
    _droplet->setFluidColor(getFluidColor());
    if(std::getenv("DEBUG_DROPFLOW") != nullptr && root->getParent() != NullFC)
        showTextures(root);
    updateRenderMode(false, false);
}

void DropletFlowViewport::showTextures(const NodePtr &root)
{
    NodePtr top = root;
    while(top->getParent() != NullFC)
        top = top->getParent();
    const TextureChunkPtr textures[] = {_droplet->getSurfaceMap(0),          _droplet->getSurfaceMap(1),
                                        _droplet->getSources()->getSplat(), _droplet->getNormalMap(),
                                        _droplet->getTangentMap(),          _droplet->getNoiseMap()};
    Real32 x = -10.0f;
    beginEditCP(top, Node::ChildrenFieldMask);
    for(const TextureChunkPtr &texture : textures)
    {
        const NodePtr plane = makeDebugPlane(x, texture);
        addRefCP(plane);
        _debugPlanes.push_back(plane);
        top->addChild(plane);
        x += 5.0f;
    }
    endEditCP(top, Node::ChildrenFieldMask);
}

void DropletFlowViewport::deleteDropletFlow()
{
    for(NodePtr &plane : _debugPlanes)
    {
        const NodePtr parent = plane->getParent();
        if(parent != NullFC)
        {
            beginEditCP(parent, Node::ChildrenFieldMask);
            parent->subChild(plane);
            endEditCP(parent, Node::ChildrenFieldMask);
        }
        clearRefCP(plane);
    }
    _debugPlanes.clear();
    delete _droplet;
    _droplet = nullptr;
}

OSG_END_NAMESPACE
