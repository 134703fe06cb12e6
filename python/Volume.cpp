/// \file
/// NumPy arrays as the voxels of volumes.

#include "Volume.h"

#include <OpenSG/OSGSampleConversion.h>

#include <cmath>
#include <cstdio>
#include <optional>
#include <string>

#include <pybind11/numpy.h>

namespace py = pybind11;

namespace binding
{

const char *const volumeName = "volume";

namespace
{

std::optional<osg::SampleType> sampleTypeOf(const py::dtype &type)
{
    const char kind = type.kind();
    const py::ssize_t bytes = type.itemsize();
    if (kind == 'b' && bytes == 1)
    {
        return osg::SampleType::UInt8;
    }
    if (kind == 'f' && bytes == 4)
    {
        return osg::SampleType::Float32;
    }
    if (kind == 'f' && bytes == 8 && !py::dtype("g").is(type))
    {
        return osg::SampleType::Float64;
    }
    if (kind != 'i' && kind != 'u')
    {
        return std::nullopt;
    }
    const bool sign = kind == 'i';
    switch (bytes)
    {
    case 1:
        return sign ? osg::SampleType::Int8 : osg::SampleType::UInt8;
    case 2:
        return sign ? osg::SampleType::Int16 : osg::SampleType::UInt16;
    case 4:
        return sign ? osg::SampleType::Int32 : osg::SampleType::UInt32;
    case 8:
        return sign ? osg::SampleType::Int64 : osg::SampleType::UInt64;
    default:
        return std::nullopt;
    }
}

std::string shapeText(const py::array &array)
{
    return py::str(array.attr("shape"));
}

/// Three numbers above 0, in the order of the array's axes.
void readSpacing(const py::object &spacing, float (&xyz)[3])
{
    double zyx[3] = {1.0, 1.0, 1.0};
    if (!spacing.is_none())
    {
        const auto numbers = py::array_t<double, py::array::c_style | py::array::forcecast>::ensure(spacing);
        if (!numbers)
        {
            PyErr_Clear();
            throw py::type_error("spacing: must be a number, or three numbers in z, y, x order");
        }
        if (numbers.ndim() > 1 || (numbers.size() != 1 && numbers.size() != 3))
        {
            throw py::value_error("spacing: must be a number, or three numbers in z, y, x order");
        }
        for (int axis = 0; axis < 3; ++axis)
        {
            zyx[axis] = numbers.data()[numbers.size() == 1 ? 0 : axis];
            // What is drawn stands in single precision.
            if (!(zyx[axis] >= 1e-9 && zyx[axis] <= 1e9))
            {
                throw py::value_error("spacing: each number must be 1e-9 to 1e9");
            }
        }
    }
    for (int axis = 0; axis < 3; ++axis)
    {
        xyz[axis] = static_cast<float>(zyx[2 - axis]);
    }
}

/// The voxels as they are, from whatever order in memory.
void copyKept(const py::array &array, bool isBool, osg::PixelData &pixels)
{
    const char *const type = isBool ? "?" : array.itemsize() == 1 ? "u1" : "=u2";
    const py::array target(py::dtype(type), {array.shape(0), array.shape(1), array.shape(2)},
                           pixels.data.data(), py::capsule(pixels.data.data(), [](void *) {}));
    py::module_::import("numpy").attr("copyto")(target, array);
}

} // namespace

osg::PixelData pixelsOf(const py::object &volume, const py::object &spacing, const std::string &unit)
{
    const py::module_ numpy = py::module_::import("numpy");
    py::array array = numpy.attr("asarray")(volume);
    const py::dtype dtype = array.dtype();
    const std::optional<osg::SampleType> type = sampleTypeOf(dtype);
    if (!type)
    {
        throw py::type_error("volume: has values of type " + std::string(py::str(py::handle(dtype))) +
                             ", must be of bool, int8 to int64, uint8 to uint64, float32 or float64");
    }
    if (array.ndim() != 3)
    {
        throw py::value_error("volume: has shape " + shapeText(array) + ", must be (depth, height, width)");
    }
    for (int axis = 0; axis < 3; ++axis)
    {
        if (array.shape(axis) < 2)
        {
            throw py::value_error("volume: has shape " + shapeText(array) +
                                  ", a volume has at least 2 voxels along each axis");
        }
    }

    osg::PixelData pixels;
    readSpacing(spacing, pixels.spacing);
    pixels.valueUnit = unit;
    pixels.hasSpacing = true;
    pixels.depth = static_cast<int>(array.shape(0));
    pixels.height = static_cast<int>(array.shape(1));
    pixels.width = static_cast<int>(array.shape(2));
    const std::size_t count = static_cast<std::size_t>(array.size());
    const bool kept = *type == osg::SampleType::UInt8 || *type == osg::SampleType::UInt16;
    // More than this no image holds; what is wider than 16 bits becomes 16 bits.
    if (count > osg::DefaultMaxPixelBytes / (osg::sampleBytes(*type) == 1 ? 1 : 2))
    {
        throw py::value_error("volume: has shape " + shapeText(array) +
                              ", the voxels may take 4 GiB at most");
    }

    std::string error;
    const bool contiguous = (array.flags() & py::array::c_style) != 0;
    if (kept && !contiguous)
    {
        pixels.dataType = *type == osg::SampleType::UInt8 ? osg::SampleUInt8 : osg::SampleUInt16;
        pixels.hasValues = true;
        if (!osg::allocatePixels(pixels.data, count * osg::sampleBytes(*type), osg::DefaultMaxPixelBytes,
                                 volumeName, error))
        {
            PyErr_SetString(PyExc_MemoryError, error.c_str());
            throw py::error_already_set();
        }
        copyKept(array, dtype.kind() == 'b', pixels);
        return pixels;
    }
    if (!contiguous)
    {
        // The conversion takes two passes over samples that lie behind one another.
        array = numpy.attr("ascontiguousarray")(array);
    }
    osg::RawSamples samples;
    samples.bytes = static_cast<const std::uint8_t *>(array.data());
    samples.count = count;
    samples.type = *type;
    samples.swapped = !py::cast<bool>(array.dtype().attr("isnative"));
    bool good = false;
    {
        const py::gil_scoped_release release;
        good = osg::convertSamples(samples, volumeName, osg::DefaultMaxPixelBytes, pixels, error);
    }
    if (!good)
    {
        PyErr_SetString(PyExc_MemoryError, error.c_str());
        throw py::error_already_set();
    }
    return pixels;
}

osg::ImagePtr imageOf(osg::PixelData &pixels)
{
    const osg::ImagePtr image = osg::Image::create();
    osg::beginEditCP(image);
    const bool taken = image->takeData(pixels.pixelFormat, pixels.width, pixels.height, pixels.depth,
                                       static_cast<osg::Int32>(pixels.dataType), pixels.data);
    char text[160];
    std::snprintf(text, sizeof(text), "%.9g %.9g %.9g", double(pixels.spacing[0]), double(pixels.spacing[1]),
                  double(pixels.spacing[2]));
    image->setAttachmentField("SliceThickness", text);
    if (pixels.hasValues)
    {
        std::snprintf(text, sizeof(text), "%.17g %.17g", pixels.valueSlope, pixels.valueIntercept);
        image->setAttachmentField("ValueScale", text);
        if (!pixels.valueUnit.empty())
        {
            image->setAttachmentField("ValueUnit", pixels.valueUnit);
        }
    }
    osg::endEditCP(image);
    if (taken)
    {
        return image;
    }
    osg::addRefCP(image);
    osg::subRefCP(image);
    return osg::NullFC;
}

} // namespace binding
