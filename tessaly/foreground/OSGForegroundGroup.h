#ifndef _OSGFOREGROUNDGROUP_H_
#define _OSGFOREGROUNDGROUP_H_

/// \file
/// A list of foregrounds in the place of one.

#include <OpenSG/OSGHeldReferences.h>
#include <Tessaly/OSGForegroundGroupBase.h>

OSG_BEGIN_NAMESPACE

/// Draws its members in their order, each with the action and the viewport that it was given itself. Members
/// that are not active are called all the same and skip themselves. The list may change while it is drawn.
///
/// Belongs to the thread that draws the viewport, with the window's context current.
class OSG_TESSALY_DLLMAPPING ForegroundGroup : public ForegroundGroupBase
{
  public:
    typedef ForegroundGroupBase Inherited;

    /// Draws nothing while the group is not active. A null entry is passed over with one warning, as is a
    /// group that is met again below itself.
    void draw(DrawActionBase *action, Viewport *port) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    ForegroundGroup();
    ForegroundGroup(const ForegroundGroup &source);
    ~ForegroundGroup() override;

    void onCreate(const ForegroundGroup *source = nullptr);
    void onDestroy() override;

  private:
    friend class FieldContainer;
    friend class ForegroundGroupBase;

    static void initMethod();

    bool _drawing = false;
    HeldReferences<ForegroundPtr> _heldForegrounds;
};

OSG_END_NAMESPACE

#endif
