#ifndef _OSGCAMERA_H_
#define _OSGCAMERA_H_

/// \file
/// From where and how a scene is seen.

#include "OSGCameraBase.h"
#include "OSGMatrix.h"

OSG_BEGIN_NAMESPACE

class DrawActionBase;
class FrustumVolume;
class Line;
class Viewport;

/// A camera stands at its beacon, looks along the beacon's negative z axis, and knows how to project. What it
/// does depends on the size of the picture, which is given in pixels. The matrices need no GL; only the setup
/// operations do.
///
/// A point of the world goes to clip space by projection * projection translation * viewing.
class OSG_SYSTEMLIB_DLLMAPPING Camera : public CameraBase
{
  public:
    typedef CameraBase Inherited;

    /// Takes a reference and gives the old one back.
    void setBeacon(const NodePtr &value) override;

    /// Loads GL's projection matrix, and the modelview matrix with projection translation * viewing. Leaves
    /// GL_MODELVIEW as the matrix mode.
    virtual void setup(DrawActionBase *action, const Viewport &port);
    /// Loads GL's projection matrix only. Leaves GL_MODELVIEW as the matrix mode.
    virtual void setupProjection(DrawActionBase *action, const Viewport &port);

    /// Eye space to clip space. The identity for a picture without pixels.
    virtual void getProjection(Matrix &result, UInt32 width, UInt32 height) = 0;
    /// What shifts eye space ahead of the projection, the identity for most cameras; apart from it for the
    /// sake of lighting.
    virtual void getProjectionTranslation(Matrix &result, UInt32 width, UInt32 height);
    /// World to eye space: the inverse of the beacon's to-world matrix. The identity without a beacon.
    virtual void getViewing(Matrix &result, UInt32 width, UInt32 height);

    /// The part of the world that is seen.
    virtual void getFrustum(FrustumVolume &result, const Viewport &port);
    /// World to clip space.
    virtual void getWorldToClip(Matrix &result, UInt32 width, UInt32 height);
    /// The ray into the world through the centre of a pixel of the window; y grows downwards from the
    /// window's upper edge, as a mouse reports it. It starts at the centre of projection, with parallel rays
    /// on the near plane. False, with nothing set, for matrices that can't be inverted.
    virtual bool calcViewRay(Line &line, Int32 x, Int32 y, const Viewport &port);

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    Camera();
    Camera(const Camera &source);
    ~Camera() override;

    void onCreate(const Camera *source = nullptr);
    void onDestroy() override;

  private:
    friend class FieldContainer;
    friend class CameraBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
