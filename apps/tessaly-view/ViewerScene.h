#ifndef TESSALY_VIEW_VIEWERSCENE_H
#define TESSALY_VIEW_VIEWERSCENE_H

/// \file
/// The scene graph of one volume, and the window that it is drawn in.

#include "Histogram.h"
#include "Options.h"
#include "TransferPoints.h"

#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGTransform.h>
#include <Tessaly/OSGVolumeNode.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace viewer
{

/// What is known about a volume that was read.
struct VolumeFacts
{
    std::array<int, 3> voxels{}; ///< along x, y, z
    int bits = 8;                ///< of a voxel: 8 or 16
    Vec3 spacing{1, 1, 1};       ///< of the voxels, all above 0
    Vec3 extent{};               ///< of the volume: voxels times spacing
    std::size_t bytes = 0;       ///< of all voxels

    /// The volume in the scene: its middle is the origin.
    Box box() const { return {-0.5 * extent, 0.5 * extent}; }
};

/// Reads a volume, builds its scene, draws frames and writes the picture: read, build, open, draw as often as
/// needed, write. All of it on one thread, between osgInit and osgExit. Operations that can fail return false
/// with one line in `error`, without a line end; the log may hold a better one. Then the object is good for
/// nothing but its destruction.
class ViewerScene
{
public:
    /// The first frame makes textures and programs, the second has the picture.
    static constexpr int framesToPicture = 2;

    ViewerScene();
    ~ViewerScene();
    ViewerScene(const ViewerScene &) = delete;
    ViewerScene &operator=(const ViewerScene &) = delete;

    /// Reads a volume of one sample a voxel, of 8 or 16 bits, with two voxels at least along each axis.
    bool read(const std::string &fileName, std::string &error);
    const VolumeFacts &facts() const { return _facts; }
    /// Counts the voxels as they are now: build() brings 12-bit values to 16 bits, and swaps bytes.
    Histogram histogram() const;

    /// Builds the scene that the options ask for. Without `points` the transfer function comes from the
    /// histogram.
    bool build(const Options &options, const TransferPoints *points, std::string &error);
    /// Makes the window.
    bool open(std::string &error);
    /// Draws one frame; afterwards the picture is that of the window.
    void draw();
    /// Writes the picture as a PNG file.
    bool write(const std::string &fileName, std::string &error);

    /// Moves the camera; takes effect with the next frame.
    void setCamera(const CameraRequest &request);
    /// Takes another transfer function; takes effect with the next frame, and in what the next setCamera()
    /// frames.
    void setTransferFunction(const TransferPoints &points);

private:
    /// Holds one reference on a container until the scene goes.
    template <typename Ptr>
    Ptr keep(const Ptr &container);

    /// The points around what the table makes visible; those of the whole volume where that is nothing.
    void frame(const std::vector<bool> &visible);
    void buildVolume(const Options &options);
    osg::NodeCorePtr shadingStyle(Shading shading);
    osg::NodePtr opaqueBox(const OpaqueBox &box);

    VolumeFacts _facts;
    int _width = 0;
    int _height = 0;
    Box _bounds;               ///< of everything in the scene
    std::vector<Vec3> _framed; ///< what a camera without a position frames

    osg::ImagePtr _scan;
    osg::ImagePtr _picture;
    osg::VolumeNodePtr _volume;
    osg::TransformPtr _eye;
    osg::PerspectiveCameraPtr _camera;
    osg::EGLWindowPtr _window;
    std::unique_ptr<osg::RenderAction> _action;
    std::vector<osg::FieldContainerPtr> _kept;
};

} // namespace viewer

#endif
