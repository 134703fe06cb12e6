#ifndef _OSGSTEREOCAMERADECORATOR_H_
#define _OSGSTEREOCAMERADECORATOR_H_

/// \file
/// What the two eyes of a stereo pair have in common.

#include "OSGStereoCameraDecoratorBase.h"

OSG_BEGIN_NAMESPACE

/// Who draws can ask it which eye this is.
class OSG_SYSTEMLIB_DLLMAPPING StereoCameraDecorator : public StereoCameraDecoratorBase
{
  public:
    typedef StereoCameraDecoratorBase Inherited;


    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    StereoCameraDecorator();
    StereoCameraDecorator(const StereoCameraDecorator &source);
    ~StereoCameraDecorator() override;

  private:
    friend class FieldContainer;
    friend class StereoCameraDecoratorBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
