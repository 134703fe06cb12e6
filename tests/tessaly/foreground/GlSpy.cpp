/// \file
/// Takes calls ahead of EGL and GL.

#include "tessaly/foreground/GlSpy.h"

#include <OpenSG/OSGGL.h>

#include <dlfcn.h>

namespace foreground_test
{

GlSpy &GlSpy::the()
{
    static GlSpy spy;
    return spy;
}

} // namespace foreground_test

using foreground_test::GlSpy;

extern "C"
{

    osg::GLExtensionFunction eglGetProcAddress(const char *name)
    {
        const auto found = GlSpy::the().functions.find(name);
        if(found != GlSpy::the().functions.end())
            return found->second;
        static const auto own = reinterpret_cast<osg::GLExtensionFunction (*)(const char *)>(
            dlsym(RTLD_NEXT, "eglGetProcAddress"));
        return own(name);
    }

    void GLAPIENTRY glGetIntegerv(GLenum name, GLint *values)
    {
        if(name == GL_MAX_COLOR_ATTACHMENTS_EXT && GlSpy::the().maxColorAttachments >= 0)
        {
            *values = GlSpy::the().maxColorAttachments;
            return;
        }
        static const auto own =
            reinterpret_cast<void(GLAPIENTRY *)(GLenum, GLint *)>(dlsym(RTLD_NEXT, "glGetIntegerv"));
        own(name, values);
    }
}
