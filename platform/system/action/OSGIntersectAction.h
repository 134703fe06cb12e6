#ifndef _OSGINTERSECTACTION_H_
#define _OSGINTERSECTACTION_H_

/// \file
/// The action that finds what a line hits first.

#include "OSGAction.h"
#include "OSGLine.h"
#include "OSGMatrix.h"

OSG_BEGIN_NAMESPACE

/// Follows a half-line into the scene: set a line, apply, ask. Distances are measured along the line given, in units of
/// its direction, which is normalised when it is set.
class OSG_SYSTEMLIB_DLLMAPPING IntersectAction : public Action
{
    OSG_ACTION_FUNCTORS

  public:
    /// A new action with the settings of the prototype; the caller owns it.
    static IntersectAction *create();
    static IntersectAction *create(const Line &line, Real32 maxDistance = 1e30f);
    static void setPrototype(IntersectAction *prototype);
    static IntersectAction *getPrototype();

    IntersectAction();
    /// Along that line, hits up to maxDistance.
    explicit IntersectAction(const Line &line, Real32 maxDistance = 1e30f);
    /// A copy has the same line and no hit.
    IntersectAction(const IntersectAction &source);
    ~IntersectAction() override;

    /// A line in the coordinates of the world and how far it reaches.
    void setLine(const Line &line, Real32 maxDistance = 1e30f);
    /// How far the line reaches.
    Real32 getMaxDist() const { return _maxDistance; }

    /// The line in the coordinates of the node being visited.
    const Line &getLine() const { return _levels.back().line; }
    /// From a core that changes coordinates: the line within, and how long a unit of the line outside is on it.
    void pushLine(const Line &line, Real32 scale);
    /// Leaves what pushLine entered.
    void popLine();

    /// Notes a hit at distance `t` on the line of now if it is the nearest so far and not beyond the reach.
    /// `triangle` is -1 where there is none; the normal is in the node's coordinates.
    bool setHit(Real32 t, const NodePtr &node, Int32 triangle, const Vec3f &normal);

    /// Whether there was a hit.
    bool didHit() const { return _hit; }
    /// Distance, object, triangle, point and normal of the nearest hit, in the coordinates of the world; without a hit
    /// what the action began with.
    Real32 getHitT() const { return _hitT; }
    Real32 getHitDistance() const { return _hitT; }
    const NodePtr &getHitObject() const { return _hitObject; }
    Int32 getHitTriangle() const { return _hitTriangle; }
    Pnt3f getHitPoint() const;
    const Vec3f &getHitNormal() const { return _hitNormal; }

    /// Only the children whose volumes the line hits are visited; returns their number.
    UInt32 selectHit();

  protected:
    /// As Action has it.
    ResultE start() override;
    ResultE stop(ResultE result) override;

  private:
    struct Level
    {
        Line line;
        Real32 scale; ///< length here of a unit on the line of the world
    };

    Line _line;
    Real32 _maxDistance = 1e30f;
    std::vector<Level> _levels;
    bool _hit = false;
    Real32 _hitT = 1e30f;
    NodePtr _hitObject;
    Int32 _hitTriangle = -1;
    Vec3f _hitNormal;
};

OSG_END_NAMESPACE

#endif
