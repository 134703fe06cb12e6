#ifndef _OSGCAMERADECORATOR_H_
#define _OSGCAMERADECORATOR_H_

/// \file
/// A camera that is another one with something changed.

#include "OSGCameraDecoratorBase.h"

OSG_BEGIN_NAMESPACE

/// Answers as its decoratee does, the fields beacon, near and far included. Without a decoratee it is a
/// camera of its own fields that projects nothing.
class OSG_SYSTEMLIB_DLLMAPPING CameraDecorator : public CameraDecoratorBase
{
  public:
    typedef CameraDecoratorBase Inherited;

    /// Takes a reference and gives the old one back. A camera must not decorate itself, directly or by
    /// others.
    void setDecoratee(const CameraPtr &value);

    void getProjection(Matrix &result, UInt32 width, UInt32 height) override;
    void getProjectionTranslation(Matrix &result, UInt32 width, UInt32 height) override;
    void getViewing(Matrix &result, UInt32 width, UInt32 height) override;

    SFNodePtr *getSFBeacon() override;
    NodePtr &getBeacon() override;
    const NodePtr &getBeacon() const override;
    void setBeacon(const NodePtr &value) override;
    SFNodePtr *editSFBeacon() override;
    const SFNodePtr *getSFBeacon() const override;
    NodePtr &editBeacon() override;

    SFReal32 *getSFNear() override;
    Real32 &getNear() override;
    const Real32 &getNear() const override;
    void setNear(const Real32 &value) override;
    SFReal32 *editSFNear() override;
    const SFReal32 *getSFNear() const override;
    Real32 &editNear() override;

    SFReal32 *getSFFar() override;
    Real32 &getFar() override;
    const Real32 &getFar() const override;
    void setFar(const Real32 &value) override;
    SFReal32 *editSFFar() override;
    const SFReal32 *getSFFar() const override;
    Real32 &editFar() override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    CameraDecorator();
    CameraDecorator(const CameraDecorator &source);
    ~CameraDecorator() override;

    void onCreate(const CameraDecorator *source = nullptr);
    void onDestroy() override;

  private:
    friend class FieldContainer;
    friend class CameraDecoratorBase;

    static void initMethod();

    /// The camera behind, or null. A decorator that stands on itself counts as having none.
    Camera *behind() const;
};

OSG_END_NAMESPACE

#endif
