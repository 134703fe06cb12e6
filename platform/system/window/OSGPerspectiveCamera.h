#ifndef _OSGPERSPECTIVECAMERA_H_
#define _OSGPERSPECTIVECAMERA_H_

/// \file
/// A camera with a centre of projection.

#include "OSGPerspectiveCameraBase.h"

OSG_BEGIN_NAMESPACE

/// `fov` is the full vertical angle in radians; the horizontal one follows from the picture's size.
class OSG_SYSTEMLIB_DLLMAPPING PerspectiveCamera : public PerspectiveCameraBase
{
  public:
    typedef PerspectiveCameraBase Inherited;

    void getProjection(Matrix &result, UInt32 width, UInt32 height) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    PerspectiveCamera();
    PerspectiveCamera(const PerspectiveCamera &source);
    ~PerspectiveCamera() override;

  private:
    friend class FieldContainer;
    friend class PerspectiveCameraBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
