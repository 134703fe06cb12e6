#ifndef _OSGGRABFOREGROUND_H_
#define _OSGGRABFOREGROUND_H_

/// \file
/// Copies a viewport's pixels into an image.

#include "OSGGrabForegroundBase.h"
#include "OSGImageFields.h"

OSG_BEGIN_NAMESPACE

/// Reads the viewport's pixels into `image` each time it is drawn: in the image's pixel format and data type,
/// lowest row first, rows without padding. An image whose width or height is 1 or less is always given the
/// viewport's size; any other only with `autoResize`, and else what fits is read into its lower left corner.
class OSG_SYSTEMLIB_DLLMAPPING GrabForeground : public GrabForegroundBase
{
  public:
    typedef GrabForegroundBase Inherited;

    /// Takes a reference and gives the old one back.
    void setImage(const ImagePtr &image);

    void draw(DrawActionBase *action, Viewport *port) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    GrabForeground();
    GrabForeground(const GrabForeground &source);
    ~GrabForeground() override;

    void onCreate(const GrabForeground *source = nullptr);
    void onDestroy() override;

  private:
    friend class FieldContainer;
    friend class GrabForegroundBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
