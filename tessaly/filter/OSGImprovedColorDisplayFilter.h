#ifndef _OSGIMPROVEDCOLORDISPLAYFILTER_H_
#define _OSGIMPROVEDCOLORDISPLAYFILTER_H_

/// \file
/// Colour grading of the finished picture.

#include <OpenSG/OSGDisplayFilter.h>
#include <OpenSG/OSGImageFields.h>
#include <OpenSG/OSGSHLChunkFields.h>
#include <Tessaly/OSGImprovedColorDisplayFilterBase.h>

OSG_BEGIN_NAMESPACE

/// Linearises the picture with a gamma, applies a colour matrix, and sends each channel through a table that
/// depends on the place on the screen and on the channel's value. Between the table's sample points it is
/// linear. A table of a size that does not fit width, height and depth is replaced by the identity, with one
/// warning; so is that of a default filter.
///
/// Works in the read-back group "ImprovedColorDisplayFilter". All values are sent when the filter is set up;
/// later changes of fields do not come through, as is meant.
class OSG_TESSALY_DLLMAPPING ImprovedColorDisplayFilter : public ImprovedColorDisplayFilterBase
{
  public:
    typedef ImprovedColorDisplayFilterBase Inherited;

    void createFilter(DisplayFilterForeground *foreground, Viewport *port) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    ImprovedColorDisplayFilter();
    /// A copy is to be set up itself.
    ImprovedColorDisplayFilter(const ImprovedColorDisplayFilter &source);
    ~ImprovedColorDisplayFilter() override;

    void onDestroy() override;

    /// Sends table and uniforms; does nothing ahead of createFilter.
    void updateFilterValues();

  private:
    friend class FieldContainer;
    friend class ImprovedColorDisplayFilterBase;

    static void initMethod();

    ImagePtr _shadingImage; ///< the table; a reference is held, as on the chunk
    SHLChunkPtr _shlChunk;
};

OSG_END_NAMESPACE

#endif
