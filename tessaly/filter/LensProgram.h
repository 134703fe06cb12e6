#ifndef TESSALY_FILTER_LENSPROGRAM_H
#define TESSALY_FILTER_LENSPROGRAM_H

/// \file
/// What the lens filters have in common: their fields as a setup, and the way of their program into the
/// read-back group.

#include <string>

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGSHLChunkFields.h>

#include "LensWarp.h"

OSG_BEGIN_NAMESPACE
class DisplayFilterForeground;
class Viewport;
OSG_END_NAMESPACE

namespace tessaly
{

/// The fields that both filters have, of one of the two classes.
template <class FilterT>
constexpr osg::BitVector lensFieldsMask =
    FilterT::DistortionKFieldMask | FilterT::ChromaAbCorrectionFieldMask | FilterT::WidthFieldMask |
    FilterT::HeightFieldMask | FilterT::LensSeparationDistanceFieldMask | FilterT::HScreenSizeFieldMask |
    FilterT::VScreenSizeFieldMask | FilterT::LeftEyeFieldMask;

/// What the warp needs of a filter's fields.
template <class FilterT>
LensSetup lensSetupOf(const FilterT &filter)
{
    LensSetup setup;
    setup.distortion = filter.getDistortionK();
    setup.width = filter.getWidth();
    setup.height = filter.getHeight();
    setup.lensSeparation = filter.getLensSeparationDistance();
    setup.screenWidth = filter.getHScreenSize();
    setup.leftEye = filter.getLeftEye();
    return setup;
}

/// Makes a program and adds it to the read-back group "ColorDisplayFilter". One line is logged where the
/// port's window has no textures of any size: the programs know nothing of a picture in the corner of a
/// larger texture.
/// \param fragmentText may be empty, to be set later
/// \return without a reference
osg::SHLChunkPtr addLensProgram(osg::DisplayFilterForeground &foreground, const osg::Viewport *port,
                                const std::string &vertexText, const std::string &fragmentText);

} // namespace tessaly

#endif
