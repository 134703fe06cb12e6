#ifndef TESSALY_VIEW_SESSION_H
#define TESSALY_VIEW_SESSION_H

/// \file
/// One window with one volume in it: what the program, the window with a panel and the Python module share.

#include "Options.h"
#include "Scan.h"
#include "ViewerScene.h"

#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGWindow.h>

#include <functional>
#include <memory>
#include <string>

namespace viewer
{

/// Where the time of a frame went, in seconds.
struct FrameTimes
{
    double prepare = 0.0; ///< what changed since the frame before, on the processor
    double passes = 0.0;  ///< the scene without the volume, starts and lengths of the rays
    double rays = 0.0;    ///< the rays themselves
    double over = 0.0;    ///< what the host draws over it
    double total = 0.0;
};

/// Open a window, load a scan, draw. All of it on one thread, between osgInit and osgExit; the window's
/// context stays current on it. Operations that can fail return false with one line in `error`, without a
/// line end; the log may hold a better one.
class Session
{
public:
    /// Tells what a user should know and what is no failure, one line without its end.
    using Notice = std::function<void(const std::string &)>;

    Session() = default;
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    /// Makes a window of that size that needs no display.
    bool open(int width, int height, std::string &error);
    /// Takes a window of the host's, with its size set, and initialises it.
    bool open(const osg::WindowPtr &window, std::string &error);

    /// Shows a scan, instead of the one before; reduces it to what GL and options.maxMemory allow. Its voxels
    /// may be changed. On failure the volume that was shown before stays.
    bool load(Scan scan, const Options &options, const Notice &notice, std::string &error);
    bool loaded() const { return _scene != nullptr; }

    /// Brings the picture to other options; the scan, its bytes and its limits stay as they were loaded. What
    /// could be done is done also where something could not.
    bool apply(const Options &options, std::string &error);
    /// Only the camera or only the transfer function, as a drag changes them from frame to frame.
    void setCamera(const CameraRequest &request);
    void setTransferFunction(const TransferPoints &points);
    /// Draws in less detail than the options say, until told otherwise; picture() ends it. Shrunk, the
    /// picture takes the lower left part of the window.
    void setDetail(const Detail &detail);
    /// Gives picture and window another size in pixels, from the next frame on.
    void resize(int width, int height);

    /// Draws one frame of the volume into the window. \param over draws over the picture, ahead of the
    /// frame's showing; the context is current \param times gets where the time went; GL is waited for only
    /// then
    void draw(const std::function<void()> &over = {}, FrameTimes *times = nullptr);
    /// Shows what `over` draws, without a frame of the volume; the context is current in it.
    void present(const std::function<void()> &over);
    /// Whether the next frame would look other than the last: it takes two where strategies change.
    bool settled() const { return _scene == nullptr || _scene->framesDue() == 0; }

    /// Draws as often as needed, at the full step, and gives the picture: red, green and blue, 8 bits each,
    /// the lowest row first. It is the session's, until the next call. Null, with one line in `error`, where
    /// memory is short.
    osg::ImagePtr picture(std::string &error);
    /// Writes the picture as a PNG file.
    bool write(const std::string &fileName, std::string &error);

    /// Writes the files that saveFunction and saveState of these options name, where they name any: the
    /// transfer function as it is now, and these options. Without a volume there is no function.
    bool save(const Options &state, std::string &error) const;

    const Options &options() const { return _options; }
    const VolumeFacts &facts() const { return _facts; }
    /// Counts of the values as they are drawn.
    const Histogram &histogram() const { return _values.histogram; }
    /// From real values to positions of a transfer function, where the file tells what its values stand for.
    const std::optional<ScaleMap> &realScale() const { return _values.real; }
    /// The transfer function as it is now.
    const TransferPoints &points() const { return _points; }
    const CameraPlacement &placement() const { return _scene->placement(); }
    const Box &bounds() const { return _scene->bounds(); }

    /// The points that options ask for: their own, or else of the file, of the preset, or of the histogram.
    bool pointsFor(const Options &options, TransferPoints &points, std::string &error) const;

private:
    bool openWindow(std::string &error);
    static bool resolvePoints(const Options &options, const DrawnValues &values, TransferPoints &points,
                              std::string &error);

    osg::WindowPtr _window;
    std::unique_ptr<osg::RenderAction> _action;
    std::unique_ptr<ViewerScene> _scene;
    osg::GrabForegroundPtr _grab;
    osg::ImagePtr _picture;
    Options _options;
    VolumeFacts _facts;
    DrawnValues _values;
    TransferPoints _points;
    int _largestSide = 0; ///< voxels along an axis that GL takes
};

} // namespace viewer

#endif
