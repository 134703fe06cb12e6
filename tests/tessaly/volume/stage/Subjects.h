#ifndef TESTS_TESSALY_VOLUME_STAGE_SUBJECTS_H
#define TESTS_TESSALY_VOLUME_STAGE_SUBJECTS_H

/// \file
/// Scenes that the tests of volume pictures share.

#include "reference/Reference.h"

#include <algorithm>

namespace test
{

/// Nothing below a sixth of the values, so that blocks can be skipped; thin and blue, then denser and red.
inline reference::TransferSource tableFor(int bits)
{
    reference::TransferSource source;
    if(bits == 8)
    {
        for(int i = 0; i < 256; ++i)
        {
            const int above = std::max(0, i - 40);
            for(const int channel : {i, above / 2, 255 - i, above / 16})
                source.bytes.push_back(std::uint8_t(channel));
        }
        return source;
    }
    for(int i = 0; i < 65536; ++i)
    {
        const float value = float(i) / 65535.0f;
        const float above = std::max(0.0f, value - 0.16f);
        source.halves.insert(source.halves.end(), {value, above * 0.5f, 1.0f - value, above * 0.06f});
    }
    return source;
}

/// A box that cuts the volume, and one behind it.
inline std::vector<reference::OpaqueBox> twoBoxes()
{
    using namespace reference;
    OpaqueBox through;
    through.toWorld = translation(-0.3, 0.2, 0.1) * rotation(1, 0.4);
    through.low = {-0.15, -0.9, -0.2};
    through.high = {0.15, 0.9, 0.2};
    through.color = {0.2f, 0.9f, 0.3f};
    OpaqueBox behind;
    behind.toWorld = translation(0.5, -0.2, -1.6);
    behind.low = {-0.4, -0.4, -0.1};
    behind.high = {0.4, 0.4, 0.1};
    behind.color = {0.9f, 0.8f, 0.1f};
    return {through, behind};
}

inline reference::CameraView lookingFrom(const reference::Vec3d &from, const reference::Vec3d &at)
{
    reference::CameraView camera;
    camera.beaconToWorld = reference::lookAt(from, at, {0.0, 1.0, 0.0});
    camera.fov = 0.8;
    camera.nearPlane = 0.2;
    camera.farPlane = 12.0;
    return camera;
}

inline reference::CameraView outside()
{
    return lookingFrom({0.9, 1.0, 2.3}, {0.03, 0.05, 0.0});
}

/// In the volume of the scene below.
inline reference::CameraView inside()
{
    return lookingFrom({0.21, 0.13, 0.35}, {-0.7, -0.2, -0.9});
}

/// A turned volume in front of blue. Sides that are no multiples of 8 are padded by the library. 8 bits: a
/// shell around a blob; 16 bits: clouds.
inline reference::Scene sceneOf(int bits, int side)
{
    using namespace reference;
    Scene scene;
    if(bits == 8)
    {
        scene.volume = shellVolume(30, 32, 27, 8, 170);
        const Volume blob = blobVolume(30, 32, 27, 8, 255, 11);
        for(std::size_t i = 0; i < blob.voxels.size(); ++i)
            scene.volume.voxels[i] = std::max(scene.volume.voxels[i], blob.voxels[i]);
    }
    else
    {
        scene.volume = cloudVolume(32, 24, 30, 16, 60000, 6, 7);
    }
    scene.transfer = tableFor(bits);
    scene.dimensions = {2.0, 1.6, 1.8};
    scene.nodeToWorld = rotation(0, 0.3) * rotation(1, 0.5);
    scene.stepSize = 0.017f;
    scene.background = {0.125f, 0.25f, 0.5f};
    scene.width = side;
    scene.height = side;
    scene.camera = outside();
    scene.kgc = 0.4f;
    scene.kgs = 3.0f;
    scene.kge = 0.75f;
    return scene;
}

} // namespace test

#endif
