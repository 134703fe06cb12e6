/// \file
/// Warps the picture of one eye for the lens of a head-mounted display, second form.

#include <Tessaly/OSGOculusRiftFilter2.h>

#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGSHLChunk.h>

#include "AspectMembers.h"
#include "LensProgram.h"

OSG_BEGIN_NAMESPACE

namespace
{

// The group's quad runs from 0 to 1.
const Char8 *const vertexProgram = R"(varying vec2  texCoord;

void main(void)
{
    gl_Position = vec4(gl_Vertex.x*2.0-1.0,gl_Vertex.y*2.0-1.0,0,1);
    texCoord = vec2( gl_Vertex.x,  gl_Vertex.y );
}
)";

/// Green is a box of five samples as large as the screen's pixel in the picture.
const Char8 *const fragmentProgram = R"(uniform sampler2D PostSceneColorTex;
uniform vec4 HmdWarpParam;
uniform vec2 LensCenter;
uniform vec2 Scale;
uniform vec4 Chroma;

varying vec2  texCoord;

const vec2 ScreenCenter = vec2(0.5,0.5);
const vec2 ScaleIn = vec2(2.0,2.5);

void main(void)
{
    vec2 theta = (texCoord - LensCenter) * ScaleIn;
    float rSq = theta.x * theta.x + theta.y * theta.y;
    float distort= HmdWarpParam.x + (HmdWarpParam.y  + (HmdWarpParam.z + HmdWarpParam.w * rSq) * rSq) * rSq;
    vec2 theta1 = theta * (Scale * distort);

    vec2 uvBlue = LensCenter + theta1 * (Chroma.z + Chroma.w * rSq);
    vec2 bound = vec2(0.5,0.5);
    if(length(clamp(uvBlue, ScreenCenter-bound,ScreenCenter+bound) - uvBlue)>0.0)
        discard;
    float blue = texture2D( PostSceneColorTex, uvBlue ).b;

    vec2 uvGreen = LensCenter + theta1;
    float dscale = 0.5;
    float friends = 0.5;
    vec2 d = dscale * (dFdx(uvGreen) + dFdy(uvGreen));
    vec4 box = vec4(uvGreen-d, uvGreen+d);
    float c = texture2D( PostSceneColorTex, box.xy ).g +
              texture2D( PostSceneColorTex, box.zw ).g +
              texture2D( PostSceneColorTex, box.xw ).g +
              texture2D( PostSceneColorTex, box.zy ).g;
    float green = (friends * c + texture2D( PostSceneColorTex, uvGreen ).g) / (1. + 4.*friends);

    vec2 uvRed = LensCenter + theta1 * (Chroma.x + Chroma.y * rSq);
    float red = texture2D( PostSceneColorTex, uvRed ).r;

    gl_FragColor = vec4( red, green, blue, 1 );
}
)";

} // namespace

void OculusRiftFilter2::initMethod() {}

OculusRiftFilter2::OculusRiftFilter2() = default;

OculusRiftFilter2::OculusRiftFilter2(const OculusRiftFilter2 &source) : Inherited(source) {}

OculusRiftFilter2::~OculusRiftFilter2() = default;

void OculusRiftFilter2::onDestroy()
{
    tessaly::clearInAllAspects(OculusRiftFilter2Ptr(*this), &OculusRiftFilter2::_shlChunk);
    Inherited::onDestroy();
}

void OculusRiftFilter2::createFilter(DisplayFilterForeground *foreground, Viewport *port)
{
    setRefdCP(_shlChunk, tessaly::addLensProgram(*foreground, port, vertexProgram, fragmentProgram));
    updateShaderParameters();
}

void OculusRiftFilter2::updateShaderParameters()
{
    if(_shlChunk == NullFC)
        return;
    const tessaly::LensUniforms uniforms = tessaly::unitLensWarp(tessaly::lensSetupOf(*this));

    beginEditCP(_shlChunk);
    _shlChunk->setUniformParameter("PostSceneColorTex", Int32(0));
    _shlChunk->setUniformParameter("LensCenter", uniforms.lensCenter);
    _shlChunk->setUniformParameter("HmdWarpParam", getDistortionK());
    _shlChunk->setUniformParameter("Scale", uniforms.scale);
    _shlChunk->setUniformParameter("Chroma", getChromaAbCorrection());
    endEditCP(_shlChunk);
}

void OculusRiftFilter2::changed(BitVector whichField, UInt32 origin)
{
    if((whichField & tessaly::lensFieldsMask<OculusRiftFilter2>) != 0)
        updateShaderParameters();
    Inherited::changed(whichField, origin);
}

void OculusRiftFilter2::dump(UInt32, const BitVector) const
{
    SLOG << "Dump OculusRiftFilter2 NI" << std::endl;
}

OSG_END_NAMESPACE
