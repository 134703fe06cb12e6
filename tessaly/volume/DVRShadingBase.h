#ifndef TESSALY_DVRSHADINGBASE_H
#define TESSALY_DVRSHADINGBASE_H

/// \file
/// What the shading functions of direct volume rendering have in common.

#include "ShadingFunctions.h"

/// The weight of a sample by the length of its gradient: kgc + kgs * length ^ kge. Shading styles write the
/// members; a change of gradientModulation changes the text, so VolumeNodeHandler::buildProgram has to
/// follow.
class DVRShadingBase : public ShadingFunctions
{
  public:
    bool gradientModulation = false; ///< whether opacity is weighted at all
    osg::Real32 kgc = 0.5f;          ///< constant term
    osg::Real32 kgs = 0.5f;          ///< factor on the gradient's length
    osg::Real32 kge = 4.0f;          ///< exponent on the gradient's length

  protected:
    /// Sets the uniforms kgs, kgc, kge, within an edit of the caller.
    void setGradientParameters(const osg::SHLChunkPtr &shader) const;
};

#endif
