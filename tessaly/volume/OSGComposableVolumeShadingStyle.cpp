#include <Tessaly/OSGComposableVolumeShadingStyle.h>

#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGSHLChunk.h>

#include "DVRShadingBase.h"
#include "VolumeNodeHandler.h"

OSG_BEGIN_NAMESPACE

namespace
{

constexpr UInt32 gradientModulationType = 3;

void setUniform(const SHLChunkPtr &shader, const char *name, Real32 value)
{
    if(shader == NullFC)
        return;
    beginEditCP(shader, SHLChunk::ParametersFieldMask);
    shader->setUniformParameter(name, value);
    endEditCP(shader, SHLChunk::ParametersFieldMask);
}

} // namespace

void ComposableVolumeShadingStyle::initMethod() {}

ComposableVolumeShadingStyle::ComposableVolumeShadingStyle() = default;

ComposableVolumeShadingStyle::ComposableVolumeShadingStyle(const ComposableVolumeShadingStyle &source)
    : Inherited(source)
{
}

ComposableVolumeShadingStyle::~ComposableVolumeShadingStyle() = default;

void ComposableVolumeShadingStyle::paramShading(VolumeNodeHandler *handler)
{
    // The style goes on all the same; that is meant.
    if((_changes & (EnabledFieldMask | ShadingFuncTypeFieldMask)) != 0 &&
       getShadingFuncType() != gradientModulationType)
        FWARNING(("Shading Style %d not impl. in ComposableVolumeShadingStyle\n", int(getShadingFuncType())));

    DVRShadingBase *const shading = dynamic_cast<DVRShadingBase *>(handler->getShadingFunctions());
    if(shading != nullptr)
    {
        const SHLChunkPtr shader = handler->getShader();
        shading->gradientModulation = getEnabled();
        handler->buildProgram();
        shading->kgc = getRetainedOpacity();
        setUniform(shader, "kgc", shading->kgc);
        shading->kge = getOpacityFactor();
        setUniform(shader, "kge", shading->kge);
        shading->kgs = getBoundaryOpacity();
        setUniform(shader, "kgs", shading->kgs);
    }
    _changes = 0;
}

void ComposableVolumeShadingStyle::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void ComposableVolumeShadingStyle::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ComposableVolumeShadingStyle NI" << std::endl;
}

OSG_END_NAMESPACE
