#ifndef _OSGSKYDOMEBACKGROUND_H_
#define _OSGSKYDOMEBACKGROUND_H_

/// \file
/// A panorama on a sphere around the camera.

#include <OpenSG/OSGMaterialFields.h>
#include <OpenSG/OSGNodeFields.h>
#include <OpenSG/OSGTextureChunkFields.h>
#include <Tessaly/OSGKeptPointer.h>
#include <Tessaly/OSGSkydomeBackgroundBase.h>

OSG_BEGIN_NAMESPACE

/// Clears the viewport and paints a panorama in latitude-longitude form on a unit sphere around the eye,
/// which turns with the camera and, where there is one, with the beacon, but never moves. The scene always
/// lies in front: nothing of the sphere stays in the depth buffer.
///
/// Each end of an edit of `latlongTexture` that leaves a texture there makes a new ChunkMaterial with it and
/// writes that into `material`, in place of what stood there. Nobody holds a reference on it: a host that
/// wants it gone later takes one with addRefCP and gives it back with subRefCP. Without a texture `material`
/// stays. Each aspect makes a material of its own.
///
/// On what a host sets one reference is held, from the setter on; where a field is written in another way,
/// from the end of the edit on.
class OSG_TESSALY_DLLMAPPING SkydomeBackground : public SkydomeBackgroundBase
{
  public:
    typedef SkydomeBackgroundBase Inherited;

    /// Takes a reference, and gives back that on the old one. Null is allowed.
    void setLatlongTexture(const TextureChunkPtr &value);
    void setSphere(const NodePtr &value);
    void setBeacon(const NodePtr &value);
    void setMaterial(const MaterialPtr &value);

    /// `material` must be set, and the action must have a camera. The context of the action's window must be
    /// current. Leaves white as the current colour, and GL_MODELVIEW as the matrix mode.
    void clear(DrawActionBase *action, Viewport *port) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    SkydomeBackground();
    SkydomeBackground(const SkydomeBackground &source);
    ~SkydomeBackground() override;

    void onCreate(const SkydomeBackground *source = nullptr);
    void onDestroy() override;

  private:
    friend class FieldContainer;
    friend class SkydomeBackgroundBase;

    static void initMethod();

    void followReferences(BitVector whichField, UInt32 origin);
    void loadMatrices(DrawActionBase *action, Viewport *port);

    KeptPointer<TextureChunkPtr> _keptTexture;
    KeptPointer<NodePtr> _keptSphere;
    KeptPointer<NodePtr> _keptBeacon;
    KeptPointer<MaterialPtr> _keptMaterial; ///< of those set by hosts
};

OSG_END_NAMESPACE

#endif
