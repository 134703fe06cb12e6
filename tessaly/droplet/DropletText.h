#ifndef TESSALY_DROPLETTEXT_H
#define TESSALY_DROPLETTEXT_H

/// \file
/// GLSL of the droplet simulation: the two passes of a step, the bake of normals and tangents, the display.

namespace tessaly
{

/// Fills the target with the unit quad, whatever the camera. Writes texCoord, 0 to 1 over the target.
extern const char *const flowVertexText;

/// Accelerates and damps the velocity of each cell. Uniforms: force (vec3, world), density, timeStep,
/// frictionN, frictionSigma, viscosity (float), invViewMatrix (mat4, world to the object), surfaceMap,
/// normalMap, tangentMap.
extern const char *const forceFragmentText;

/// Moves the volume of each cell to its direct neighbours; the velocity stays. Uniforms: timeStep (float),
/// offset (vec2, one texel), surfaceMap.
extern const char *const advectionFragmentText;

/// Draw an object flat, where its texture coordinates 0 say. Pass normals, and texture coordinates 1 as
/// tangents.
extern const char *const normalVertexText;
extern const char *const tangentVertexText;

/// Tilt the vector about a random axis per texel and write it as v * 0.5 + 0.5. Uniforms: noiseMap,
/// perturbAngle (float, radians).
extern const char *const normalFragmentText;
extern const char *const tangentFragmentText;

/// Gives the display programs the directions to eye and light 0 in (tangent, bitangent, normal).
extern const char *const displayVertexText;

/// The liquid alone. Uniforms: surfaceMap, fluidColor (vec4), offset (vec2, one texel).
extern const char *const fluidFragmentText;

/// The liquid over a diffuse texture, lit by light 0. Uniforms: those of the liquid alone, and diffuseMap.
extern const char *const texturedFragmentText;

} // namespace tessaly

#endif
