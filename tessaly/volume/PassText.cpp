#include "PassText.h"

namespace tessaly
{

const char *const planeVertexText = R"(#version 110
uniform mat4 viewToVolume;
varying vec3 oPosition;

void main()
{
    vec4 temp = gl_ProjectionMatrixInverse * vec4(gl_Vertex.xy, -1.0, 1.0);
    temp /=  temp.w;
    oPosition = (viewToVolume * temp).xyz;
    gl_Position = vec4(gl_Vertex.xy, -1.0, 1.0);
}
)";

const char *const planeFragmentText = R"(#pragma optionNV(ifcvt none)
//#pragma optionNV(unroll all)
varying vec3 oPosition;

void main()
{
    gl_FragColor = vec4(oPosition, 0.0);
}
)";

const char *const faceVertexText = R"(varying vec3 texCoords;

void main()
{
    texCoords = gl_Vertex.rgb;  
    gl_Position = ftransform(); 
}
)";

const char *const faceFragmentText = R"(#pragma optionNV(ifcvt none)
//#pragma optionNV(unroll all)
varying vec3 texCoords;

void main()
{
    gl_FragColor = vec4(texCoords, 1.0);
}
)";

const char *const exitVertexText = R"(//uniform mat4 viewToVolume;
varying vec3 texCoords;

void main()
{
    texCoords = gl_Vertex.rgb; 
    gl_Position = ftransform();
}
)";

// The macros invert the depth mapping of a perspective projection; an orthographic camera gets wrong lengths.
const char *const exitFragmentText = R"(#pragma optionNV(ifcvt none)
uniform vec2 textureSize;
uniform vec2 depthRange;
uniform sampler2D startImage;
uniform sampler2D sceneDepth; 
varying vec3 texCoords;

#define ZNEAR depthRange.x 
#define ZFAR  depthRange.y 
#define A (ZNEAR + ZFAR) 
#define B (ZNEAR - ZFAR) 
#define C (2.0 * ZNEAR * ZFAR) 
#define D (ndc.z * B) 
#define ZEYE -(C / (A + D)) 

void main()
{
    vec4 backFaceColor = vec4(texCoords, 1.0);
    vec2 texCoordScene = gl_FragCoord.xy / textureSize;
    float depth = texture2D(sceneDepth, texCoordScene).r;
    vec4 ndc = 2.0 * vec4(texCoordScene, depth, 1.0) - vec4(1.0);

    vec4 clipPos;
    clipPos.w = -ZEYE; 
    clipPos.xyz = ndc.xyz * clipPos.w; 
    vec4 volPos = gl_ProjectionMatrixInverse * clipPos; 
    vec4 volumeCoords = gl_ModelViewMatrixInverse * volPos; 

    vec4 frontFaceColor = texture2D(startImage, texCoordScene );
    vec3 diffFrontBack = vec3(backFaceColor.rgb - frontFaceColor.rgb);
    float lengthDirectionTemp = length(diffFrontBack);
    vec3 diffFrontScene = vec3( volumeCoords.rgb - frontFaceColor.rgb);
    float signDot = sign( dot( diffFrontBack, diffFrontScene));
    float lengthScene = signDot * length(diffFrontScene);
    float finalLength = min( lengthScene, lengthDirectionTemp);
    float lengthDirection = max( 0.0, finalLength * frontFaceColor.a);
    vec3 direction = normalize(diffFrontBack);
    gl_FragColor = vec4( direction, lengthDirection);
}
)";

} // namespace tessaly
