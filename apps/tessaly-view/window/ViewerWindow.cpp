/// \file
/// The loop around session, panel and mouse.

#include "ViewerWindow.h"

#include "FileChecks.h"
#include "MotionDetail.h"
#include "OrbitControl.h"
#include "Panel.h"
#include "PictureCache.h"
#include "Session.h"
#include "TransferFunctionFile.h"

#include <OpenSG/OSGGLFWWindow.h>
#include <OpenSG/OSGImageFileHandler.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGSceneFileHandler.h>

#include <backends/imgui_impl_glfw.h>
#include <backends/imgui_impl_opengl2.h>
#include <imgui.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>
#include <unistd.h>
#include <vector>

namespace viewer
{

namespace
{

/// A panel needs a few frames to come to rest behind an event.
constexpr int panelFrames = 3;
/// How long after a turn of the wheel, or a change in the panel, the picture counts as moving.
constexpr double movingSeconds = 0.3;
/// Degrees for a drag over the whole height of the window.
constexpr double degreesPerHeight = 180.0;
constexpr double dollyPerNotch = 0.9;

double now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// The first thing that the log has warned of, which says more than `error`, or that.
std::string reasonOf(const osg::LogCapture &log, const std::string &error)
{
    for (const osg::LogMessage &message : log.messages())
    {
        if (message.level == osg::LOG_FATAL || message.level == osg::LOG_WARNING)
        {
            return message.text.substr(0, message.text.find('\n'));
        }
    }
    return error;
}

/// "tessaly.png", or the first of "tessaly-001.png" and on that isn't there.
std::string freeName()
{
    std::string name = "tessaly.png";
    for (int i = 1; access(name.c_str(), F_OK) == 0 && i < 1000; ++i)
    {
        const std::string number = std::to_string(i);
        name = "tessaly-" + std::string(3 - number.size(), '0') + number + ".png";
    }
    return name;
}

/// Dear ImGui in a window, for as long as it lives. The window's context must be current at both ends.
class Gui
{
public:
    explicit Gui(GLFWwindow *window)
    {
        ImGui::CreateContext();
        ImGui::GetIO().IniFilename = nullptr; // nothing is written that nobody asked for
        ImGui::StyleColorsDark();
        ImGui_ImplGlfw_InitForOpenGL(window, true);
        ImGui_ImplOpenGL2_Init();
    }
    ~Gui()
    {
        ImGui_ImplOpenGL2_Shutdown();
        ImGui_ImplGlfw_Shutdown();
        ImGui::DestroyContext();
    }
    Gui(const Gui &) = delete;
    Gui &operator=(const Gui &) = delete;

    static void begin()
    {
        ImGui_ImplOpenGL2_NewFrame();
        ImGui_ImplGlfw_NewFrame();
        ImGui::NewFrame();
    }
    static void draw() { ImGui_ImplOpenGL2_RenderDrawData(ImGui::GetDrawData()); }
};

class ViewerWindow : private osg::GLFWWindowListener
{
public:
    explicit ViewerWindow(const Options &options) : _start(options), _panelShown(options.panel) {}
    ~ViewerWindow() override;

    bool run(std::string &error);

private:
    bool open(std::string &error);
    bool load(const std::string &file, const Options &options, std::string &error);
    void loop();
    void frame();
    void answer(const PanelRequest &request, Options options, const TransferPoints &points);
    void answerFiles(const PanelRequest &request);

    /// The options of what is shown.
    Options state() const;
    void tell(const std::string &message, bool failed = false);
    void moved() { _movingUntil = now() + movingSeconds; }
    bool moving() const { return _button >= 0 || now() < _movingUntil; }

    // Each takes effect with the next frame.
    void setCamera(const CameraRequest &camera);
    CameraRequest camera() const { return fixedCamera(_session.options().camera, _session.placement()); }
    void dolly(double factor);
    void axisView(int axis, bool positive);
    void resetView();
    void change(const Options &options);
    void screenshot();
    void loadFunction(const std::string &file);
    void loadState(const std::string &file);
    void open(const std::string &file);

    void resized(osg::Int32 width, osg::Int32 height) override;
    void mouseMoved(osg::Real64 x, osg::Real64 y) override;
    void mouseButton(osg::Int32 button, bool pressed, osg::Real64 x, osg::Real64 y,
                     osg::Int32 modifiers) override;
    void scrolled(osg::Real64 dx, osg::Real64 dy, osg::Real64 x, osg::Real64 y) override;
    void key(osg::Int32 key, bool pressed, bool repeated, osg::Int32 modifiers) override;
    void character(osg::UInt32) override { _panelDue = panelFrames; }
    void dropped(const std::vector<std::string> &files) override;
    void closeRequested() override { _panelDue = 1; }
    void refreshed() override { _panelDue = std::max(_panelDue, 1); }

    Options _start; ///< what the command line said, the view to come back to
    osg::GLFWWindowPtr _window;
    Session _session;
    std::unique_ptr<Gui> _gui;
    Panel _panel;
    PictureCache _picture;
    MotionDetail _motion;
    PanelFacts _facts;
    std::vector<std::string> _dropped;

    bool _panelShown;
    bool _helpShown = false;
    Detail _detail;              ///< of the next frame
    int _panelDue = panelFrames; ///< frames that the panel still wants
    int _button = -1;            ///< the one that drags, or -1
    bool _shift = false;         ///< whether it was pressed with Shift
    double _x = 0.0;
    double _y = 0.0;
    double _movingUntil = 0.0;
};

ViewerWindow::~ViewerWindow()
{
    if (_window != osg::NullFC)
    {
        _window->setListener(nullptr);
        if (_window->activate())
        {
            _gui.reset();
        }
    }
}

bool ViewerWindow::open(std::string &error)
{
    _window = osg::GLFWWindow::create();
    _window->resize(_start.width, _start.height);
    _window->setTitle("Tessaly");
    if (!_session.open(osg::WindowPtr(_window), error))
    {
        error = "no window could be opened; --output FILE draws without one";
        return false;
    }
    _window->setListener(this);
    _gui = std::make_unique<Gui>(_window->getHandle());
    return true;
}

bool ViewerWindow::load(const std::string &file, const Options &options, std::string &error)
{
    Scan scan;
    std::string notice;
    const auto note = [&](const std::string &line) { notice = line; };
    const osg::LogCapture log(osg::LOG_WARNING);
    if (!scan.read(file, error) || !_session.load(std::move(scan), options, note, error))
    {
        error = reasonOf(log, error);
        return false;
    }
    _panel.show(_session);
    _facts.file = file;
    _window->setTitle(baseName(file) + " - Tessaly");
    tell(notice);
    return true;
}

bool ViewerWindow::run(std::string &error)
{
    if (!open(error) || (!_start.input.empty() && !load(_start.input, _start, error)))
    {
        return false;
    }
    loop();
    return _session.save(_session.loaded() ? state() : _start, error);
}

Options ViewerWindow::state() const
{
    Options state = _session.options();
    state.camera = camera();
    state.input = _facts.file;
    state.saveFunction = _start.saveFunction;
    state.saveState = _start.saveState;
    return state;
}

void ViewerWindow::loop()
{
    while (!_window->shouldClose())
    {
        const bool due = (_panelDue > 0 || !_session.settled()) && !_window->isMinimised();
        if (due)
        {
            osg::GLFWWindow::pollEvents();
        }
        else
        {
            // Wakes up to refine the picture when the hand has come to rest.
            osg::GLFWWindow::waitEvents(_facts.detail.full() ? 0.5 : 0.02);
        }
        for (const std::string &file : std::exchange(_dropped, {}))
        {
            open(file);
        }
        if (_session.loaded())
        {
            _detail = moving() ? _motion.moving() : Detail();
            _session.setDetail(_detail);
        }
        if (!_window->isMinimised() && (_panelDue > 0 || !_session.settled()))
        {
            frame();
        }
    }
}

void ViewerWindow::frame()
{
    _panelDue = std::max(_panelDue - 1, 0);
    Options options = _session.options();
    TransferPoints points = _session.points();
    PanelRequest request;

    Gui::begin();
    if (!_session.loaded())
    {
        _panel.buildInvitation(_facts);
    }
    else if (_panelShown)
    {
        request = _panel.build(options, points, _session, _facts);
    }
    if (_helpShown)
    {
        _panel.buildHelp();
    }
    ImGui::Render();

    const int width = static_cast<int>(_window->getWidth());
    const int height = static_cast<int>(_window->getHeight());
    if (_session.settled())
    {
        _session.present(
            [&]
            {
                _picture.draw(width, height);
                Gui::draw();
            });
    }
    else
    {
        _session.draw(
            [&]
            {
                _picture.keep(width / _detail.shrink, height / _detail.shrink);
                if (_detail.shrink > 1)
                {
                    _picture.draw(width, height);
                }
                Gui::draw();
            },
            &_facts.times);
        _facts.detail = _detail;
        _motion.drawn(_detail, _facts.times.passes + _facts.times.rays);
        _panelDue = std::max(_panelDue, 1); // the panel tells of the frame that was just drawn
    }
    if (_session.loaded())
    {
        answer(request, std::move(options), points);
    }
}

void ViewerWindow::answer(const PanelRequest &request, Options options, const TransferPoints &points)
{
    if (request.points)
    {
        _session.setTransferFunction(points);
        options.points = points;
        options.preset.clear();
        options.transferFunction.clear();
        moved();
    }
    if (request.automatic)
    {
        options.points.reset();
        options.preset.clear();
        options.transferFunction.clear();
    }
    if (request.options || request.automatic)
    {
        change(options);
        moved();
    }
    if (request.reset)
    {
        resetView();
    }
    if (request.axis >= 0)
    {
        axisView(request.axis, true);
    }
    answerFiles(request);
}

void ViewerWindow::answerFiles(const PanelRequest &request)
{
    std::string error;
    if (request.screenshot)
    {
        screenshot();
    }
    if (!request.loadFunction.empty())
    {
        loadFunction(request.loadFunction);
    }
    if (!request.saveFunction.empty())
    {
        const bool written = writeText(request.saveFunction, transferFunctionText(_session.points()), error);
        tell(written ? request.saveFunction + " written" : error, !written);
    }
    if (!request.loadState.empty())
    {
        loadState(request.loadState);
    }
    if (!request.saveState.empty())
    {
        const bool written = writeText(request.saveState, stateText(state()), error);
        tell(written ? request.saveState + " written" : error, !written);
    }
}

void ViewerWindow::tell(const std::string &message, bool failed)
{
    _facts.message = message;
    _facts.failed = failed;
    _panelDue = panelFrames;
}

void ViewerWindow::setCamera(const CameraRequest &camera)
{
    _session.setCamera(camera);
    moved();
}

void ViewerWindow::dolly(double factor)
{
    const Box &box = _session.bounds();
    setCamera(dollied(camera(), factor, 1e-3 * length(box.high - box.low)));
}

void ViewerWindow::axisView(int axis, bool positive)
{
    setCamera(fromAxis(camera(), axis, positive));
}

void ViewerWindow::resetView()
{
    setCamera(_start.camera);
}

void ViewerWindow::change(const Options &options)
{
    const osg::LogCapture log(osg::LOG_WARNING);
    std::string error;
    if (!_session.apply(options, error))
    {
        tell(reasonOf(log, error), true);
    }
}

void ViewerWindow::screenshot()
{
    const std::string name = freeName();
    std::string error;
    const bool written = _session.write(name, error);
    tell(written ? name + " written" : error, !written);
}

void ViewerWindow::loadFunction(const std::string &file)
{
    const TransferFunctionText text = readTransferFunction(file);
    if (!text.error.empty())
    {
        tell(text.error, true);
        return;
    }
    _session.setTransferFunction(text.points);
    tell(text.warning.empty() ? file + " read" : text.warning);
}

void ViewerWindow::loadState(const std::string &file)
{
    const char *const arguments[] = {"tessaly-view", "--load-state", file.c_str()};
    CommandLine line = parseCommandLine(3, arguments);
    if (!line.run)
    {
        tell(line.text, true);
        return;
    }
    Options state = line.options;
    std::string error;
    const bool sameScan = state.input.empty() || state.input == _facts.file;
    if (!sameScan && !load(state.input, state, error))
    {
        tell(error, true);
        return;
    }
    state.width = static_cast<int>(_window->getWidth());
    state.height = static_cast<int>(_window->getHeight());
    if (sameScan && !_session.apply(state, error))
    {
        tell(error, true);
        return;
    }
    tell(file + " read");
}

void ViewerWindow::open(const std::string &file)
{
    std::string error;
    if (osg::ImageFileHandler::the().getFileType(nullptr, file.c_str()) != nullptr)
    {
        // Another volume is shown as the program shows it without options, in the same light.
        Options options = _session.loaded() ? _session.options() : _start;
        if (_session.loaded())
        {
            options.camera = CameraRequest();
            options.points.reset();
            options.preset.clear();
            options.transferFunction.clear();
        }
        if (!load(file, options, error))
        {
            tell(error, true);
            return;
        }
        _start.camera = options.camera;
    }
    else if (!_session.loaded())
    {
        tell(file + ": no volume, and there is none yet", true);
    }
    else if (osg::SceneFileHandler::the().getFileType(file.c_str()) != nullptr)
    {
        Options options = _session.options();
        options.opaque.enabled = true;
        options.opaque.file = file;
        change(options);
    }
    else if (hasSuffix(file, ".txt"))
    {
        loadFunction(file);
    }
    else if (hasSuffix(file, ".ini"))
    {
        loadState(file);
    }
    else
    {
        tell(file + ": neither a volume, a mesh, a transfer function (.txt) nor a state (.ini)", true);
    }
}

void ViewerWindow::resized(osg::Int32 width, osg::Int32 height)
{
    _session.resize(width, height);
    _panelDue = panelFrames;
}

void ViewerWindow::mouseMoved(osg::Real64 x, osg::Real64 y)
{
    const double height = std::max(1.0, static_cast<double>(_window->getHeight()));
    const double dx = (x - std::exchange(_x, x)) / height;
    const double dy = (y - std::exchange(_y, y)) / height;
    _panelDue = std::max(_panelDue, 1);
    if (_button < 0 || !_session.loaded())
    {
        return;
    }
    if (_button == osg::GLFWWindow::ButtonRight)
    {
        dolly(std::exp(2.0 * dy));
    }
    else if (_button == osg::GLFWWindow::ButtonMiddle || _shift)
    {
        setCamera(panned(camera(), -dx, dy));
    }
    else
    {
        setCamera(orbited(camera(), -degreesPerHeight * dx, degreesPerHeight * dy));
    }
}

void ViewerWindow::mouseButton(osg::Int32 button, bool pressed, osg::Real64 x, osg::Real64 y,
                               osg::Int32 modifiers)
{
    _panelDue = panelFrames;
    _x = x;
    _y = y;
    if (!pressed)
    {
        _button = button == _button ? -1 : _button;
    }
    else if (!ImGui::GetIO().WantCaptureMouse && _button < 0)
    {
        _button = button;
        _shift = (modifiers & osg::GLFWWindow::ModifierShift) != 0;
    }
}

void ViewerWindow::scrolled(osg::Real64, osg::Real64 dy, osg::Real64, osg::Real64)
{
    _panelDue = panelFrames;
    if (!ImGui::GetIO().WantCaptureMouse && _session.loaded())
    {
        dolly(std::pow(dollyPerNotch, dy));
    }
}

void ViewerWindow::key(osg::Int32 key, bool pressed, bool repeated, osg::Int32 modifiers)
{
    _panelDue = panelFrames;
    if (!pressed || repeated || ImGui::GetIO().WantTextInput)
    {
        return;
    }
    const bool positive = (modifiers & osg::GLFWWindow::ModifierShift) == 0;
    switch (key)
    {
    case osg::GLFWWindow::KeyH:
        _helpShown = !_helpShown;
        return;
    case osg::GLFWWindow::KeyTab:
        _panelShown = !_panelShown;
        return;
    case osg::GLFWWindow::KeyQ:
    case osg::GLFWWindow::KeyEscape:
        _window->setShouldClose(true);
        return;
    default:
        break;
    }
    if (!_session.loaded())
    {
        return;
    }
    switch (key)
    {
    case osg::GLFWWindow::KeyR:
        resetView();
        break;
    case osg::GLFWWindow::KeyX:
    case osg::GLFWWindow::KeyY:
    case osg::GLFWWindow::KeyZ:
        axisView(key - osg::GLFWWindow::KeyX, positive);
        break;
    case osg::GLFWWindow::KeyO:
    {
        Options options = _session.options();
        options.opaque.enabled = !options.opaque.enabled;
        change(options);
        break;
    }
    case osg::GLFWWindow::KeyP:
        screenshot();
        break;
    default:
        break;
    }
}

void ViewerWindow::dropped(const std::vector<std::string> &files)
{
    _dropped.insert(_dropped.end(), files.begin(), files.end());
    _panelDue = panelFrames;
}

} // namespace

bool runWindow(const Options &options, std::string &error)
{
    return ViewerWindow(options).run(error);
}

} // namespace viewer
