#ifndef TESTS_TESSALY_VOLUME_STAGE_VOLUMESTAGE_H
#define TESTS_TESSALY_VOLUME_STAGE_VOLUMESTAGE_H

/// \file
/// A window with one volume in its scene, which is brought into line with what the reference renders.

#include "reference/Reference.h"
#include "support/RgbaImage.h"

#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <Tessaly/OSGBasicVolumeShadingStyle.h>
#include <Tessaly/OSGComposableVolumeShadingStyle.h>
#include <Tessaly/OSGVolumeNode.h>
#include <Tessaly/OSGVolumeViewport.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace test
{

/// The textures of the ray-casting program, in the order of their units.
enum class StageTexture
{
    Voxels,
    Front,
    Back,
    SceneColor,
    SceneDepth
};

/// The scene stays the same object from one `show` to the next: only the fields that differ are edited. All
/// of it is used on one thread. The containers are public for tests that go their own ways.
class VolumeStage
{
public:
    /// A window of that size with a VolumeViewport and a viewport that fills it. `window` is used where one
    /// is given; it must not have been drawn yet.
    VolumeStage(int width, int height, osg::EGLWindowPtr window = osg::NullFC);
    ~VolumeStage();
    VolumeStage(const VolumeStage &) = delete;
    VolumeStage &operator=(const VolumeStage &) = delete;

    /// Edits the scene; nothing is drawn. The uniform `exponent` is meant to hold the 25 of a fresh program.
    void show(const reference::Scene &scene);
    /// Renders one frame and reads the window.
    RgbaImage frame();
    /// The same, but ahead of the first picture one more frame is drawn, which prepares.
    RgbaImage picture();
    /// Shows and draws the scene; whether the picture is what the reference makes of it.
    ::testing::AssertionResult matches(const reference::Scene &scene, const std::string &name,
                                       double judged = 0.5);

    /// A texture of the ray-casting program, as `channels` (1: depth, 4: colour) floats per pixel, the lowest
    /// row first.
    std::vector<float> floats(StageTexture which, int channels);
    /// Its size in the window's GL.
    std::pair<int, int> sizeOf(StageTexture which);
    osg::TextureChunkPtr chunkOf(StageTexture which);
    /// The ray-casting program.
    osg::SHLChunkPtr program();

    osg::EGLWindowPtr window;
    osg::VolumeViewportPtr passes;
    osg::ViewportPtr view;
    osg::VolumeNodePtr volume;
    osg::BasicVolumeShadingStylePtr style;
    osg::ComposableVolumeShadingStylePtr modulation;
    osg::PerspectiveCameraPtr camera;
    osg::TransformPtr eye; ///< above the camera's beacon
    osg::SolidBackgroundPtr background;
    osg::NodePtr root;
    osg::NodePtr volumeHead; ///< has the volume as core
    osg::NodePtr boxes;      ///< parent of the opaque boxes
    osg::TransformPtr place; ///< above the volume
    osg::RenderAction *action = nullptr;

private:
    void showVolume(const reference::Scene &scene);
    void showBoxes(const reference::Scene &scene);
    void showCamera(const reference::Scene &scene);

    std::unique_ptr<reference::Scene> _shown;
    bool _prepared = false;
};

osg::Matrix matrixOf(const reference::Mat4 &matrix);
/// A texture with the raw voxels, which the library may change in place.
osg::TextureChunkPtr voxelTexture(const reference::Volume &volume);
/// A texture with a finished transfer table, null where the source has points only.
osg::TextureChunkPtr tableTexture(const reference::TransferSource &source);

/// What the pictures of the ray caster promise: at most 2/255 apart on 99.5 % of the pixels that have a
/// defined colour and no silhouette within half a pixel, and these at least the share `judged` of all. Where
/// rounding decides between colours, each of them will do. The software renderer filters in floats, so no
/// pixel is left out for that.
///
/// A failure names counts and the worst pixel and leaves "failed-images/NAME-actual.png", "-expected.png".
::testing::AssertionResult agrees(const RgbaImage &actual, const reference::Picture &expected,
                                  const std::string &name, double judged = 0.5);

/// The texts of the warnings and fatal messages that came.
std::string complaintsIn(const osg::LogCapture &log);

/// The reference's picture as bytes.
RgbaImage imageOf(const reference::Picture &picture);

} // namespace test

#endif
