#include "OSGDrawActionBase.h"

#include "OSGBackground.h"
#include "OSGCamera.h"
#include "OSGNode.h"
#include "OSGViewport.h"

OSG_BEGIN_NAMESPACE

StatElemDesc<StatIntElem> DrawActionBase::statCullTestedNodes("cullTestedNodes", "nodes tested against the frustum");
StatElemDesc<StatIntElem> DrawActionBase::statCulledNodes("culledNodes", "nodes outside of the frustum");

DrawActionBase::DrawActionBase() = default;

DrawActionBase::DrawActionBase(const DrawActionBase &source)
    : Action(source), _window(source._window), _viewport(source._viewport), _camera(source._camera),
      _background(source._background), _frustumCulling(source._frustumCulling), _autoFrustum(source._autoFrustum)
{
}

DrawActionBase::~DrawActionBase() = default;

void DrawActionBase::setupCamera()
{
    _viewing.setIdentity();
    _cameraToWorld.setIdentity();
    if(_camera == nullptr || _viewport == nullptr)
        return;
    _camera->setup(this, *_viewport);
    _camera->getViewing(_viewing, UInt32(_viewport->getPixelWidth()), UInt32(_viewport->getPixelHeight()));
    if(!_viewing.inverse(_cameraToWorld))
        _cameraToWorld.setIdentity();
    if(_autoFrustum)
        _camera->getFrustum(_frustum, *_viewport);
}

Action::ResultE DrawActionBase::start()
{
    const ResultE result = Action::start();
    _material = nullptr;
    _materialNode = NullFC;
    _materialDepth = 0;
    _activeLightsMask = 0;
    setupCamera();
    return result;
}

Action::ResultE DrawActionBase::stop(ResultE result)
{
    return Action::stop(result);
}

bool DrawActionBase::volumeIsVisible(Node *node, const Matrix &toWorld)
{
    node->updateVolume();
    DynamicVolume volume = node->getVolume();
    getStatistics()->getElem(statCullTestedNodes)->inc();
    if(!volume.isEmpty())
    {
        volume.transform(toWorld);
        if(_frustum.intersect(volume))
            return true;
    }
    getStatistics()->getElem(statCulledNodes)->inc();
    return false;
}

bool DrawActionBase::isVisible(Node *node)
{
    if(!_frustumCulling || _camera == nullptr)
        return true;
    const NodePtr parent = node->getParent();
    return volumeIsVisible(node, parent == NullFC ? Matrix() : parent->getToWorld());
}

UInt32 DrawActionBase::selectVisibles()
{
    if(!_frustumCulling)
        return getNNodes();
    return keepNodes([this](const NodePtr &node) { return isVisible(node.getCPtr()); });
}

void DrawActionBase::setMaterial(Material *material, const NodePtr &node)
{
    if(material != nullptr)
    {
        if(_materialDepth++ == 0)
        {
            _material = material;
            _materialNode = node;
        }
    }
    else if(_materialDepth != 0 && --_materialDepth == 0)
    {
        _material = nullptr;
        _materialNode = NullFC;
    }
}

StatCollector *DrawActionBase::getStatistics()
{
    if(_statistics == nullptr)
    {
        _ownStatistics.reset(StatCollector::create());
        _statistics = _ownStatistics.get();
    }
    return _statistics;
}

void DrawActionBase::setStatistics(StatCollector *statistics)
{
    _ownStatistics.reset();
    _statistics = statistics;
}

OSG_END_NAMESPACE
