/// \file
/// The module tessaly: names, signatures and their texts.

#include "Camera.h"
#include "Library.h"
#include "Presets.h"
#include "Viewer.h"

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace
{

using binding::Viewer;

const char *const moduleText = R"(Ray casting of volumes: from a NumPy array to a picture as a NumPy array.

    import numpy, tessaly
    volume = numpy.zeros((64, 64, 64), numpy.uint8)
    volume[16:48, 16:48, 16:48] = 200
    picture = tessaly.render(volume, size=(640, 480), camera={"azimuth": 30})

A volume is an array of shape (depth, height, width): axes z, y, x. `spacing` is in the order of these axes,
z, y, x. Positions and directions in the scene (camera, opaque object) are in x, y, z order; the volume's
middle is the origin. No display is needed. Nothing is printed: what a user should know comes as a
UserWarning.

`render` draws one picture; a `Viewer` keeps its volume and draws many.
)";

const char *const optionsText = R"(
size : (width, height)
    Pixels of the picture, 1 to 8192 each. (1024, 768) if left out.
camera : Camera or dict
    Where the picture is taken from; also as camera_position, camera_focal_point, camera_view_up,
    camera_view_angle, azimuth, elevation and zoom.
transfer_function : dict, tuple, array or path
    Colour and opacity by value. {"opacity": [(position, opacity), ...], "color": [(position, red, green,
    blue), ...]} or a tuple of these two, all numbers 0 to 1, positions ascending, position 1 being the end
    of all values that a voxel of 8 or 16 bits can have; or an array of shape (N, 4) of red, green, blue and
    opacity, floats of 0 to 1 or uint8, its first row for the lowest value and its last for the highest; or
    the name of a text file as tessaly-view reads it. Left out, it is that of `preset`, or made from the
    histogram. Also as opacity_points with color_points.
preset : str
    A look by its name, see `tessaly.presets()`; other options go ahead of it.
shading : {"lit", "dvr", "mip", "xray"}
    Emission and absorption, lit or not, maximum intensity, or sum of intensities. "lit" if left out.
emissive, diffuse, specular : (red, green, blue)
    How a lit sample answers to the light: (0.28, 0.28, 0.28), (1, 1, 1), (0.22, 0.22, 0.22) if left out.
shininess : float
    Sharpness of the highlight, 0 to 1.
gradient_modulation : bool
    Multiplies opacity by retained_opacity + boundary_opacity * |gradient| ** opacity_factor (0.1, 0.9, 0.5
    if left out); with "dvr" and "lit".
background : (red, green, blue)
    Each 0 to 1; (0.07, 0.08, 0.11) if left out.
step : float
    Step along a ray as a share of the volume's edge, 0.0001 to 1; 0.005 if left out.
ray : {"simple", "interleaved"}
    Where rays begin: alike, or staggered over 2 x 2 pixels.
geometry : {"boundary", "box"}
    Rays run from the first visible block to the last, or through the whole box.
traversal : {"simple", "block"}
    Step by step, or leaping over empty blocks.
normals : {"central", "sobel", "pre"}
    Gradients: central differences, Sobel, or precomputed, which takes three more bytes a voxel.
pre_integrated : bool
    Classifies stretches of a ray instead of points; with "dvr" and "lit".
opaque : bool
    Puts a box into the scene that the rays stop at, or the mesh of opaque_file (glTF, OBJ, PLY, STL); with
    opaque_size and opaque_center, shares of the volume's sides in x, y, z order, and opaque_color.
max_memory : float
    MiB that the volume may take on the GPU; a larger one is reduced, with a warning. No limit if left out.
swapped : bool
    Swaps the bytes of 16-bit voxels, for files of the wrong byte order. Arrays tell their byte order
    themselves.
)";

const char *const volumeText = R"(
volume : array_like of shape (depth, height, width)
    Axes z, y, x; x is fastest in memory where the array is in C order. At least 2 voxels along each axis.
    bool, uint8 and uint16 are taken as they are. Other integers lose their minimum where it is negative or
    the maximum is over 65535, and go to 8 or 16 bits where they then fit; wider ones, float32 and float64
    are scaled from the range of their finite values to 16 bits, with NaN and -inf to 0 and inf to 65535.
    Values keep what they stand for: presets in Hounsfield units work with an int16 array of such. The
    voxels are copied once, whatever their byte order; only an array that is both not contiguous and of a
    type that is converted is copied twice.
spacing : float or (z, y, x), optional
    Distance of voxels along each axis **in the order of the array's axes, z, y, x**. 1 if left out.
unit : str, optional
    What the values are in: "HU" for Hounsfield units, which presets of computed tomography work with. Without
    it they take the values for such, and warn.
)";

std::string renderText()
{
    return std::string(R"(render(volume, spacing=None, unit="", **options) -> numpy.ndarray

Draws a volume.

Parameters
----------)") +
           volumeText + "**options\n    Those below, by name only; None is the same as left out.\n" +
           optionsText + R"(
Returns
-------
numpy.ndarray
    The picture, uint8 of shape (height, width, 3): red, green, blue, the highest row first.

Raises
------
TypeError
    For an unknown option, or a value of a wrong type.
ValueError
    For a value that is out of range, or options that don't go together.
OSError
    For a file that can't be read.
RuntimeError
    Where there is no GL, or the picture is too large for it.

Examples
--------
>>> picture = tessaly.render(scan, spacing=(3, 0.5, 0.5), preset="ct-bone", camera=tessaly.Camera(azimuth=90))
)";
}

std::string viewerText()
{
    return std::string(R"(Viewer(volume, spacing=None, unit="", **options)

A volume that pictures are taken of.

There may be several at once. A viewer is for the thread that made it; in others its operations raise
RuntimeError. It holds memory on the GPU until `close`, the end of its `with` block, or its end. While it
draws, other threads run. The EGL context that is current in the host program is so again after each
operation.

Parameters
----------)") +
           volumeText + "**options\n    Those below, by name only; None is the same as left out.\n" +
           optionsText +
           R"(
Examples
--------
>>> with tessaly.Viewer(volume, spacing=(2, 1, 1), size=(640, 480)) as viewer:
...     front = viewer.render()
...     viewer.set(shading="mip", camera=viewer.camera.replace(azimuth=90))
...     viewer.save("side.png")
)";
}

/// The same as set(name=value).
void setOne(Viewer &viewer, const char *name, const py::object &value)
{
    py::dict options;
    options[name] = value;
    viewer.set(options);
}

void addViewer(py::module_ &module)
{
    static const std::string text = viewerText();
    py::class_<Viewer> viewer(module, "Viewer", text.c_str());

    const auto create = [](const py::object &volume, const py::object &spacing, const std::string &unit,
                           const py::kwargs &options)
    { return std::make_unique<Viewer>(volume, spacing, unit, options, "Viewer"); };
    const auto fromFile = [](const py::object &path, const py::kwargs &options)
    { return std::make_unique<Viewer>(binding::pathOf(path), options); };
    viewer.def(py::init(create), py::arg("volume"), py::arg("spacing") = py::none(), py::arg("unit") = "")
        .def_static("from_file", fromFile, py::arg("path"), R"(from_file(path, **options) -> Viewer

A viewer of the volume of a file: NIfTI, .dat with .raw, and what else tessaly-view reads.)");

    const auto save = [](Viewer &self, const py::object &path) { self.save(binding::pathOf(path)); };
    viewer.def("render", &Viewer::render, R"(render() -> numpy.ndarray

Draws the picture: uint8 of shape (height, width, 3), the highest row first.)");
    viewer.def("save", save, py::arg("path"), R"(save(path) -> None

Draws the picture into a PNG file.)");

    const auto set = [](Viewer &self, const py::kwargs &options) { self.set(options); };
    const auto setCamera = [](Viewer &self, const py::object &camera) { setOne(self, "camera", camera); };
    const auto setFunction = [](Viewer &self, const py::object &function)
    { setOne(self, "transfer_function", function); };
    viewer.def("set", set, R"(set(**options) -> None

Changes options; those that are not given stay, and None brings back what holds without. If it raises, all
stays as it was. `swapped` and `max_memory` are for new viewers only. A viewer of 8 bits that began with "lit"
or "dvr" may hold voxels of 0 as 1, which "mip" and "xray" show as one level more.)");
    viewer.def_property_readonly("options", &Viewer::options, R"(All options as a dict: keyword arguments that
come to the same. A transfer function of points is in opacity_points and color_points.)");
    viewer.def_property("camera", &Viewer::camera, setCamera,
                        "The camera that was asked for; takes a Camera, a dict or None.");
    viewer.def_property_readonly("placement", &Viewer::placement, R"(Where the camera stands: a dict of
position, focal_point, right, up, back (x, y, z each) and field_of_view (radians, vertical).)");
    viewer.def_property("transfer_function", &Viewer::transferFunction, setFunction,
                        R"(The transfer function as it is drawn: {"opacity": (N, 2) array, "color": (N, 4)
array}. Takes what the option of this name takes; None brings back that of the preset or of the histogram.)");

    viewer.def("histogram", &Viewer::histogram, R"(histogram() -> numpy.ndarray

How often each value occurs: 256 or 65536 counts, uint64. Position p of a transfer function is at
p * len(histogram). Values of 16 bits of which none reaches 4096 are drawn, and counted, 16 times as
large.)");
    viewer.def("positions", &Viewer::positions, py::arg("values"), R"(positions(values) -> numpy.ndarray

Where values of the array (Hounsfield units, say) are in a transfer function: 0 to 1 for what a voxel can
have.)");
    viewer.def_property_readonly("shape", &Viewer::shape,
                                 "Voxels as they are drawn: (depth, height, width).");
    viewer.def_property_readonly("spacing", &Viewer::spacing,
                                 "Distance of voxels as they are drawn: (z, y, x).");
    viewer.def_property_readonly("notices", &Viewer::notices,
                                 "What was done to the voxels on their way in: a list of str, mostly empty.");

    const auto saveState = [](Viewer &self, const py::object &path)
    { self.saveState(binding::pathOf(path)); };
    const auto loadState = [](Viewer &self, const py::object &path)
    { self.loadState(binding::pathOf(path)); };
    viewer.def("state", &Viewer::state, R"(state() -> str

All options as the text of a state file, which tessaly-view --load-state reads.)");
    viewer.def("save_state", saveState, py::arg("path"), R"(save_state(path) -> None

Writes `state` to a file.)");
    viewer.def("load_state", loadState, py::arg("path"), R"(load_state(path) -> None

Takes the options of a state file in place of all there are. The volume stays; the name of a scan in the file,
swapped and max_memory are passed over.)");

    viewer.def("close", &Viewer::close, R"(close() -> None

Frees the volume and its window. May be called again; all else then raises ValueError.)");
    viewer.def_property_readonly("closed", &Viewer::closed, "Whether it is closed.");
    viewer.def("__enter__", [](const py::object &self) { return self; });
    viewer.def("__exit__", [](Viewer &self, const py::args &) { self.close(); });
    viewer.def("__repr__", &Viewer::text);
}

py::dict presets()
{
    py::dict names;
    for (const viewer::Preset &preset : viewer::presets())
    {
        names[preset.name] = preset.description;
    }
    return names;
}

py::array render(const py::object &volume, const py::object &spacing, const std::string &unit,
                           const py::kwargs &options)
{
    Viewer viewer(volume, spacing, unit, options, "render");
    return viewer.render();
}

/// Viewers go ahead of the library, and both ahead of the interpreter.
void atExit()
{
    Viewer::closeAll();
    const py::gil_scoped_release release;
    binding::endLibrary();
}

} // namespace

PYBIND11_MODULE(tessaly, module)
{
    // The texts hold signatures of their own, which say more.
    py::options texts;
    texts.disable_function_signatures();

    module.doc() = moduleText;
    module.attr("__version__") = TESSALY_VERSION;
    binding::addCamera(module);
    addViewer(module);
    static const std::string text = renderText();
    module.def("render", &render, py::arg("volume"), py::arg("spacing") = py::none(), py::arg("unit") = "",
               text.c_str());
    module.def("presets", &presets, R"(presets() -> dict

Names of the presets, with what each is for.)");

    py::module_::import("atexit").attr("register")(py::cpp_function(&atExit));
}
