#include "RayText.h"

namespace tessaly
{

// The length stays that from the unmoved entry point, so the walk ends short of the exit by what the start
// moved back: meant.
const char *const simpleRayText =
    R"(void getRayDirection(inout Ray ray, inout SamplePoint current, inout SamplePoint previous)
{
    vec4 dirLength = texture2DLod(backTexture, gl_TexCoord[0].st, 0.0);
    ray.direction = dirLength.rgb;
    ray.tfar = dirLength.a;
    ray.active = (dirLength.a > 0.0);
}

void getRayStartPosition(inout Ray ray, inout SamplePoint current, inout SamplePoint previous)
{
    vec4 startPos = texture2DLod(frontTexture, gl_TexCoord[0].st, 0.0);
    ray.origin = startPos.rgb;

    vec3 t1nah = -ray.origin / ray.direction; 
    vec3 t1fern = (vec3(1.0) - ray.origin) / ray.direction; 
    vec3 minDist = min(t1nah, t1fern); 
    float tnah = max(minDist.x, max( minDist.y, minDist.z)); 

    float offset = fract( tnah / stepSize); 
    ray.tnear = offset * stepSize - stepSize; 
    ray.origin = ray.origin + ray.tnear * ray.direction; 
    ray.tnear = 0.0;
    ray.length = ray.tfar - ray.tnear;
}

)";

// Pixel centres lie at .5 and are not floored, so that no start lies on the grid itself: meant.
const char *const interleavedRayText =
    R"(void getRayDirection(inout Ray ray, inout SamplePoint current, inout SamplePoint previous)
{
    vec4 dirLength = texture2DLod(backTexture, gl_TexCoord[0].st, 0.0);
    ray.direction = dirLength.rgb;
    ray.tfar = dirLength.a;
    ray.active = (dirLength.a > 0.0);
}

void getRayStartPosition(inout Ray ray, inout SamplePoint current, inout SamplePoint previous)
{
    vec4 startPos = texture2DLod(frontTexture, gl_TexCoord[0].st, 0.0);
    ray.origin = startPos.rgb;

    vec3 t1nah = -ray.origin / ray.direction; 
    vec3 t1fern = (vec3(1.0) - ray.origin) / ray.direction; 
    vec3 minDist = min(t1nah, t1fern); 
    float tnah = max(minDist.x, max( minDist.y, minDist.z)); 

    float offset = fract(tnah / stepSize); 
    ray.tnear = offset * stepSize - stepSize; 
    ray.origin = ray.origin + ray.tnear * ray.direction; 

    vec2 modulo = mod(gl_FragCoord.xy, vec2( 2.0));
    float rayOffset = (modulo.x * 2.0 + modulo.y) * stepSize / 4.0;
    ray.origin = ray.origin + rayOffset * ray.direction;
    ray.tnear = 0.0;
    ray.length = ray.tfar - (ray.tnear + rayOffset);
}

)";

} // namespace tessaly
