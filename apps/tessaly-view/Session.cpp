/// \file
/// Windows, frames and pictures of one volume.

#include "Session.h"

#include "AutomaticTransferFunction.h"
#include "FileChecks.h"
#include "HiddenAir.h"
#include "TransferFunctionFile.h"

#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGImageFileHandler.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace viewer
{

namespace
{

/// Bytes on the GPU that a voxel comes to: itself, and the three of a precomputed normal.
std::uint64_t bytesPerVoxel(const VolumeFacts &facts, const Options &options)
{
    return static_cast<std::uint64_t>(facts.bits / 8) + (options.normals == Normals::Precomputed ? 3 : 0);
}

/// Seconds since the call before.
class StopWatch
{
public:
    double lap()
    {
        const Clock::time_point now = Clock::now();
        const double seconds = std::chrono::duration<double>(now - _last).count();
        _last = now;
        return seconds;
    }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point _last = Clock::now();
};

} // namespace

Session::~Session()
{
    if (_window != osg::NullFC)
    {
        if (_scene)
        {
            _window->subPort(_scene->passes());
            _window->subPort(_scene->view());
        }
        _scene.reset();
        _action.reset();
        osg::subRefCP(_window);
    }
    if (_grab != osg::NullFC)
    {
        osg::subRefCP(_grab);
    }
    if (_picture != osg::NullFC)
    {
        osg::subRefCP(_picture);
    }
}

bool Session::open(int width, int height, std::string &error)
{
    const osg::EGLWindowPtr window = osg::EGLWindow::create();
    window->resize(width, height);
    return open(osg::WindowPtr(window), error);
}

bool Session::open(const osg::WindowPtr &window, std::string &error)
{
    _window = window;
    osg::addRefCP(_window);
    // The context stays current: frames then don't change it twice each.
    _window->init();
    if (!_window->activate())
    {
        error = "no GL context could be made";
        return false;
    }
    GLint side = 0;
    glGetIntegerv(GL_MAX_3D_TEXTURE_SIZE, &side);
    _largestSide = side;
    GLint viewport[2] = {0, 0};
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, viewport);
    if (_window->getWidth() > viewport[0] || _window->getHeight() > viewport[1])
    {
        error = "a picture of " + std::to_string(_window->getWidth()) + " x " +
                std::to_string(_window->getHeight()) + " pixels is too large, this machine's GL takes " +
                std::to_string(viewport[0]) + " x " + std::to_string(viewport[1]);
        return false;
    }

    _action.reset(osg::RenderAction::create());
    _picture = osg::Image::create();
    osg::addRefCP(_picture);
    _grab = osg::GrabForeground::create();
    osg::addRefCP(_grab);
    osg::beginEditCP(_grab);
    _grab->setImage(_picture);
    _grab->setActive(false);
    osg::endEditCP(_grab);
    return true;
}

bool Session::load(Scan scan, const Options &options, const Notice &notice, std::string &error)
{
    if (options.swapped)
    {
        scan.swapBytes();
    }
    std::string said;
    const VolumeLimits limits{_largestSide, static_cast<std::uint64_t>(options.maxMemory * 1024.0 * 1024.0)};
    if (!scan.reduce(limits, bytesPerVoxel(scan.facts(), options), said, error))
    {
        return false;
    }
    if (!said.empty() && notice)
    {
        notice(said);
    }

    DrawnValues values = scan.drawnValues();
    TransferPoints points;
    if (!resolvePoints(options, values, points, error))
    {
        return false;
    }
    const Preset *const preset = presetInUse(options);
    if (preset != nullptr && preset->scale == PresetScale::Hounsfield && scan.facts().unit != "HU" && notice)
    {
        notice(scan.name() +
               ": its values are taken for Hounsfield units, the file does not name their unit");
    }
    const bool classified = options.shading == Shading::Dvr || options.shading == Shading::Lit;
    if (scan.facts().bits == 8 && classified && hidesAir(byteTable(points)))
    {
        scan.raiseAir();
    }

    Options shown = options;
    shown.width = _window->getWidth();
    shown.height = _window->getHeight();
    std::unique_ptr<ViewerScene> scene = std::make_unique<ViewerScene>();
    if (!scene->build(scan, shown, points, error))
    {
        return false;
    }
    osg::beginEditCP(scene->view());
    scene->view()->getForegrounds().push_back(_grab);
    osg::endEditCP(scene->view());

    // The passes stand ahead of the viewport that shows the scene.
    osg::beginEditCP(_window);
    if (_scene)
    {
        _window->subPort(_scene->passes());
        _window->subPort(_scene->view());
    }
    _window->addPort(scene->passes());
    _window->addPort(scene->view());
    osg::endEditCP(_window);

    _scene = std::move(scene);
    _options = shown;
    _facts = scan.facts();
    _values = std::move(values);
    _points = std::move(points);
    return true;
}

bool Session::resolvePoints(const Options &options, const DrawnValues &values, TransferPoints &points,
                            std::string &error)
{
    if (options.points)
    {
        points = *options.points;
        return true;
    }
    if (!options.transferFunction.empty())
    {
        TransferFunctionText text = readTransferFunction(options.transferFunction);
        error = text.error;
        points = std::move(text.points);
        return error.empty();
    }
    const Preset *const preset = presetInUse(options);
    if (preset == nullptr)
    {
        points = automaticTransferFunction(values.histogram);
        return true;
    }
    if (preset->scale == PresetScale::Hounsfield && !values.real)
    {
        error = std::string("preset ") + preset->name +
                " needs Hounsfield units, the volume does not say what its values stand for";
        return false;
    }
    points = presetPoints(*preset, preset->scale == PresetScale::Hounsfield ? *values.real
                                                                            : objectScale(values.histogram));
    return true;
}

bool Session::pointsFor(const Options &options, TransferPoints &points, std::string &error) const
{
    return resolvePoints(options, _values, points, error);
}

bool Session::apply(const Options &options, std::string &error)
{
    TransferPoints points;
    const bool found = pointsFor(options, points, error);
    if (found && !(points == _points))
    {
        _points = points;
        _scene->setTransferFunction(points);
    }
    resize(options.width, options.height);
    const bool applied = _scene->apply(options, error);
    const Options before = std::exchange(_options, options);
    if (!found)
    {
        _options.points = before.points;
        _options.transferFunction = before.transferFunction;
        _options.preset = before.preset;
    }
    if (!applied)
    {
        _options.opaque = before.opaque;
    }
    return found && applied;
}

void Session::setCamera(const CameraRequest &request)
{
    _options.camera = request;
    _scene->setCamera(request);
}

void Session::setTransferFunction(const TransferPoints &points)
{
    _points = points;
    _options.points = points;
    _options.preset.clear();
    _options.transferFunction.clear();
    _scene->setTransferFunction(points);
}

void Session::setDetail(const Detail &detail)
{
    _scene->setDetail(detail);
}

void Session::resize(int width, int height)
{
    if (width != _window->getWidth() || height != _window->getHeight())
    {
        _window->resize(width, height);
    }
    if (_scene && (width != _options.width || height != _options.height))
    {
        _options.width = width;
        _options.height = height;
        std::string error;
        _scene->apply(_options, error);
    }
}

void Session::draw(const std::function<void()> &over, FrameTimes *times)
{
    StopWatch watch;
    // GL works behind the calls; only who asks for times waits for it.
    const auto lap = [&](double FrameTimes::*part)
    {
        if (times != nullptr)
        {
            glFinish();
            times->*part = watch.lap();
            times->total += times->*part;
        }
    };
    if (times != nullptr)
    {
        *times = FrameTimes();
    }
    if (!_window->activate())
    {
        return;
    }
    _scene->prepareFrame();
    _window->frameInit();
    _action->setWindow(_window.getCPtr());
    lap(&FrameTimes::prepare);
    _scene->passes()->render(_action.get());
    lap(&FrameTimes::passes);
    _scene->view()->render(_action.get());
    lap(&FrameTimes::rays);
    _scene->frameDrawn();
    if (over)
    {
        over();
    }
    lap(&FrameTimes::over);
    _window->swap();
    _window->frameExit();
}

void Session::present(const std::function<void()> &over)
{
    if (_window->activate())
    {
        _window->frameInit();
        over();
        _window->swap();
        _window->frameExit();
    }
}

osg::ImagePtr Session::picture(std::string &error)
{
    const int width = _window->getWidth();
    const int height = _window->getHeight();
    if (_picture->getWidth() != width || _picture->getHeight() != height)
    {
        osg::beginEditCP(_picture);
        const bool isSet = _picture->set(osg::Image::OSG_RGB_PF, width, height);
        osg::endEditCP(_picture);
        if (!isSet)
        {
            error = "no memory for a picture of " + std::to_string(width) + " x " + std::to_string(height) +
                    " pixels";
            return osg::NullFC;
        }
    }
    const auto grabbing = [this](bool on)
    {
        osg::beginEditCP(_grab, osg::GrabForeground::ActiveFieldMask);
        _grab->setActive(on);
        osg::endEditCP(_grab, osg::GrabForeground::ActiveFieldMask);
    };
    _scene->setDetail({});
    bool last = false;
    do
    {
        last = _scene->framesDue() <= 1;
        grabbing(last);
        draw();
    } while (!last);
    grabbing(false);
    return _picture;
}

bool Session::write(const std::string &fileName, std::string &error)
{
    const osg::ImagePtr image = picture(error);
    if (image == osg::NullFC)
    {
        return false;
    }
    if (!osg::ImageFileHandler::the().write(image, fileName.c_str()))
    {
        error = fileName + ": could not be written";
        return false;
    }
    return true;
}

bool Session::save(const Options &state, std::string &error) const
{
    if (!state.saveFunction.empty() && loaded() &&
        !writeText(state.saveFunction, transferFunctionText(_points), error))
    {
        return false;
    }
    return state.saveState.empty() || writeText(state.saveState, stateText(state), error);
}

} // namespace viewer
