#ifndef _OSGSHEAREDSTEREOCAMERADECORATOR_H_
#define _OSGSHEAREDSTEREOCAMERADECORATOR_H_

/// \file
/// One eye with a sheared frustum.

#include "OSGShearedStereoCameraDecoratorBase.h"

OSG_BEGIN_NAMESPACE

/// Works on a PerspectiveCamera, directly or behind other decorators; any other camera is left as it is.
class OSG_SYSTEMLIB_DLLMAPPING ShearedStereoCameraDecorator : public ShearedStereoCameraDecoratorBase
{
  public:
    typedef ShearedStereoCameraDecoratorBase Inherited;

    void getProjection(Matrix &result, UInt32 width, UInt32 height) override;
    void getProjectionTranslation(Matrix &result, UInt32 width, UInt32 height) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    ShearedStereoCameraDecorator();
    ShearedStereoCameraDecorator(const ShearedStereoCameraDecorator &source);
    ~ShearedStereoCameraDecorator() override;

  private:
    friend class FieldContainer;
    friend class ShearedStereoCameraDecoratorBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
