#ifndef _OSGORTHOGRAPHICCAMERA_H_
#define _OSGORTHOGRAPHICCAMERA_H_

/// \file
/// A camera with parallel rays.

#include "OSGOrthographicCameraBase.h"

OSG_BEGIN_NAMESPACE

/// `verticalSize` is the height of what is seen; the width follows from the picture's size.
class OSG_SYSTEMLIB_DLLMAPPING OrthographicCamera : public OrthographicCameraBase
{
  public:
    typedef OrthographicCameraBase Inherited;

    void getProjection(Matrix &result, UInt32 width, UInt32 height) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    OrthographicCamera();
    OrthographicCamera(const OrthographicCamera &source);
    ~OrthographicCamera() override;

  private:
    friend class FieldContainer;
    friend class OrthographicCameraBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
