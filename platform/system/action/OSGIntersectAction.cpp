#include "OSGIntersectAction.h"

#include "OSGNode.h"

OSG_BEGIN_NAMESPACE

OSG_ACTION_FUNCTORS_IMPL(IntersectAction)

namespace
{

IntersectAction *intersectActionPrototype = nullptr;

} // namespace

IntersectAction *IntersectAction::create()
{
    return intersectActionPrototype != nullptr ? new IntersectAction(*intersectActionPrototype) : new IntersectAction;
}

IntersectAction *IntersectAction::create(const Line &line, Real32 maxDistance)
{
    IntersectAction *const action = create();
    action->setLine(line, maxDistance);
    return action;
}

void IntersectAction::setPrototype(IntersectAction *prototype)
{
    intersectActionPrototype = prototype;
}

IntersectAction *IntersectAction::getPrototype()
{
    return intersectActionPrototype;
}

IntersectAction::IntersectAction() : _levels(1, Level{Line(), 1.0f}) {}

IntersectAction::IntersectAction(const Line &line, Real32 maxDistance) : IntersectAction()
{
    setLine(line, maxDistance);
}

IntersectAction::IntersectAction(const IntersectAction &source)
    : Action(source), _line(source._line), _maxDistance(source._maxDistance), _levels(1, Level{source._line, 1.0f})
{
}

IntersectAction::~IntersectAction() = default;

void IntersectAction::setLine(const Line &line, Real32 maxDistance)
{
    _line = line;
    _maxDistance = maxDistance;
    _levels.assign(1, Level{line, 1.0f});
    _hit = false;
    _hitT = maxDistance;
    _hitObject = NullFC;
    _hitTriangle = -1;
}

Action::ResultE IntersectAction::start()
{
    const ResultE result = Action::start();
    setLine(_line, _maxDistance);
    return result;
}

Action::ResultE IntersectAction::stop(ResultE result)
{
    return Action::stop(result);
}

void IntersectAction::pushLine(const Line &line, Real32 scale)
{
    _levels.push_back(Level{line, _levels.back().scale * scale});
}

void IntersectAction::popLine()
{
    if(_levels.size() > 1)
        _levels.pop_back();
}

bool IntersectAction::setHit(Real32 t, const NodePtr &node, Int32 triangle, const Vec3f &normal)
{
    const Real32 distance = t / _levels.back().scale;
    // The negation also refuses what is not a number.
    if(!(distance >= 0.0f && distance < _hitT && distance <= _maxDistance))
        return false;
    _hit = true;
    _hitT = distance;
    _hitObject = node;
    _hitTriangle = triangle;

    // Normals go to the world with the inverse transposed matrix.
    _hitNormal = normal;
    Matrix toWorld;
    if(node != NullFC)
        node->getToWorld(toWorld);
    Matrix inverse;
    if(toWorld.inverse(inverse))
    {
        Matrix transposed;
        inverse.transposed(transposed);
        transposed.multMatrixVec(normal, _hitNormal);
    }
    if(_hitNormal.squareLength() > 0.0f)
        _hitNormal.normalize();
    return true;
}

Pnt3f IntersectAction::getHitPoint() const
{
    return _line.getPosition() + _line.getDirection() * _hitT;
}

UInt32 IntersectAction::selectHit()
{
    return keepNodes([this](const NodePtr &node) {
        Real32 enter = 0.0f;
        Real32 leave = 0.0f;
        return node->getVolume(true).intersect(getLine(), enter, leave);
    });
}

OSG_END_NAMESPACE
