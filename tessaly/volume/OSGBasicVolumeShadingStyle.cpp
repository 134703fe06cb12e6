#include <Tessaly/OSGBasicVolumeShadingStyle.h>

#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGSHLChunk.h>

#include "DVRShading.h"
#include "DVRShadingAndLighting.h"
#include "MIPShading.h"
#include "VolumeNodeHandler.h"
#include "XRayShading.h"

OSG_BEGIN_NAMESPACE

namespace
{

enum ShadingFuncType
{
    DirectVolumeRendering = 0,
    MaximumIntensityProjection = 1,
    XRay = 2
};

template <class ValueT>
void setUniform(const SHLChunkPtr &shader, const char *name, const ValueT &value)
{
    if(shader == NullFC)
        return;
    beginEditCP(shader, SHLChunk::ParametersFieldMask);
    shader->setUniformParameter(name, value);
    endEditCP(shader, SHLChunk::ParametersFieldMask);
}

/// Brings a colour into the shading function and into the program.
void setColor(const SHLChunkPtr &shader, const char *name, const Color3f &color, Vec3f &member)
{
    member = Vec3f(color[0], color[1], color[2]);
    setUniform(shader, name, member);
}

} // namespace

void BasicVolumeShadingStyle::initMethod() {}

BasicVolumeShadingStyle::BasicVolumeShadingStyle() = default;

BasicVolumeShadingStyle::BasicVolumeShadingStyle(const BasicVolumeShadingStyle &source) : Inherited(source) {}

BasicVolumeShadingStyle::~BasicVolumeShadingStyle() = default;

void BasicVolumeShadingStyle::paramShading(VolumeNodeHandler *handler)
{
    DVRShadingAndLighting *lit = nullptr;
    ShadingFunctions *function = nullptr;
    if(!getEnabled())
        function = new DVRShading;
    else if(getShadingFuncType() == DirectVolumeRendering && getLighting())
        function = lit = new DVRShadingAndLighting;
    else if(getShadingFuncType() == DirectVolumeRendering)
        function = new DVRShading;
    else if(getShadingFuncType() == MaximumIntensityProjection)
        function = new MIPShading;
    else if(getShadingFuncType() == XRay)
        function = new XRayShading;
    else
        FWARNING(("Shading Style %d not impl. in BasicVolumeShadingStyle\n", int(getShadingFuncType())));

    if(function != nullptr)
    {
        setShadingFunction(function);
        // Builds the program, which the uniforms below are set on.
        handler->setShadingFunctions(function);
    }
    if(lit != nullptr)
    {
        const SHLChunkPtr shader = handler->getShader();
        setColor(shader, "diffuseColor", getDiffuseColor(), lit->diffuseColor);
        setColor(shader, "emissiveColor", getEmissiveColor(), lit->emissiveColor);
        setColor(shader, "specularColor", getSpecularColor(), lit->specularColor);
        lit->exponent = getShininess() * 128.0f;
        // Holds until the next program, which begins with an exponent of 25 again; that is meant.
        setUniform(shader, "exponent", lit->exponent);
    }
    _changes = 0;
}

void BasicVolumeShadingStyle::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void BasicVolumeShadingStyle::dump(UInt32, const BitVector) const
{
    SLOG << "Dump BasicVolumeShadingStyle NI" << std::endl;
}

OSG_END_NAMESPACE
