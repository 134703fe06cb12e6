/// \file
/// The class Viewer.

#include "Viewer.h"

#include "FileChecks.h"
#include "Presets.h"
#include "TransferFunctionFile.h"
#include "Volume.h"

#include <algorithm>
#include <cstring>
#include <mutex>
#include <set>
#include <utility>
#include <unistd.h>

namespace py = pybind11;

namespace binding
{

namespace
{

/// The viewers that are open. Only with the interpreter's lock.
std::set<Viewer *> &openViewers()
{
    static std::set<Viewer *> *const viewers = new std::set<Viewer *>;
    return *viewers;
}

[[noreturn]] void raise(PyObject *type, const std::string &message)
{
    PyErr_SetString(type, message.c_str());
    throw py::error_already_set();
}

void warn(const std::string &line)
{
    if (PyErr_WarnEx(PyExc_UserWarning, line.c_str(), 1) != 0)
    {
        throw py::error_already_set();
    }
}

Outcome withoutInterpreter(const Work &work)
{
    const py::gil_scoped_release release;
    return inLibrary(work);
}

/// A file that can't be read is told ahead of the work; what it says is warned of where it is hardly meant
/// so.
void checkTransferFunction(const viewer::Options &options)
{
    if (options.transferFunction.empty() || options.points)
    {
        return;
    }
    const viewer::TransferFunctionText text = viewer::readTransferFunction(options.transferFunction);
    if (!text.error.empty())
    {
        const bool readable = access(options.transferFunction.c_str(), R_OK) == 0;
        raise(readable ? PyExc_ValueError : PyExc_OSError, text.error);
    }
    if (!text.warning.empty())
    {
        warn(text.warning);
    }
}

py::tuple tupleOf(const viewer::Vec3 &values)
{
    return py::make_tuple(values[0], values[1], values[2]);
}

} // namespace

Viewer::Viewer(const py::object &volume, const py::object &spacing, const std::string &unit,
               const py::dict &arguments, const char *who)
    : _name(volumeName)
{
    osg::PixelData pixels = pixelsOf(volume, spacing, unit);
    _notices = pixels.notices;
    load(
        [&](std::string &error) {
            const osg::ImagePtr image = imageOf(pixels);
            if (image == osg::NullFC)
            {
                error = "no memory for the volume";
                return false;
            }
            return _scan.take(image, _name, error);
        },
        arguments, who);
}

Viewer::Viewer(const std::string &fileName, const py::dict &arguments) : _name(fileName)
{
    const std::string wrong = viewer::checkInput(fileName);
    if (!wrong.empty())
    {
        raise(access(fileName.c_str(), F_OK) == 0 ? PyExc_OSError : PyExc_FileNotFoundError, wrong);
    }
    load([&](std::string &error) { return _scan.read(fileName, error); }, arguments, "from_file");
}

Viewer::~Viewer()
{
    const py::error_scope kept;
    end();
}

void Viewer::load(const Work &fill, const py::dict &arguments, const char *who)
{
    // What is wrong with the options needs no voxels to be known; only tables need to know how wide these
    // are.
    Keywords early;
    enter(early, arguments, 8, who);
    checkTransferFunction(optionsOf(early));

    // An exception out of a constructor calls no destructor.
    struct Undo
    {
        Viewer *viewer;
        ~Undo()
        {
            if (viewer != nullptr)
            {
                const py::error_scope kept;
                viewer->end();
            }
        }
    } undo{this};
    openViewers().insert(this);

    const Outcome filled = withoutInterpreter(fill);
    if (!filled.good)
    {
        raise(_name == volumeName ? PyExc_RuntimeError : PyExc_OSError, filled.error);
    }
    for (const std::string &line : filled.warnings)
    {
        warn(line);
    }

    enter(_keywords, arguments, _scan.facts().bits, who);
    const viewer::Options options = optionsOf(_keywords);
    const viewer::Preset *const preset =
        options.points || !options.transferFunction.empty() ? nullptr : viewer::findPreset(options.preset);
    const bool noUnits =
        preset != nullptr && preset->scale == viewer::PresetScale::Hounsfield && !_scan.facts().real;
    const bool noMesh = options.opaque.enabled && !options.opaque.file.empty();

    std::vector<std::string> told;
    const Outcome outcome = withoutInterpreter([&](std::string &error) {
        _session = std::make_unique<viewer::Session>();
        _window = osg::EGLWindow::create();
        _window->resize(options.width, options.height);
        return _session->open(osg::WindowPtr(_window), error) &&
               _session->load(
                   std::move(_scan), options,
                   [&](const std::string &line) { told.push_back(inKeywords(line)); }, error);
    });
    if (!outcome.good)
    {
        raise(noUnits  ? PyExc_ValueError
              : noMesh ? PyExc_OSError
                       : PyExc_RuntimeError,
              inKeywords(outcome.error));
    }
    _notices.insert(_notices.end(), told.begin(), told.end());
    told.insert(told.end(), outcome.warnings.begin(), outcome.warnings.end());
    for (const std::string &line : told)
    {
        warn(line);
    }
    undo.viewer = nullptr;
}

void Viewer::end()
{
    openViewers().erase(this);
    if (_session == nullptr && _scan.empty())
    {
        return;
    }
    const Outcome outcome = withoutInterpreter([this](std::string &) {
        _session.reset();
        _scan = viewer::Scan();
        return true;
    });
    if (!outcome.good)
    {
        // The library is gone, or this is a copy of the process that it runs in: so are its objects.
        static_cast<void>(_session.release());
    }
}

void Viewer::close()
{
    if (!closed())
    {
        checkUse();
        end();
    }
}

void Viewer::closeAll()
{
    while (!openViewers().empty())
    {
        (*openViewers().begin())->end();
    }
}

void Viewer::checkUse() const
{
    if (_owner != std::this_thread::get_id())
    {
        raise(PyExc_RuntimeError, "this viewer belongs to the thread that made it");
    }
    if (closed())
    {
        raise(PyExc_ValueError, "this viewer is closed");
    }
}

void Viewer::run(const Work &work, PyObject *failure)
{
    bool active = false;
    const Outcome outcome = withoutInterpreter([&](std::string &error) {
        error = "the GL context could not be made current";
        active = _window->activate();
        if (active)
        {
            error.clear();
        }
        return active && work(error);
    });
    if (!outcome.good)
    {
        raise(active ? failure : PyExc_RuntimeError, inKeywords(outcome.error));
    }
    for (const std::string &line : outcome.warnings)
    {
        warn(line);
    }
}

py::array Viewer::render()
{
    checkUse();
    const int width = _session->options().width;
    const int height = _session->options().height;
    py::array_t<std::uint8_t> picture({height, width, 3});
    std::uint8_t *const first = picture.mutable_data();
    run(
        [&](std::string &error) {
            const osg::ImagePtr image = _session->picture(error);
            if (image == osg::NullFC)
            {
                return false;
            }
            // The lowest row comes first in an image, the highest in an array.
            const std::size_t row = 3 * static_cast<std::size_t>(width);
            const osg::UInt8 *const pixels = image->getData();
            for (std::size_t y = 0; y < static_cast<std::size_t>(height); ++y)
            {
                std::memcpy(first + y * row, pixels + (static_cast<std::size_t>(height) - 1 - y) * row, row);
            }
            return true;
        },
        PyExc_RuntimeError);
    return picture;
}

void Viewer::save(const std::string &fileName)
{
    checkUse();
    const std::string wrong = viewer::checkOutput(fileName);
    if (!wrong.empty())
    {
        raise(PyExc_OSError, wrong);
    }
    run([&](std::string &error) { return _session->write(fileName, error); }, PyExc_OSError);
}

py::dict Viewer::options()
{
    checkUse();
    return dictOf(_session->options());
}

void Viewer::set(const py::dict &arguments)
{
    checkUse();
    for (const char *name : {"swapped", "max_memory"})
    {
        if (arguments.contains(name))
        {
            raise(PyExc_ValueError,
                  std::string(name) + ": is for a new viewer, this one has its voxels already");
        }
    }
    Keywords keywords = _keywords;
    enter(keywords, arguments, _session->facts().bits, "set");
    apply(std::move(keywords));
}

void Viewer::apply(Keywords keywords)
{
    viewer::Options options = optionsOf(keywords);
    checkTransferFunction(options);
    const viewer::Options before = _session->options();
    options.swapped = before.swapped;
    options.maxMemory = before.maxMemory;
    std::string wrong;
    viewer::TransferPoints points;
    if (!_session->pointsFor(options, points, wrong))
    {
        raise(PyExc_ValueError, wrong);
    }
    run(
        [&](std::string &error) {
            if (_session->apply(options, error))
            {
                return true;
            }
            std::string ignored;
            _session->apply(before, ignored);
            return false;
        },
        PyExc_OSError);
    _keywords = std::move(keywords);
}

Camera Viewer::camera()
{
    checkUse();
    return _session->options().camera;
}

py::dict Viewer::placement()
{
    checkUse();
    const viewer::CameraPlacement &placed = _session->placement();
    py::dict dict;
    dict["position"] = tupleOf(placed.position);
    dict["focal_point"] = tupleOf(placed.focalPoint);
    dict["right"] = tupleOf(placed.right);
    dict["up"] = tupleOf(placed.up);
    dict["back"] = tupleOf(placed.back);
    dict["field_of_view"] = placed.fieldOfView;
    return dict;
}

py::dict Viewer::transferFunction()
{
    checkUse();
    return dictOf(_session->points());
}

py::array Viewer::histogram()
{
    checkUse();
    const auto &counts = _session->histogram().counts;
    py::array_t<std::uint64_t> array(static_cast<py::ssize_t>(counts.size()));
    std::copy(counts.begin(), counts.end(), array.mutable_data());
    return array;
}

py::array Viewer::positions(const py::object &values)
{
    checkUse();
    const std::optional<viewer::ScaleMap> &scale = _session->realScale();
    if (!scale)
    {
        raise(PyExc_ValueError, _name + ": does not say what its values stand for");
    }
    const py::object array = py::module_::import("numpy").attr("asarray")(values, "float64");
    return array * py::float_(scale->factor) + py::float_(scale->offset);
}

py::tuple Viewer::shape()
{
    checkUse();
    const std::array<int, 3> &voxels = _session->facts().voxels;
    return py::make_tuple(voxels[2], voxels[1], voxels[0]);
}

py::tuple Viewer::spacing()
{
    checkUse();
    const viewer::Vec3 &spacing = _session->facts().spacing;
    return py::make_tuple(spacing[2], spacing[1], spacing[0]);
}

std::string Viewer::text() const
{
    if (closed())
    {
        return "<tessaly.Viewer, closed>";
    }
    const viewer::VolumeFacts &facts = _session->facts();
    return "<tessaly.Viewer of " + _name + ", " + std::to_string(facts.voxels[2]) + " x " +
           std::to_string(facts.voxels[1]) + " x " + std::to_string(facts.voxels[0]) + " voxels of " +
           std::to_string(facts.bits) + " bits>";
}

std::string Viewer::state()
{
    checkUse();
    return viewer::stateText(_session->options());
}

void Viewer::saveState(const std::string &fileName)
{
    const std::string text = state();
    std::string error = viewer::checkFolderOf(fileName);
    if (!error.empty() || !viewer::writeText(fileName, text, error))
    {
        raise(PyExc_OSError, error);
    }
}

void Viewer::loadState(const std::string &fileName)
{
    checkUse();
    if (access(fileName.c_str(), R_OK) != 0)
    {
        raise(PyExc_FileNotFoundError, fileName + ": can't be read");
    }
    Keywords keywords = keywordsOfState(fileName);
    keywords.erase("swapped");
    keywords.erase("max-memory");
    apply(std::move(keywords));
}

} // namespace binding
