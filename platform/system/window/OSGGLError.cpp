/// \file
/// Checks for pending GL errors.

#include "OSGGLError.h"

#include "OSGGL.h"

OSG_BEGIN_NAMESPACE

const Char8 *glErrorText(UInt32 error)
{
    switch(error)
    {
        case GL_NO_ERROR: return "no error";
        case GL_INVALID_ENUM: return "invalid enumerant";
        case GL_INVALID_VALUE: return "invalid value";
        case GL_INVALID_OPERATION: return "invalid operation";
        case GL_STACK_OVERFLOW: return "stack overflow";
        case GL_STACK_UNDERFLOW: return "stack underflow";
        case GL_OUT_OF_MEMORY: return "out of memory";
        case GL_INVALID_FRAMEBUFFER_OPERATION: return "invalid framebuffer operation";
        default: return "unknown GL error";
    }
}

bool osgGlCheckError(const Char8 *where, const Char8 *text)
{
    // A lost context reports errors without end, so the number is bounded.
    constexpr int MaxErrors = 16;

    bool found = false;
    for(int i = 0; i < MaxErrors; ++i)
    {
        const GLenum error = glGetError();
        if(error == GL_NO_ERROR)
            break;
        found = true;
        FWARNING(
            ("%s: %s: %s\n", where != nullptr ? where : "", text != nullptr ? text : "", glErrorText(error)));
    }
    return found;
}

OSG_END_NAMESPACE
