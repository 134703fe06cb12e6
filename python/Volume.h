#ifndef TESSALY_PYTHON_VOLUME_H
#define TESSALY_PYTHON_VOLUME_H

/// \file
/// NumPy arrays as the voxels of volumes.

#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGPixelBuffer.h>

#include <string>

#include <pybind11/pybind11.h>

namespace binding
{

/// Copies an array of depth x height x width samples (z, y, x), once, into pixels that a scan can take over:
/// uint8, bool and uint16 as they are, all else as convertSamples() does it, which comes to a second, passing
/// copy where the array is not contiguous. \param spacing None, a number, or three numbers in z, y, x order
/// \param unit of what the values stand for, "HU" for Hounsfield units, or ""
/// Throws TypeError, ValueError or MemoryError.
osg::PixelData pixelsOf(const pybind11::object &volume, const pybind11::object &spacing,
                        const std::string &unit);

/// What the library calls such a volume in its messages.
extern const char *const volumeName;

/// An image of them, with the attachments that a file's image has. The pixels are taken over. To be called
/// inside of the library. The caller takes a reference. NullFC, with one logged line, where it can't be made.
osg::ImagePtr imageOf(osg::PixelData &pixels);

} // namespace binding

#endif
