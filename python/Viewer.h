#ifndef TESSALY_PYTHON_VIEWER_H
#define TESSALY_PYTHON_VIEWER_H

/// \file
/// The class Viewer: a session of tessaly-view that Python owns.

#include "Camera.h"
#include "Keywords.h"
#include "Library.h"
#include "Session.h"

#include <OpenSG/OSGEGLWindow.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <pybind11/numpy.h>

namespace binding
{

/// One volume and its pictures. All operations are for the thread that made it, others get RuntimeError; its
/// end may come on any thread, since no context of a viewer stays current between calls.
class Viewer
{
public:
    Viewer(const pybind11::object &volume, const pybind11::object &spacing, const std::string &unit,
           const pybind11::dict &arguments, const char *who);
    Viewer(const std::string &fileName, const pybind11::dict &arguments);
    ~Viewer();
    Viewer(const Viewer &) = delete;
    Viewer &operator=(const Viewer &) = delete;

    void close();
    bool closed() const { return _session == nullptr; }

    pybind11::array render();
    void save(const std::string &fileName);

    pybind11::dict options();
    void set(const pybind11::dict &arguments);
    Camera camera();
    pybind11::dict placement();
    pybind11::dict transferFunction();
    pybind11::array histogram();
    pybind11::array positions(const pybind11::object &values);
    pybind11::tuple shape();
    pybind11::tuple spacing();
    const std::vector<std::string> &notices() const { return _notices; }
    std::string text() const;

    std::string state();
    void saveState(const std::string &fileName);
    void loadState(const std::string &fileName);

    /// Closes all there are, as the interpreter ends.
    static void closeAll();

private:
    void load(const Work &fill, const pybind11::dict &arguments, const char *who);
    void apply(Keywords keywords);
    void checkUse() const;
    void end();
    /// Work in the library with this viewer's context current, without the interpreter's lock; warns of what
    /// was logged. Throws `failure` for what went wrong.
    void run(const Work &work, PyObject *failure);

    std::thread::id _owner = std::this_thread::get_id();
    std::string _name;
    Keywords _keywords;
    std::vector<std::string> _notices;
    viewer::Scan _scan;        ///< until it is loaded
    osg::EGLWindowPtr _window; ///< the session's, which holds it
    std::unique_ptr<viewer::Session> _session;
};

} // namespace binding

#endif
