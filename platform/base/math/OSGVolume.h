#ifndef _OSGVOLUME_H_
#define _OSGVOLUME_H_

/// \file
/// What all bounding volumes have in common.

#include "OSGMatrix.h"
#include "OSGVector.h"

OSG_BEGIN_NAMESPACE

class Line;

/// A part of space that bounds something. Its four state bits are independent of its shape:
/// - valid: the shape is up to date (the start);
/// - empty: it bounds nothing yet, whatever the numbers say (the start);
/// - infinite: it bounds all of space; extending it changes nothing;
/// - static: whoever keeps bounds up to date leaves this one alone. The volume itself does not look at it. A
/// volume that is neither valid nor empty takes no part: extending it changes nothing, and nothing intersects
/// it. Volumes are plain values without locks; const operations may run in several threads.
class OSG_BASELIB_DLLMAPPING Volume
{
  public:
    /// Bits of the state.
    enum State : UInt16
    {
        OSGVALID = 1,
        OSGEMPTY = 2,
        OSGINFINITE = 4,
        OSGSTATIC = 8
    };

    virtual ~Volume();

    /// A bit of the state: up to date, bounds nothing, is not to be computed, bounds everything.
    void setValid(bool value = true) { setStateBit(OSGVALID, value); }
    bool isValid() const { return (getState() & OSGVALID) != 0; }
    void setEmpty(bool value = true) { setStateBit(OSGEMPTY, value); }
    bool isEmpty() const { return (getState() & OSGEMPTY) != 0; }
    void setStatic(bool value = true) { setStateBit(OSGSTATIC, value); }
    bool isStatic() const { return (getState() & OSGSTATIC) != 0; }
    void setInfinite(bool value = true) { setStateBit(OSGINFINITE, value); }
    bool isInfinite() const { return (getState() & OSGINFINITE) != 0; }
    /// True if the shape's numbers count as they stand: valid, not empty, not infinite.
    bool isUntouched() const { return (getState() & (OSGVALID | OSGEMPTY | OSGINFINITE)) == OSGVALID; }
    /// All bits of the state.
    virtual void setState(UInt16 state);
    virtual UInt16 getState() const;

    /// The object that has the shape: itself, but for a volume that holds another.
    virtual Volume &getInstance();
    virtual const Volume &getInstance() const;

    /// The middle.
    virtual void getCenter(Pnt3f &center) const = 0;
    Pnt3f getCenter() const;
    /// The cubic measure; 0 for an empty volume, the largest Real32 for an infinite one.
    virtual Real32 getScalarVolume() const = 0;
    /// The smallest axis-aligned box around the shape. Of an empty volume min is (1, 1, 1) and max is (-1,
    /// -1, -1); of an infinite one they are the largest Real32 values.
    virtual void getBounds(Pnt3f &min, Pnt3f &max) const = 0;

    /// Grows to hold what is given; an empty volume becomes it, and is empty no longer. See the class for
    /// states.
    virtual void extendBy(const Pnt3f &point) = 0;
    /// An empty or invalid volume adds nothing, an infinite one makes this infinite.
    virtual void extendBy(const Volume &volume) = 0;

    /// The border belongs to the volume.
    virtual bool intersect(const Pnt3f &point) const = 0;
    /// The line is a half-line from its position on. enter and exit are distances from there, set on a hit
    /// only.
    bool intersect(const Line &line) const;
    virtual bool intersect(const Line &line, Real32 &enter, Real32 &exit) const = 0;
    /// True if both have a point in common; where a frustum takes part, at times also where they are only
    /// close.
    virtual bool intersect(const Volume &volume) const = 0;
    /// True within Eps of the border.
    virtual bool isOnSurface(const Pnt3f &point) const = 0;

    /// Becomes a volume of its kind around the transformed shape. The matrix is taken to be affine.
    virtual void transform(const Matrix &matrix) = 0;

    /// One line on stderr, indented by so many blanks, for debugging.
    virtual void dump(UInt32 indent = 0, BitVector flags = 0) const = 0;

  protected:
    constexpr Volume() : _state(OSGVALID | OSGEMPTY) {}
    /// A copy has the same state.
    Volume(const Volume &) = default;
    Volume &operator=(const Volume &) = default;

    /// True if extending by something has an effect.
    bool canExtend() const { return (isValid() || isEmpty()) && !isInfinite(); }

  private:
    void setStateBit(UInt16 bit, bool value);

    UInt16 _state;
};

OSG_END_NAMESPACE

#endif
