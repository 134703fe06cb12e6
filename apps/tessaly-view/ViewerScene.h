#ifndef TESSALY_VIEW_VIEWERSCENE_H
#define TESSALY_VIEW_VIEWERSCENE_H

/// \file
/// The scene graph of one volume: what options come to in nodes, cores and viewports.

#include "MotionDetail.h"
#include "Options.h"
#include "Scan.h"
#include "TransferPoints.h"

#include <OpenSG/OSGBackground.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <Tessaly/OSGBasicVolumeShadingStyle.h>
#include <Tessaly/OSGVolumeNode.h>
#include <Tessaly/OSGVolumeViewport.h>

#include <string>
#include <vector>

namespace viewer
{

/// A volume in its scene, with a light, a camera and what else the options ask for, and the two viewports
/// that show it. Options may change between frames; just what differs is touched. One thread, between osgInit
/// and osgExit.
class ViewerScene
{
public:
    ViewerScene();
    ~ViewerScene();
    ViewerScene(const ViewerScene &) = delete;
    ViewerScene &operator=(const ViewerScene &) = delete;

    /// Builds the scene, once. The transfer function is that of the points; options tell all else. False with
    /// one line in `error` where that can't be; then the object is good for nothing but its destruction.
    bool build(const Scan &scan, const Options &options, const TransferPoints &points, std::string &error);

    /// Brings the scene to other options: all of them but the scan, its bytes and its limits. False, with one
    /// line in `error`, where a mesh can't be read; all else is done.
    bool apply(const Options &options, std::string &error);
    /// Takes another transfer function; takes effect with the next frame, and in what the next camera without
    /// a position frames. The voxels stay where they are.
    void setTransferFunction(const TransferPoints &points);
    /// Draws in this detail from the next frame on: in the lower left part of the window, where it is shrunk.
    void setDetail(const Detail &detail);
    void setCamera(const CameraRequest &request);

    /// Must be called ahead of each frame: hands in what the library needs once more behind other changes.
    void prepareFrame();
    /// How many frames have to be drawn until the picture is that of the options.
    int framesDue() const { return _framesDue; }
    /// To be called behind each frame.
    void frameDrawn();

    /// Where the camera stands now.
    const CameraPlacement &placement() const { return _placement; }
    /// Of everything in the scene; the volume's middle is the origin.
    const Box &bounds() const { return _bounds; }

    /// Runs the passes; it must stand ahead of the other one in its window.
    const osg::VolumeViewportPtr &passes() const { return _passes; }
    /// Shows the scene, in the whole window.
    const osg::ViewportPtr &view() const { return _view; }

private:
    /// Holds one reference on a container until the scene goes.
    template <typename Ptr>
    Ptr keep(const Ptr &container);

    void buildVolume(const Options &options);
    void buildViewports(const Options &options);
    void editStyle(const Options &options);
    void editStep();
    void editSize();
    /// To be called where the next frame begins a new program behind the style, which is handed in again
    /// then.
    void startProgram();
    void editModulation(const GradientModulation &modulation);
    bool editOpaque(const OpaqueBox &opaque, std::string &error);
    /// What a camera without a position frames: points around what the table makes visible; those of the
    /// whole volume where that is nothing.
    std::vector<Vec3> framed() const;

    Options _options; ///< as applied last
    VolumeFacts _facts;
    osg::ImagePtr _scan;
    // The scene as users count it has the volume's middle at its origin. The library has the middle of the
    // padded volume there: what stands in the scene is moved to match.
    Vec3 _shift{};
    Box _volumeBox; ///< with its padding, as users count
    Box _bounds;
    std::vector<bool> _visible; ///< for each value, whether the transfer function shows it
    CameraPlacement _placement;
    Detail _detail;
    int _framesDue = 0;
    int _styleDue = 0; ///< frames behind which the style has to be handed in again

    osg::VolumeNodePtr _volume;
    osg::BasicVolumeShadingStylePtr _style;
    osg::NodePtr _root;
    osg::NodePtr _opaque; ///< in the root, or null
    osg::TransformPtr _eye;
    osg::PerspectiveCameraPtr _camera;
    osg::SolidBackgroundPtr _background;
    osg::VolumeViewportPtr _passes;
    osg::ViewportPtr _view;
    std::vector<osg::FieldContainerPtr> _kept;
};

} // namespace viewer

#endif
