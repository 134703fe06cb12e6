/// \file
/// The class Camera.

#include "Camera.h"

#include "OptionTexts.h"

#include <optional>
#include <utility>

#include <pybind11/operators.h>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace binding
{

namespace
{

const char *const cameraText =
    R"(Camera(*, position=None, focal_point=None, view_up=None, view_angle=30, azimuth=0, elevation=0,
       zoom=1)

Where pictures are taken from. Cameras don't change; `replace` gives another one.

Positions are in **x, y, z** order, in the unit of the spacing. The middle of the volume is the origin, and
x, y and z run along the last, the middle and the first axis of its array.

Parameters
----------
position : sequence of 3 floats, optional
    Where it stands. Left out, it stands in front, to the side and a little above, so that the volume fits.
focal_point : sequence of 3 floats, optional
    What it looks at. Left out, the middle: of the volume with a position, of what is visible without.
view_up : sequence of 3 floats, optional
    What is up in the picture. Left out, (0, 0, 1), or (0, 1, 0) for a camera that looks along z.
view_angle : float
    Full vertical angle of view in degrees, 0.01 to 179.
azimuth, elevation : float
    Degrees that it is turned around what it looks at, to its right and then upwards.
zoom : float
    Magnifies the picture, 0.001 to 1000.
)";

using Triple = std::optional<viewer::Vec3>;

void takeTriple(const char *name, const py::handle &value, Triple &triple)
{
    try
    {
        triple = value.is_none()
                     ? Triple()
                     : Triple(py::cast<viewer::Vec3>(py::tuple(py::reinterpret_borrow<py::object>(value))));
    }
    catch (const py::cast_error &)
    {
        throw py::type_error(std::string(name) + ": must be three numbers");
    }
    catch (const py::error_already_set &)
    {
        throw py::type_error(std::string(name) + ": must be three numbers");
    }
}

void takeNumber(const char *name, const py::handle &value, double standard, double &number)
{
    try
    {
        number = value.is_none() ? standard : py::cast<double>(value);
    }
    catch (const py::cast_error &)
    {
        throw py::type_error(std::string(name) + ": must be a number");
    }
}

py::object tupleOf(const Triple &triple)
{
    if (!triple)
    {
        return py::none();
    }
    return py::make_tuple((*triple)[0], (*triple)[1], (*triple)[2]);
}

} // namespace

Camera cameraOf(const py::dict &arguments, const Camera &base)
{
    const Camera standard;
    Camera camera = base;
    const std::pair<const char *, Triple *> triples[] = {
        {"position", &camera.position}, {"focal_point", &camera.focalPoint}, {"view_up", &camera.viewUp}};
    const std::pair<const char *, double Camera::*> numbers[] = {{"view_angle", &Camera::viewAngle},
                                                                 {"azimuth", &Camera::azimuth},
                                                                 {"elevation", &Camera::elevation},
                                                                 {"zoom", &Camera::zoom}};
    for (const auto &[key, value] : arguments)
    {
        const std::string name = py::cast<std::string>(key);
        bool known = false;
        for (const auto &[own, triple] : triples)
        {
            if (name == own)
            {
                takeTriple(own, value, *triple);
                known = true;
            }
        }
        for (const auto &[own, number] : numbers)
        {
            if (name == own)
            {
                takeNumber(own, value, standard.*number, camera.*number);
                known = true;
            }
        }
        if (!known)
        {
            throw py::type_error("Camera() got an unexpected keyword argument '" + name + "'");
        }
    }
    return camera;
}

std::string textOf(const Camera &camera)
{
    const Camera standard;
    std::string text;
    const auto add = [&](const char *name, const std::string &value) {
        text += (text.empty() ? "" : ", ") + std::string(name) + "=" + value;
    };
    const auto triple = [&](const char *name, const Triple &value) {
        if (value)
        {
            add(name, py::cast<std::string>(py::repr(tupleOf(value))));
        }
    };
    const auto number = [&](const char *name, double value, double left) {
        if (value != left)
        {
            add(name, py::cast<std::string>(py::repr(py::float_(value))));
        }
    };
    triple("position", camera.position);
    triple("focal_point", camera.focalPoint);
    triple("view_up", camera.viewUp);
    number("view_angle", camera.viewAngle, standard.viewAngle);
    number("azimuth", camera.azimuth, standard.azimuth);
    number("elevation", camera.elevation, standard.elevation);
    number("zoom", camera.zoom, standard.zoom);
    return "Camera(" + text + ")";
}

void addCamera(py::module_ &module)
{
    py::class_<Camera> camera(module, "Camera", cameraText);
    camera.def(py::init([](const py::kwargs &arguments) { return cameraOf(arguments); }))
        .def(
            "replace", [](const Camera &self, const py::kwargs &changes) { return cameraOf(changes, self); },
            R"(replace(**changes) -> Camera

Another camera that differs in what is given; None stands for what a new camera has.)")
        .def_property_readonly("position", [](const Camera &self) { return tupleOf(self.position); })
        .def_property_readonly("focal_point", [](const Camera &self) { return tupleOf(self.focalPoint); })
        .def_property_readonly("view_up", [](const Camera &self) { return tupleOf(self.viewUp); })
        .def_property_readonly("view_angle", [](const Camera &self) { return self.viewAngle; })
        .def_property_readonly("azimuth", [](const Camera &self) { return self.azimuth; })
        .def_property_readonly("elevation", [](const Camera &self) { return self.elevation; })
        .def_property_readonly("zoom", [](const Camera &self) { return self.zoom; })
        .def(py::self == py::self)
        .def("__hash__", [](const Camera &self) { return py::hash(py::str(textOf(self))); })
        .def("__repr__", &textOf);
}

} // namespace binding
