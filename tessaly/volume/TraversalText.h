#ifndef TESSALY_TRAVERSALTEXT_H
#define TESSALY_TRAVERSALTEXT_H

/// \file
/// GLSL of the traversal strategies: how a ray walks through the volume.
///
/// Both texts define traverseVolume, read stepSize, and call doShading and storeSamplePoint for each sample.

namespace tessaly
{

/// Counts steps: at least one sample, at most 42 * 42. Reads ray.length; declares nothing.
extern const char *const simpleTraversalText;

/// Asks the bit volume before each block and jumps over empty ones: at most 255 decisions with 8 samples
/// each. Ends on ray.tfar and does not read ray.length. Declares bitVolumeSize, bitVolumeTexelSize and
/// bitVolume.
extern const char *const blockSkippingTraversalText;

} // namespace tessaly

#endif
