#ifndef _OSGTRANSFORM_H_
#define _OSGTRANSFORM_H_

/// \file
/// The core that places what is below it.

#include "OSGAction.h"
#include "OSGTransformBase.h"

OSG_BEGIN_NAMESPACE

class IntersectActor;

class OSG_SYSTEMLIB_DLLMAPPING Transform : public TransformBase
{
  public:
    typedef TransformBase Inherited;

    void accumulateMatrix(Matrix &result) override;
    void adjustVolume(Volume &volume) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

    Action::ResultE drawEnter(Action *action);
    Action::ResultE drawLeave(Action *action);
    Action::ResultE renderEnter(Action *action);
    Action::ResultE renderLeave(Action *action);
    Action::ResultE intersectEnter(Action *action);
    Action::ResultE intersectLeave(Action *action);

  protected:
    Transform();
    Transform(const Transform &source);
    ~Transform() override;

  private:
    friend class FieldContainer;
    friend class TransformBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
