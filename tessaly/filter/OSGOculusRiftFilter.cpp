/// \file
/// Warps the picture of one eye for the lens of a head-mounted display.

#include <Tessaly/OSGOculusRiftFilter.h>

#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGSHLChunk.h>

#include "AspectMembers.h"
#include "LensProgram.h"

#include <string>

OSG_BEGIN_NAMESPACE

namespace
{

const Char8 *const vertexProgram = R"(void main(void)
{
    gl_TexCoord[0] = gl_TextureMatrix[0] * gl_MultiTexCoord0;
    gl_Position    = ftransform();
}
)";

/// Scales the place on the screen by the polynomial of its distance from the lens centre: theta1.
const Char8 *const warp = R"(
void main(void)
{
    vec2 uv = (gl_TexCoord[0].xy * 2.0) - 1.0;
    vec2 theta = (uv - LensCenter) * ScaleIn;
    float rSq = theta.x * theta.x + theta.y * theta.y;
    vec2 theta1 = theta * (HmdWarpParam.x + HmdWarpParam.y * rSq +
                           HmdWarpParam.z * rSq * rSq +
                           HmdWarpParam.w * rSq * rSq * rSq);
)";

const Char8 *const declarations = R"(#version 120
uniform vec2 Scale;
uniform vec2 ScaleIn;
uniform vec2 LensCenter;
uniform vec4 HmdWarpParam;
uniform sampler2D Texture;
)";

std::string plainFragmentProgram()
{
    return std::string(declarations) + warp + R"(
    vec2 tc = (LensCenter + Scale * theta1);
    tc = (tc + 1.0)/2.0;
    if(any(bvec2(clamp(tc, vec2(0.0,0.0), vec2(1.0,1.0)) - tc)))
        gl_FragColor = vec4(0.0, 0.0, 0.0, 1.0);
    else
        gl_FragColor = texture2D(Texture, tc);
}
)";
}

/// Only blue, the widest channel, is looked at for the picture's edge, as is meant.
std::string chromaticFragmentProgram()
{
    return std::string(declarations) + "uniform vec4 ChromAbParam;\n" + warp + R"(
    vec2 thetaBlue = theta1 * (ChromAbParam.z + ChromAbParam.w * rSq);
    vec2 tcBlue = (LensCenter + Scale * thetaBlue);
    tcBlue = (tcBlue + 1.0)/2.0;
    if(any(bvec2(clamp(tcBlue, vec2(0.0,0.0), vec2(1.0,1.0)) - tcBlue)))
    {
        gl_FragColor = vec4(0.0, 0.0, 0.0, 1.0);
        return;
    }
    float blue = texture2D(Texture, tcBlue).b;

    vec2 tcGreen = (LensCenter + Scale * theta1);
    tcGreen = (tcGreen + 1.0)/2.0;
    vec4 center = texture2D(Texture, tcGreen);

    vec2 thetaRed = theta1 * (ChromAbParam.x + ChromAbParam.y * rSq);
    vec2 tcRed = (LensCenter + Scale * thetaRed);
    tcRed = (tcRed + 1.0)/2.0;
    float red = texture2D(Texture, tcRed).r;

    gl_FragColor = vec4(red, center.g, blue, center.a);
}
)";
}

} // namespace

void OculusRiftFilter::initMethod() {}

OculusRiftFilter::OculusRiftFilter() = default;

OculusRiftFilter::OculusRiftFilter(const OculusRiftFilter &source) : Inherited(source) {}

OculusRiftFilter::~OculusRiftFilter() = default;

void OculusRiftFilter::onDestroy()
{
    tessaly::clearInAllAspects(OculusRiftFilterPtr(*this), &OculusRiftFilter::_shlChunk);
    Inherited::onDestroy();
}

void OculusRiftFilter::createFilter(DisplayFilterForeground *foreground, Viewport *port)
{
    // The opposite of what it should be, so that the update sees a change and sets the fragment program.
    _useChroma = tessaly::isNeutralChroma(getChromaAbCorrection());

    setRefdCP(_shlChunk, tessaly::addLensProgram(*foreground, port, vertexProgram, std::string()));
    updateShaderParameters();
}

void OculusRiftFilter::updateShaderParameters()
{
    if(_shlChunk == NullFC)
        return;
    const tessaly::LensUniforms uniforms = tessaly::symmetricLensWarp(tessaly::lensSetupOf(*this));

    beginEditCP(_shlChunk);
    const bool wanted = !tessaly::isNeutralChroma(getChromaAbCorrection());
    if(wanted != _useChroma)
    {
        _useChroma = wanted;
        _shlChunk->setFragmentProgram(wanted ? chromaticFragmentProgram() : plainFragmentProgram());
    }
    _shlChunk->setUniformParameter("Texture", Int32(0));
    _shlChunk->setUniformParameter("HmdWarpParam", getDistortionK());
    if(wanted)
        _shlChunk->setUniformParameter("ChromAbParam", getChromaAbCorrection());
    _shlChunk->setUniformParameter("ScaleIn", uniforms.scaleIn);
    _shlChunk->setUniformParameter("Scale", uniforms.scale);
    _shlChunk->setUniformParameter("LensCenter", uniforms.lensCenter);
    endEditCP(_shlChunk);
}

void OculusRiftFilter::changed(BitVector whichField, UInt32 origin)
{
    if((whichField & tessaly::lensFieldsMask<OculusRiftFilter>) != 0)
        updateShaderParameters();
    Inherited::changed(whichField, origin);
}

void OculusRiftFilter::dump(UInt32, const BitVector) const
{
    SLOG << "Dump OculusRiftFilter NI" << std::endl;
}

OSG_END_NAMESPACE
