#include "ShadingText.h"

namespace tessaly
{

namespace
{

// A sample that is not visible leaves the ray as it is, so that the opacity is tested only where it changed.
const char *const dvrBegin = R"(uniform float kgc; 
uniform float kgs;
uniform float kge; 

void doShading(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    current.value = texture3DLod(volume, current.position, 0.0);
    getClassification(ray, current, previous, outColor);
    if(current.color.a > 0.0)
    {
        applyCorrectionFactor(ray, current, previous, outColor); 
)";

const char *const dvrGradient = R"(        getNormal(ray, current, previous); 
        float gradMag = length(current.normal); 
        float oldAlpha = current.color.a; 
        current.color.a *= (kgc + kgs * pow( gradMag, kge)); 
        current.color.rgb *= current.color.a / oldAlpha; 
)";

const char *const dvrEnd = R"(        compositeColor(ray, current, previous, outColor); 
        ray.active = outColor.a < 0.98; 
    }
}

)";

const char *const lightingBegin = R"(uniform float kgc; 
uniform float kgs;
uniform float kge; 
uniform vec3 emissiveColor; 
uniform vec3 diffuseColor;
uniform vec3 specularColor;
uniform float exponent;

void shadeDVRSample(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    vec3 L = normalize((gl_ModelViewMatrixInverse * vec4( gl_LightSource[0].position.xyz, 0.0)).xyz); 
    vec3 halfVec = normalize(L - ray.direction ); 
    float ndotl = clamp(dot(L, current.normal ), 0.000001, 1.0 ); 
    float ndoth = clamp(dot(halfVec, current.normal ), 0.000001, 1.0 ); 
    float specularScale = pow(ndoth, exponent); 
    vec3 diffuse = diffuseColor * current.color.rgb * ndotl * gl_LightSource[0].diffuse.rgb; 
    vec3 specular = specularColor * specularScale * gl_LightSource[0].specular.rgb * current.color.a;
    current.color.rgb = emissiveColor * current.color.rgb + diffuse + specular;
}

void doShading(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    current.value = texture3DLod(volume, current.position, 0.0);
    getClassification(ray, current, previous, outColor);
    if(current.color.a > 0.0)
    {
        applyCorrectionFactor(ray, current, previous, outColor); 
        getNormal(ray, current, previous); 
)";

// Stands ahead of the normalisation: the weight needs the gradient's length.
const char *const lightingGradient = R"(        float gradMag = length(current.normal); 
        float oldAlpha = current.color.a; 
        current.color.a *= (kgc + kgs * pow(gradMag, kge)); 
        current.color.rgb *= current.color.a / oldAlpha; 
)";

const char *const lightingEnd = R"(        current.normal = normalize(current.normal); 
        shadeDVRSample(ray, current, previous, outColor); 
        compositeColor(ray, current, previous, outColor); 
        ray.active = outColor.a < 0.98; 
    }
}

)";

} // namespace

std::string dvrShadingText(bool gradientModulation)
{
    return std::string(dvrBegin) + (gradientModulation ? dvrGradient : "") + dvrEnd;
}

std::string dvrShadingAndLightingText(bool gradientModulation)
{
    return std::string(lightingBegin) + (gradientModulation ? lightingGradient : "") + lightingEnd;
}

const char *const mipShadingText =
    R"(void doShading(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    current.value = texture3DLod(volume, current.position, 0.0);
    float currentMax = max( outColor.a, current.value.r);
    outColor = vec4(vec3(1.0), currentMax);
}

)";

const char *const xRayShadingText = R"(uniform float xRayIntensityFactor; 

void doShading(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    current.value = stepSize * xRayIntensityFactor * texture3DLod(volume, current.position, 0.0);
    outColor = vec4(vec3(1.0), outColor.a + current.value.r);
}

)";

} // namespace tessaly
