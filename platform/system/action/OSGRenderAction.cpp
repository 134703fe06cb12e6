#include "OSGRenderAction.h"

#include <algorithm>

#include "OSGBackground.h"
#include "OSGCamera.h"
#include "OSGGL.h"
#include "OSGGeometry.h"
#include "OSGLight.h"
#include "OSGLog.h"
#include "OSGNode.h"
#include "OSGState.h"
#include "OSGViewport.h"
#include "OSGWindow.h"

OSG_BEGIN_NAMESPACE

OSG_ACTION_FUNCTORS_IMPL(RenderAction)

StatElemDesc<StatTimeElem> RenderAction::statDrawTime("drawTime", "time for drawing what was collected");
StatElemDesc<StatIntElem> RenderAction::statNMaterials("NMaterials", "number of material changes");
StatElemDesc<StatIntElem> RenderAction::statNMatrices("NMatrices", "number of matrix changes");
StatElemDesc<StatIntElem> RenderAction::statNGeometries("NGeometries", "number of things drawn");
StatElemDesc<StatIntElem> RenderAction::statNTransGeometries("NTransGeometries", "number of transparent things drawn");

namespace
{

constexpr UInt32 maxLights = 8;
constexpr UInt32 nothing = 0xFFFFFFFFu;

RenderAction *renderActionPrototype = nullptr;

} // namespace

RenderAction *RenderAction::create()
{
    return renderActionPrototype != nullptr ? new RenderAction(*renderActionPrototype) : new RenderAction;
}

void RenderAction::setPrototype(RenderAction *prototype)
{
    renderActionPrototype = prototype;
}

RenderAction *RenderAction::getPrototype()
{
    return renderActionPrototype;
}

RenderAction::RenderAction() : _matrixStack(1, 0), _matrices(1) {}

RenderAction::RenderAction(const RenderAction &source)
    : RenderActionBase(source), _matrixStack(1, 0), _matrices(1), _sortTrans(source._sortTrans),
      _zWriteTrans(source._zWriteTrans), _localLights(source._localLights), _effectsPass(source._effectsPass)
{
}

RenderAction::~RenderAction() = default;

Action::ResultE RenderAction::start()
{
    const ResultE result = RenderActionBase::start();
    _matrixStack.assign(1, 0);
    _matrices.assign(1, Matrix());
    _droppedLights.clear();
    _shining.clear();
    _lightSets.assign(1, std::vector<UInt32>());
    _lightSetValid = true;
    _groups.clear();
    _nodes.clear();
    _activeState = nullptr;
    if(getBackground() != nullptr && getViewport() != nullptr)
        getBackground()->clear(this, getViewport());
    return result;
}

Action::ResultE RenderAction::stop(ResultE result)
{
    draw();
    _nodes.clear();
    return RenderActionBase::stop(result);
}

void RenderAction::push_matrix(const Matrix &matrix)
{
    Matrix product = _matrices[_matrixStack.back()];
    product.mult(matrix);
    _matrixStack.push_back(UInt32(_matrices.size()));
    _matrices.push_back(product);
}

void RenderAction::pop_matrix()
{
    if(_matrixStack.size() > 1)
        _matrixStack.pop_back();
}

const Matrix &RenderAction::top_matrix() const
{
    if(_drawing && _activeMatrix != nothing)
        return _matrices[_activeMatrix];
    return _matrices[_matrixStack.back()];
}

bool RenderAction::isVisible(Node *node)
{
    return !getFrustumCulling() || getCamera() == nullptr || volumeIsVisible(node, top_matrix());
}

void RenderAction::dropLight(Light *light)
{
    DroppedLight dropped{light, Matrix()};
    light->getBeaconToWorld(dropped.beaconToWorld);
    _shining.push_back(UInt32(_droppedLights.size()));
    _droppedLights.push_back(dropped);
    _lightSetValid = false;
}

void RenderAction::undropLight(Light *)
{
    if(_localLights && !_shining.empty())
    {
        _shining.pop_back();
        _lightSetValid = false;
    }
}

void RenderAction::dropLightSet()
{
    if(_lightSetValid)
        return;
    _lightSetValid = true;
    const auto found = std::find(_lightSets.begin(), _lightSets.end(), _shining);
    // The current set is kept last, so that what is dropped names the last one.
    if(found == _lightSets.end())
        _lightSets.push_back(_shining);
    else if(found + 1 != _lightSets.end())
        _lightSets.push_back(*found);
}

void RenderAction::drop(DrawTreeNode &&node, Material *material)
{
    if(material == nullptr)
    {
        SWARNING << "RenderAction: something without a material can't be drawn" << std::endl;
        return;
    }
    dropLightSet();
    node.material = material;
    node.state = material->getState().getCPtr();
    node.sortKey = material->getSortKey();
    node.transparent = material->isTransparent();
    node.group = _groups.emplace(node.state, UInt32(_groups.size())).first->second;
    node.matrix = _matrixStack.back();
    node.lights = UInt32(_lightSets.size() - 1);
    node.node = getActNode();
    if(node.transparent && node.node != NullFC)
    {
        // The node's volume is in its parent's coordinates; the core's own matrix is on the stack already.
        Pnt3f centre;
        node.node->getVolume(true).getCenter(centre);
        Matrix toCamera = getViewing();
        const NodePtr parent = node.node->getParent();
        toCamera.mult(parent == NullFC ? _matrices[node.matrix] : parent->getToWorld());
        Pnt3f inCamera;
        toCamera.multMatrixPnt(centre, inCamera);
        node.depth = inCamera[2];
    }
    _nodes.push_back(std::move(node));
}

void RenderAction::dropGeometry(Geometry *geometry)
{
    if(geometry == nullptr)
        return;
    Material *material = getMaterial();
    if(material == nullptr)
        material = geometry->getMaterial() != NullFC ? geometry->getMaterial().getCPtr()
                                                     : getDefaultMaterial().getCPtr();
    DrawTreeNode node;
    node.geometry = geometry;
    drop(std::move(node), material);
}

void RenderAction::dropFunctor(Material::DrawFunctor &functor, Material *material)
{
    DrawTreeNode node;
    node.functor = functor;
    drop(std::move(node), getMaterial() != nullptr ? getMaterial() : material);
}

std::vector<const DrawTreeNode *> RenderAction::getDrawOrder()
{
    std::vector<const DrawTreeNode *> order;
    order.reserve(_nodes.size());
    for(const DrawTreeNode &node : _nodes)
        order.push_back(&node);
    const bool byDepth = _sortTrans;
    std::stable_sort(order.begin(), order.end(), [byDepth](const DrawTreeNode *a, const DrawTreeNode *b) {
        if(a->sortKey != b->sortKey)
            return a->sortKey < b->sortKey;
        if(a->transparent != b->transparent)
            return b->transparent;
        if(a->transparent)
            return byDepth && a->depth < b->depth;
        return a->group < b->group;
    });
    return order;
}

void RenderAction::activateMatrix(UInt32 matrix)
{
    if(matrix == _activeMatrix)
        return;
    _activeMatrix = matrix;
    Matrix modelview = getViewing();
    modelview.mult(_matrices[matrix]);
    glLoadMatrixf(modelview.getValues());
    getStatistics()->getElem(statNMatrices)->inc();
}

void RenderAction::activateLights(UInt32 lights)
{
    // A set of lights that shines everywhere is the one of the end of the traversal.
    if(!_localLights)
        lights = UInt32(_lightSets.size() - 1);
    if(lights == _activeLights)
        return;
    _activeLights = lights;
    const std::vector<UInt32> &set = _lightSets[lights];
    const UInt32 count = std::min<UInt32>(UInt32(set.size()), maxLights);
    for(UInt32 i = 0; i < count; ++i)
    {
        const DroppedLight &dropped = _droppedLights[set[i]];
        Matrix modelview = getViewing();
        modelview.mult(dropped.beaconToWorld);
        glLoadMatrixf(modelview.getValues());
        dropped.light->activate(this, i);
    }
    for(UInt32 i = count; i < _numLightsOn; ++i)
        glDisable(GL_LIGHT0 + i);
    _numLightsOn = count;
    _activeLightsMask = (1u << count) - 1u;
    _activeMatrix = nothing;
}

void RenderAction::draw()
{
    if(_nodes.empty())
        return;
    dropLightSet();
    StatTimeElem *const time = getStatistics()->getElem(statDrawTime);
    time->start();

    glMatrixMode(GL_MODELVIEW);
    _drawing = true;
    _activeMatrix = nothing;
    _activeLights = nothing;
    _numLightsOn = 0;
    _activeState = nullptr;
    bool depthMaskOff = false;

    for(const DrawTreeNode *node : getDrawOrder())
    {
        // Depth writing is switched around the state, which may have an opinion of its own.
        const bool wantsMaskOff = node->transparent && !_zWriteTrans;
        const UInt32 lightsBefore = _activeLights;
        const UInt32 matrixBefore = _activeMatrix;
        activateLights(node->lights);
        activateMatrix(node->matrix);
        if(wantsMaskOff != depthMaskOff)
        {
            if(_activeState != nullptr)
                _activeState->deactivate(this);
            _activeState = nullptr;
            glDepthMask(wantsMaskOff ? GL_FALSE : GL_TRUE);
            depthMaskOff = wantsMaskOff;
        }
        setActNode(node->node);
        if(node->state != _activeState)
        {
            if(_activeState != nullptr)
                node->state->changeFrom(this, _activeState);
            else
                node->state->activate(this);
            _activeState = node->state;
            getStatistics()->getElem(statNMaterials)->inc();
        }
        else if(_activeLights != lightsBefore || _activeMatrix != matrixBefore)
        {
            // Shaders may follow the matrix or the lights; all other chunks see that nothing changed.
            node->state->changeFrom(this, node->state);
        }
        if(node->functor)
            node->functor(this);
        else
            node->geometry->drawPrimitives(this);
        getStatistics()->getElem(statNGeometries)->inc();
        if(node->transparent)
            getStatistics()->getElem(statNTransGeometries)->inc();
    }

    if(_activeState != nullptr)
        _activeState->deactivate(this);
    _activeState = nullptr;
    if(depthMaskOff)
        glDepthMask(GL_TRUE);
    for(UInt32 i = 0; i < _numLightsOn; ++i)
        glDisable(GL_LIGHT0 + i);
    _activeLightsMask = 0;
    _drawing = false;
    setActNode(NullFC);
    time->stop();
}

OSG_END_NAMESPACE
