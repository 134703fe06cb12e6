#include "OSGTransform.h"

#include "OSGDrawAction.h"
#include "OSGGL.h"
#include "OSGIntersectAction.h"
#include "OSGLog.h"
#include "OSGNode.h"
#include "OSGRenderAction.h"

OSG_BEGIN_NAMESPACE

void Transform::initMethod()
{
    DrawAction::registerEnterDefault(getClassType(), makeFunctor(&Transform::drawEnter));
    DrawAction::registerLeaveDefault(getClassType(), makeFunctor(&Transform::drawLeave));
    RenderAction::registerEnterDefault(getClassType(), makeFunctor(&Transform::renderEnter));
    RenderAction::registerLeaveDefault(getClassType(), makeFunctor(&Transform::renderLeave));
    IntersectAction::registerEnterDefault(getClassType(), makeFunctor(&Transform::intersectEnter));
    IntersectAction::registerLeaveDefault(getClassType(), makeFunctor(&Transform::intersectLeave));
}

Transform::Transform() = default;

Transform::Transform(const Transform &source) : Inherited(source) {}

Transform::~Transform() = default;

void Transform::accumulateMatrix(Matrix &result)
{
    result.mult(getMatrix());
}

void Transform::adjustVolume(Volume &volume)
{
    volume.transform(getMatrix());
}

void Transform::changed(BitVector whichField, UInt32 origin)
{
    if((whichField & MatrixFieldMask) != 0)
        invalidateVolume();
    Inherited::changed(whichField, origin);
}

void Transform::dump(UInt32, const BitVector) const
{
    SLOG << "Dump Transform NI" << std::endl;
}

// Every drawing action keeps its matrix; a DrawAction also hands it to GL at once.
Action::ResultE Transform::drawEnter(Action *action)
{
    DrawAction *const draw = dynamic_cast<DrawAction *>(action);
    draw->push_matrix(getMatrix());
    glPushMatrix();
    glMultMatrixf(getMatrix().getValues());
    return draw->selectVisibles() != 0 ? Action::Continue : Action::Skip;
}

Action::ResultE Transform::drawLeave(Action *action)
{
    DrawAction *const draw = dynamic_cast<DrawAction *>(action);
    draw->pop_matrix();
    glPopMatrix();
    return Action::Continue;
}

Action::ResultE Transform::renderEnter(Action *action)
{
    RenderAction *const render = dynamic_cast<RenderAction *>(action);
    render->push_matrix(getMatrix());
    return render->selectVisibles() != 0 ? Action::Continue : Action::Skip;
}

Action::ResultE Transform::renderLeave(Action *action)
{
    dynamic_cast<RenderAction *>(action)->pop_matrix();
    return Action::Continue;
}

// The line goes into the children's coordinates and comes back out again.
Action::ResultE Transform::intersectEnter(Action *action)
{
    IntersectAction *const intersect = dynamic_cast<IntersectAction *>(action);
    Matrix inverse;
    const bool invertible = getMatrix().inverse(inverse);
    Pnt3f position = intersect->getLine().getPosition();
    Vec3f direction = intersect->getLine().getDirection();
    if(invertible)
    {
        inverse.multMatrixPnt(intersect->getLine().getPosition(), position);
        inverse.multMatrixVec(intersect->getLine().getDirection(), direction);
    }
    const Real32 length = direction.length();
    const bool usable = invertible && length > 1e-30f;
    // Pushed in any case, as leave pops in any case.
    intersect->pushLine(Line(position, direction), usable ? length : 1.0f);
    return usable && intersect->selectHit() != 0 ? Action::Continue : Action::Skip;
}

Action::ResultE Transform::intersectLeave(Action *action)
{
    dynamic_cast<IntersectAction *>(action)->popLine();
    return Action::Continue;
}

OSG_END_NAMESPACE
