#ifndef TESTS_TESSALY_FOREGROUND_GLSPY_H
#define TESTS_TESSALY_FOREGROUND_GLSPY_H

/// \file
/// Stands between the library and GL.

#include <OpenSG/OSGGLExtensions.h>

#include <map>
#include <string>

namespace foreground_test
{

struct GlSpy
{
    static GlSpy &the();
    void reset() { *this = GlSpy(); }

    /// Functions that a window finds ahead of GL's own, by name; set before its first frame.
    std::map<std::string, osg::GLExtensionFunction> functions;
    /// What GL_MAX_COLOR_ATTACHMENTS is said to be; -1 for the truth.
    int maxColorAttachments = -1;
};

} // namespace foreground_test

#endif
