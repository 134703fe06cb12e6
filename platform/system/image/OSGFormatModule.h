#ifndef _OSGFORMATMODULE_H_
#define _OSGFORMATMODULE_H_

/// \file
/// Formats that a library of its own reads, loaded with the first file of the format and never before.

#include <string>

#include "OSGBaseTypes.h"

OSG_BEGIN_NAMESPACE

/// A format that a library of its own reads. `built` tells whether this build has it. The texts stand in
/// messages: {"TIFF", "TIFF images", "libtiff", true}.
struct FormatModule
{
    const Char8 *name;    ///< as in OSGFormat<name>.so, and what programs call the format
    const Char8 *formats; ///< plural, the subject of a sentence
    const Char8 *library; ///< what the build needs for it
    bool built;           ///< whether this build has it
};

/// The module of that name as this build has it: "TIFF", "NRRD", "DICOM", "ASSIMP". Null for any other name.
OSG_SYSTEMLIB_DLLMAPPING const FormatModule *findFormatModule(const std::string &name);

/// Loads <folder of libOSGSystem>/OSGFormats/OSGFormat<name>.so, once in a process and on any thread, and
/// returns the address of its `extern "C"` function osgFormat<name>. What is loaded stays to the end of the
/// process. Null, with one line in `error` that tells what this build or installation lacks, where that can't
/// be; callers put the name of the file that was to be read ahead of it: "this build does not read TIFF
/// images, it was configured without libtiff", "TIFF images need OSGFormats/OSGFormatTIFF.so, which is not
/// installed". Nothing is remembered of a failure.
OSG_SYSTEMLIB_DLLMAPPING void *loadFormatModule(const FormatModule &module, std::string &error);

OSG_END_NAMESPACE

#endif
