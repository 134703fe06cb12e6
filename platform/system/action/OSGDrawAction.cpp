#include "OSGDrawAction.h"

#include "OSGBackground.h"
#include "OSGGL.h"
#include "OSGLight.h"
#include "OSGNode.h"
#include "OSGViewport.h"

OSG_BEGIN_NAMESPACE

OSG_ACTION_FUNCTORS_IMPL(DrawAction)

namespace
{

constexpr UInt32 maxLights = 8;

DrawAction *drawActionPrototype = nullptr;

} // namespace

DrawAction *DrawAction::create()
{
    return drawActionPrototype != nullptr ? new DrawAction(*drawActionPrototype) : new DrawAction;
}

void DrawAction::setPrototype(DrawAction *prototype)
{
    drawActionPrototype = prototype;
}

DrawAction *DrawAction::getPrototype()
{
    return drawActionPrototype;
}

DrawAction::DrawAction() = default;

DrawAction::DrawAction(const DrawAction &source) : DrawActionBase(source) {}

DrawAction::~DrawAction() = default;

Action::ResultE DrawAction::start()
{
    const ResultE result = DrawActionBase::start();
    _matrices.assign(1, Matrix());
    _lightCount = 0;
    if(getBackground() != nullptr && getViewport() != nullptr)
        getBackground()->clear(this, getViewport());
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixf(getViewing().getValues());
    return result;
}

Action::ResultE DrawAction::stop(ResultE result)
{
    return DrawActionBase::stop(result);
}

void DrawAction::push_matrix(const Matrix &matrix)
{
    _matrices.push_back(_matrices.back());
    _matrices.back().mult(matrix);
}

void DrawAction::pop_matrix()
{
    if(_matrices.size() > 1)
        _matrices.pop_back();
}

bool DrawAction::isVisible(Node *node)
{
    return !getFrustumCulling() || getCamera() == nullptr || volumeIsVisible(node, top_matrix());
}

void DrawAction::dropLight(Light *light)
{
    if(_lightCount < maxLights)
    {
        Matrix matrix;
        light->getBeaconToWorld(matrix);
        glPushMatrix();
        glLoadMatrixf(getViewing().getValues());
        glMultMatrixf(matrix.getValues());
        light->activate(this, _lightCount);
        glPopMatrix();
        _activeLightsMask |= 1u << _lightCount;
    }
    ++_lightCount;
}

void DrawAction::undropLight(Light *light)
{
    if(_lightCount == 0)
        return;
    --_lightCount;
    if(_lightCount < maxLights)
    {
        light->deactivate(this, _lightCount);
        _activeLightsMask &= ~(1u << _lightCount);
    }
}

OSG_END_NAMESPACE
