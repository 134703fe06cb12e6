#include "DVRShadingBase.h"

#include <OpenSG/OSGSHLChunk.h>

void DVRShadingBase::setGradientParameters(const osg::SHLChunkPtr &shader) const
{
    shader->setUniformParameter("kgs", kgs);
    shader->setUniformParameter("kgc", kgc);
    shader->setUniformParameter("kge", kge);
}
