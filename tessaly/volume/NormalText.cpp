#include "NormalText.h"

namespace tessaly
{

const char *const onlineCentralDiffNormalText =
    R"(void getNormal(inout Ray ray, inout SamplePoint current, inout SamplePoint previous)
{
    vec3 sample1;
    vec3 sample2;
    sample1.x = texture3D(volume, current.position - vec3(texelSize.x, 0.0, 0.0)).r;
    sample2.x = texture3D(volume, current.position + vec3(texelSize.x, 0.0, 0.0)).r;
    sample1.y = texture3D(volume, current.position - vec3(0.0, texelSize.y, 0.0)).r;
    sample2.y = texture3D(volume, current.position + vec3(0.0, texelSize.y, 0.0)).r;
    sample1.z = texture3D(volume, current.position - vec3(0.0, 0.0, texelSize.z)).r;
    sample2.z = texture3D(volume, current.position + vec3(0.0, 0.0, texelSize.z)).r;
    current.normal = -(sample2.xyz - sample1.xyz)/6.0;
}

)";

// A neighbour is named by its offsets in x, y and z: m for minus one voxel, o for none, p for plus one. The
// weights are those of the filter: 4 straight ahead, 2 beside it on one axis, 1 on both.
const char *const onlineSobelNormalText =
    R"(void getNormal(inout Ray ray, inout SamplePoint current, inout SamplePoint previous)
{
    float mmm = texture3DLod(volume, current.position + vec3(-texelSize.x, -texelSize.y, -texelSize.z), 0.0).r;
    float omm = texture3DLod(volume, current.position + vec3(0.0, -texelSize.y, -texelSize.z), 0.0).r;
    float pmm = texture3DLod(volume, current.position + vec3(texelSize.x, -texelSize.y, -texelSize.z), 0.0).r;
    float mom = texture3DLod(volume, current.position + vec3(-texelSize.x, 0.0, -texelSize.z), 0.0).r;
    float oom = texture3DLod(volume, current.position + vec3(0.0, 0.0, -texelSize.z), 0.0).r;
    float pom = texture3DLod(volume, current.position + vec3(texelSize.x, 0.0, -texelSize.z), 0.0).r;
    float mpm = texture3DLod(volume, current.position + vec3(-texelSize.x, texelSize.y, -texelSize.z), 0.0).r;
    float opm = texture3DLod(volume, current.position + vec3(0.0, texelSize.y, -texelSize.z), 0.0).r;
    float ppm = texture3DLod(volume, current.position + vec3(texelSize.x, texelSize.y, -texelSize.z), 0.0).r;
    float mmo = texture3DLod(volume, current.position + vec3(-texelSize.x, -texelSize.y, 0.0), 0.0).r;
    float omo = texture3DLod(volume, current.position + vec3(0.0, -texelSize.y, 0.0), 0.0).r;
    float pmo = texture3DLod(volume, current.position + vec3(texelSize.x, -texelSize.y, 0.0), 0.0).r;
    float moo = texture3DLod(volume, current.position + vec3(-texelSize.x, 0.0, 0.0), 0.0).r;
    float poo = texture3DLod(volume, current.position + vec3(texelSize.x, 0.0, 0.0), 0.0).r;
    float mpo = texture3DLod(volume, current.position + vec3(-texelSize.x, texelSize.y, 0.0), 0.0).r;
    float opo = texture3DLod(volume, current.position + vec3(0.0, texelSize.y, 0.0), 0.0).r;
    float ppo = texture3DLod(volume, current.position + vec3(texelSize.x, texelSize.y, 0.0), 0.0).r;
    float mmp = texture3DLod(volume, current.position + vec3(-texelSize.x, -texelSize.y, texelSize.z), 0.0).r;
    float omp = texture3DLod(volume, current.position + vec3(0.0, -texelSize.y, texelSize.z), 0.0).r;
    float pmp = texture3DLod(volume, current.position + vec3(texelSize.x, -texelSize.y, texelSize.z), 0.0).r;
    float mop = texture3DLod(volume, current.position + vec3(-texelSize.x, 0.0, texelSize.z), 0.0).r;
    float oop = texture3DLod(volume, current.position + vec3(0.0, 0.0, texelSize.z), 0.0).r;
    float pop = texture3DLod(volume, current.position + vec3(texelSize.x, 0.0, texelSize.z), 0.0).r;
    float mpp = texture3DLod(volume, current.position + vec3(-texelSize.x, texelSize.y, texelSize.z), 0.0).r;
    float opp = texture3DLod(volume, current.position + vec3(0.0, texelSize.y, texelSize.z), 0.0).r;
    float ppp = texture3DLod(volume, current.position + vec3(texelSize.x, texelSize.y, texelSize.z), 0.0).r;

    float xGrad = (4.0 * poo + 2.0 * (pom + pmo + ppo + pop) + pmm + ppm + pmp + ppp)
                - (4.0 * moo + 2.0 * (mom + mmo + mpo + mop) + mmm + mpm + mmp + mpp);
    float yGrad = (4.0 * opo + 2.0 * (opm + mpo + ppo + opp) + mpm + ppm + mpp + ppp)
                - (4.0 * omo + 2.0 * (omm + mmo + pmo + omp) + mmm + pmm + mmp + pmp);
    float zGrad = (4.0 * oop + 2.0 * (omp + mop + pop + opp) + mmp + pmp + mpp + ppp)
                - (4.0 * oom + 2.0 * (omm + mom + pom + opm) + mmm + pmm + mpm + ppm);

    current.normal = -vec3(xGrad, yGrad, zGrad) / 32.0; 
}

)";

// The declaration lacks the word uniform: meant, the line stays as it is.
const char *const preCentralDiffNormalText = R"(sampler3D normalVolume; 

void getNormal(inout Ray ray, inout SamplePoint current, inout SamplePoint previous)
{
    current.normal =  vec3(2.0) * texture3D(normalVolume, current.position).rgb - vec3(1.0);
}

)";

} // namespace tessaly
