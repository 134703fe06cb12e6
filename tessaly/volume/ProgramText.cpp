#include "ProgramText.h"

namespace tessaly
{

const char *const programHeaderText = R"(#version 110
#pragma optionNV(ifcvt none)
#extension GL_ARB_gpu_shader4 : enable 
#extension GL_ARB_shader_texture_lod : enable 

struct Ray
{
    vec3 origin;
    vec3 direction;
    float tnear;
    float tfar;
    float length;
    bool active;
};

struct SamplePoint
{
    vec3 position;
    float t;
    float stepsize;
    vec3 normal;
    vec4 value;
    vec4 color;
};

void initSamplePoint(inout SamplePoint sample, in float stepsize)
{
    sample.position = vec3(0.0);
    sample.t = 0.0;
    sample.stepsize = stepsize;
    sample.normal = vec3(0.0, 1.0, 0.0);
    sample.value = vec4(0.0);
    sample.color = vec4(0.0);
}

void storeSamplePoint(in SamplePoint current, out SamplePoint previous)
{
    previous.position = current.position;
    previous.t = current.t;
    previous.stepsize = current.stepsize;
    previous.normal = current.normal;
    previous.value = current.value;
    previous.color = current.color;
}

uniform sampler3D volume; 
uniform sampler2D sceneColor; 
uniform sampler2D sceneDepth; 
uniform sampler2D frontTexture;
uniform sampler2D backTexture;
uniform vec3 volumeSize; 
uniform vec3 volumeResolution; 
uniform vec3 texelSize;
uniform float stepSize;

)";

// The scene's colour is weighted by an opacity that the colour of the ray already carries: meant.
const char *const programMainText = R"(void main()
{
    SamplePoint current;
    initSamplePoint(current, stepSize);
    SamplePoint previous;
    initSamplePoint(previous, stepSize);

    Ray ray;
    vec4 outColor = vec4(0.0);
    vec4 sceneRGBA = texture2DLod(sceneColor, gl_TexCoord[0].st, 0.0);

    getRayDirection(ray, current, previous);
    if(ray.active)
    {
        getRayStartPosition(ray, current, previous);
        traverseVolume(ray, current, previous, outColor);
    }

    gl_FragColor = vec4(mix(sceneRGBA.rgb, outColor.rgb, outColor.a), 1.0);
}
)";

// No fragment program reads the varyings or the size; they are declared for programs that replace the
// fragment stage.
const char *const programVertexText = R"(#version 110
varying vec3 lightPos;
varying vec3 eyePos;
varying vec3 eyeVec;
varying vec3 oPosition;
varying vec3 normal;
uniform vec3 size;

void main()
{
    gl_TexCoord[0].rg = gl_MultiTexCoord0.rg;
    gl_Position = gl_Vertex;
    oPosition = gl_Vertex.xyz; 
    eyePos = (gl_ModelViewMatrixInverse * vec4(0.0, 0.0, 0.0, 1.0) ).xyz; 
    lightPos = (gl_ModelViewMatrixInverse * vec4(gl_LightSource[0].position.xyz,1.0) ).xyz; 
}
)";

std::string joinFragmentProgram(const std::string &rayGeneration, const std::string &normalVolume,
                                const std::string &transferfunction, const std::string &shadingFunctions,
                                const std::string &traversalFunctions)
{
    return programHeaderText + rayGeneration + normalVolume + transferfunction + shadingFunctions +
           traversalFunctions + programMainText;
}

} // namespace tessaly
