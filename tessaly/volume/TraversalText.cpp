#include "TraversalText.h"

namespace tessaly
{

// The count is tested behind the sample, so that a ray of no steps still takes one: meant.
const char *const simpleTraversalText =
    R"(void traverseVolume(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    int numSteps = int(ray.length / stepSize);
    int k = 0;
    vec3 advance = stepSize * ray.direction;
    current.position = ray.origin + ray.tnear * ray.direction;
    current.t = ray.tnear;

    for(int i = 0; i < 42 && ray.active; ++i)
    {
        for(int j = 0; j < 42 && ray.active; ++j)
        {
            ++k;
            doShading(ray, current, previous, outColor);
            storeSamplePoint(current, previous);
            current.position += advance;
            current.t += stepSize; 
            ray.active = (ray.active && k < numSteps) ? true : false; 
        }
    }
}

)";

// The step in volume units is added to a position in block units: meant, as a small push over the block's
// border.
const char *const blockSkippingTraversalText = R"(uniform vec3 bitVolumeSize; 
uniform vec3 bitVolumeTexelSize;
uniform sampler3D bitVolume; 

void traverseVolume(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    float invStepSize = 1.0 /  stepSize; 
    vec3 advance = stepSize * ray.direction;
    vec3 invDirection = vec3(1.0) / ray.direction; 
    vec3 directionSign = max(vec3(0.0), sign(ray.direction)); 
    vec3 scaledRayOrigin = ray.origin * bitVolumeSize - directionSign; 
    vec3 scaledInvDirection = invDirection * bitVolumeTexelSize; 
    current.position = ray.origin + ray.tnear * ray.direction;
    current.t = ray.tnear;

    for(int i = 0; i < 255 && ray.active; ++i) 
    {
        vec3 index = floor((current.position * bitVolumeSize) + advance);
        float maxMinusMin = texture3D(bitVolume, (index + vec3(0.5)) * bitVolumeTexelSize ).a;
        if(maxMinusMin == 0.0)
        {
            vec3 tnext3 = (index - scaledRayOrigin) * scaledInvDirection;
            float tnext = min(tnext3.x, min(tnext3.y, tnext3.z));
            current.t = ceil(tnext * invStepSize) * stepSize;
            current.position = ray.origin + current.t * ray.direction;
            ray.active = (ray.active && current.t < ray.tfar) ? true : false; 
        }
        else
        {
            for(int j=0; j < 8 && ray.active; ++j)
            {
                doShading(ray, current, previous, outColor);
                storeSamplePoint(current, previous);
                current.position += advance;
                current.t += stepSize; 
                ray.active = (ray.active && current.t < ray.tfar) ? true : false; 
            }
        }
    }
}

)";

} // namespace tessaly
