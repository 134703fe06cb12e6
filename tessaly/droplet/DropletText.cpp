#include "DropletText.h"

namespace tessaly
{

const char *const flowVertexText = R"(varying vec2 texCoord;

void main()
{
    vec2 Position = sign(gl_Vertex.xy);
    gl_Position = vec4(Position.xy, 0.0, 1.0);
    texCoord = Position.xy * 0.5 + 0.5;
}
)";

const char *const forceFragmentText = R"(uniform vec3 force; // sum of external forces in world coordinates
uniform float density; // density of the liquid
uniform float timeStep; // step width between two frames
uniform float frictionN; // parameter of the friction attenuation
uniform float frictionSigma; // parameter of the friction attenuation
uniform float viscosity; // fluid viscosity
uniform mat4 invViewMatrix; // world to scene-local transformation
uniform sampler2D surfaceMap;
uniform sampler2D normalMap;
uniform sampler2D tangentMap;
varying vec2 texCoord;

float attenuation(float x)
{
    return clamp(
        exp(-pow(1.0 - x, frictionN) / frictionSigma) * viscosity,
        0.0, 1.0);
}

void main()
{
    vec4 surface = texture2D(surfaceMap, texCoord);
    surface.z = clamp(surface.z, 0.0, 1.0);
    vec3 normal = texture2D(normalMap, texCoord).xyz * 2.0 - 1.0;
    vec3 tangent = texture2D(tangentMap, texCoord).xyz * 2.0 - 1.0;
    vec3 biTangent = cross(normal, tangent);
    vec3 acceleration = (invViewMatrix * vec4(force, 0.0)).xyz /
        (density * max(0.01, surface.z));
    vec2 a = vec2(dot(tangent, acceleration), dot(biTangent, acceleration));
    vec2 velocity = (surface.xy + a * timeStep) * attenuation(surface.z);
    gl_FragColor = vec4(velocity.x, velocity.y, surface.z, 0.0);
}
)";

const char *const advectionFragmentText = R"(uniform float timeStep;
uniform vec2 offset; // width and height of one texel
uniform sampler2D surfaceMap;
varying vec2 texCoord;

vec4 surface;

// How far the liquid of the cell moves: to direct neighbours only.
vec2 scale()
{
    vec2 d = surface.xy * timeStep;
    float len = length(d);
    if (len > 1.0)
        d /= len;
    return d;
}

void main()
{
    float c = 0.0;
    vec2 d;

    surface = texture2D(surfaceMap, texCoord + vec2(-offset.x, offset.y));
    d = scale();
    c += surface.z * max(0.0, d.x) * abs(min(0.0, d.y));

    surface = texture2D(surfaceMap, texCoord + vec2(0.0, offset.y));
    d = scale();
    c += surface.z * (1.0 - abs(d.x)) * abs(min(0.0, d.y));

    surface = texture2D(surfaceMap, texCoord + vec2(offset.x, offset.y));
    d = scale();
    c += surface.z * abs(min(0.0, d.x)) * abs(min(0.0, d.y));

    surface = texture2D(surfaceMap, texCoord + vec2(-offset.x, 0.0));
    d = scale();
    c += surface.z * max(0.0, d.x) * (1.0 - abs(d.y));

    surface = texture2D(surfaceMap, texCoord + vec2(offset.x, 0.0));
    d = scale();
    c += surface.z * abs(min(0.0, d.x)) * (1.0 - abs(d.y));

    surface = texture2D(surfaceMap, texCoord + vec2(-offset.x, -offset.y));
    d = scale();
    c += surface.z * max(0.0, d.x) * max(0.0, d.y);

    surface = texture2D(surfaceMap, texCoord + vec2(0.0, -offset.y));
    d = scale();
    c += surface.z * (1.0 - abs(d.x)) * max(0.0, d.y);

    surface = texture2D(surfaceMap, texCoord + vec2(offset.x, -offset.y));
    d = scale();
    c += surface.z * abs(min(0.0, d.x)) * max(0.0, d.y);

    surface = texture2D(surfaceMap, texCoord);
    d = scale();
    c += surface.z * (1.0 - abs(d.x)) * (1.0 - abs(d.y));

    c *= step(offset.x, texCoord.x) * step(offset.y, texCoord.y);
    gl_FragColor = vec4(surface.x, surface.y, clamp(c, 0.0, 1.0), 0.0);
}
)";

const char *const normalVertexText = R"(varying vec2 texCoord;
varying vec3 Normal;

void main()
{
    gl_Position = vec4((gl_MultiTexCoord0.xy), 0.0, 1.0) * 2.0 - 1.0;
    texCoord = gl_MultiTexCoord0.xy;
    Normal = gl_Normal; // Pass normals in object coordinates
}
)";

const char *const tangentVertexText = R"(varying vec2 texCoord;
varying vec3 Tangent;

void main()
{
    gl_Position = vec4((gl_MultiTexCoord0.xy), 0.0, 1.0) * 2.0 - 1.0;
    texCoord = gl_MultiTexCoord0.xy;
    Tangent = gl_MultiTexCoord1.xyz; // Pass tangents in object coordinates
}
)";

const char *const normalFragmentText = R"(uniform sampler2D noiseMap;
uniform float perturbAngle;
varying vec2 texCoord;
varying vec3 Normal;

void main()
{
    float sinA = sin(perturbAngle);
    float cosA = cos(perturbAngle);
    float cos1MA = 1.0 - cosA;
    vec3 v = normalize(texture2D(noiseMap, texCoord).xyz * 2.0 - 1.0);
    mat3 rotationMatrix = mat3(
        v.x*v.x*cos1MA + cosA,
        v.x*v.y*cos1MA - v.z*sinA,
        v.x*v.z*cos1MA + v.y*sinA,
        v.y*v.x*cos1MA + v.z*sinA,
        v.y*v.y*cos1MA + cosA,
        v.y*v.z*cos1MA - v.x*sinA,
        v.z*v.x*cos1MA - v.y*sinA,
        v.z*v.y*cos1MA + v.x*sinA,
        v.z*v.z*cos1MA + cosA);
    gl_FragColor = vec4(normalize(rotationMatrix * Normal) * 0.5 + 0.5, 1.0);
}
)";

const char *const tangentFragmentText = R"(uniform sampler2D noiseMap;
uniform float perturbAngle;
varying vec2 texCoord;
varying vec3 Tangent;

void main()
{
    float sinA = sin(perturbAngle);
    float cosA = cos(perturbAngle);
    float cos1MA = 1.0 - cosA;
    vec3 v = normalize(texture2D(noiseMap, texCoord).xyz * 2.0 - 1.0);
    mat3 rotationMatrix = mat3(
        v.x*v.x*cos1MA + cosA,
        v.x*v.y*cos1MA - v.z*sinA,
        v.x*v.z*cos1MA + v.y*sinA,
        v.y*v.x*cos1MA + v.z*sinA,
        v.y*v.y*cos1MA + cosA,
        v.y*v.z*cos1MA - v.x*sinA,
        v.z*v.x*cos1MA - v.y*sinA,
        v.z*v.y*cos1MA + v.x*sinA,
        v.z*v.z*cos1MA + cosA);
    gl_FragColor = vec4(normalize(rotationMatrix * Tangent) * 0.5 + 0.5, 1.0);
}
)";

const char *const displayVertexText = R"(varying vec2 texCoord;
varying vec3 viewDir;
varying vec3 lightDir;

void main()
{
    vec3 position = gl_Vertex.xyz;
    vec3 eye = (gl_ModelViewMatrixInverse * vec4(0.0,0.0,0.0,1.0)).xyz;
    vec3 light = (gl_ModelViewMatrixInverse * vec4(gl_LightSource[0].position.xyz, 1.0)).xyz;
    viewDir = normalize(eye - position);
    lightDir = normalize(light - position);
    texCoord = gl_MultiTexCoord0.xy;

    vec3 normal = normalize(gl_Normal);
    vec3 tangent = normalize(gl_MultiTexCoord1.xyz);
    vec3 biTangent = normalize(cross(normal, tangent));
    viewDir = normalize(vec3(dot(viewDir, tangent), dot(viewDir, biTangent), dot(viewDir, normal)));
    lightDir = normalize(vec3(dot(lightDir, tangent), dot(lightDir, biTangent), dot(lightDir, normal)));
    gl_Position = ftransform();
}
)";

const char *const fluidFragmentText = R"(uniform sampler2D surfaceMap;
uniform vec4 fluidColor;
uniform vec2 offset;
varying vec2 texCoord;
varying vec3 viewDir;
varying vec3 lightDir;

void main()
{
    float val = texture2D(surfaceMap, texCoord).z;
    float valU = texture2D(surfaceMap, texCoord + vec2(offset.x, 0.0)).z;
    float valV = texture2D(surfaceMap, texCoord + vec2(0.0, offset.y)).z;
    vec3 nNormal = normalize(vec3(val - valU, val - valV, 0.5));
    vec3 nViewDir = normalize(viewDir);
    vec3 nLightDir = normalize(lightDir);

    float NDotL = max(0.2, 0.1 + dot(nNormal, nLightDir));
    float NDotH = max(0.2, dot(normalize(nLightDir + nViewDir), nNormal));
    float volume = clamp(val, 0.0, 1.0);
    float lrp = 0.1 * pow(1.0 - dot(nViewDir, nNormal), 5.0);
    float wetnessScale = smoothstep(0.0, 0.05, volume);
    vec3 totalDiffuse = fluidColor.rgb * NDotL;
    float specularScale = wetnessScale * pow(NDotH, 30.0);
    vec3 totalSpecular = fluidColor.rgb * lrp + vec3(specularScale);
    vec3 color = min(totalDiffuse + totalSpecular, 1.0);
    gl_FragColor = vec4(color, (pow(volume, 0.5) + specularScale) * fluidColor.a);
}
)";

const char *const texturedFragmentText = R"(uniform sampler2D diffuseMap;
uniform sampler2D surfaceMap;
uniform vec4 fluidColor;
uniform vec2 offset;
varying vec2 texCoord;
varying vec3 viewDir;
varying vec3 lightDir;

void main()
{
    float val = texture2D(surfaceMap, texCoord).z;
    float valU = texture2D(surfaceMap, texCoord + vec2(offset.x, 0.0)).z;
    float valV = texture2D(surfaceMap, texCoord + vec2(0.0, offset.y)).z;
    vec3 nNormal = normalize(vec3(val - valU, val - valV, 0.5));
    vec3 nViewDir = normalize(viewDir);
    vec3 nLightDir = normalize(lightDir);

    float NDotL = max(0.2, dot(nNormal, nLightDir));
    float NDotH = max(dot(normalize(nLightDir + nViewDir), nNormal), 0.2);
    vec4 TotalAmbient = gl_LightSource[0].ambient;
    vec4 TotalDiffuse = gl_LightSource[0].diffuse * NDotL;
    vec4 TotalSpecular = gl_LightSource[0].specular * pow(NDotH, gl_FrontMaterial.shininess);
    float volume = clamp(val, 0.0, 1.0);
    vec4 color = mix(texture2D(diffuseMap, texCoord),
        fluidColor, pow(volume, 0.5) * fluidColor.a);
    gl_FragColor = min(gl_FrontMaterial.ambient * TotalAmbient +
        gl_FrontMaterial.diffuse * max(TotalDiffuse, 0.0) * color +
        (smoothstep(0.0, 0.05, volume) + gl_FrontMaterial.specular) * TotalSpecular +
        gl_FrontMaterial.emission, 1.0);
}
)";

} // namespace tessaly
