#ifndef _OSGMATRIXCAMERA_H_
#define _OSGMATRIXCAMERA_H_

/// \file
/// A camera of given matrices.

#include "OSGMatrixCameraBase.h"

OSG_BEGIN_NAMESPACE

/// For views that come from elsewhere, tracked or recorded.
class OSG_SYSTEMLIB_DLLMAPPING MatrixCamera : public MatrixCameraBase
{
  public:
    typedef MatrixCameraBase Inherited;

    void getProjection(Matrix &result, UInt32 width, UInt32 height) override;
    void getViewing(Matrix &result, UInt32 width, UInt32 height) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    MatrixCamera();
    MatrixCamera(const MatrixCamera &source);
    ~MatrixCamera() override;

  private:
    friend class FieldContainer;
    friend class MatrixCameraBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
