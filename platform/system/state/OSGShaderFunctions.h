#ifndef _OSGSHADERFUNCTIONS_H_
#define _OSGSHADERFUNCTIONS_H_

/// \file
/// The GL functions for GLSL programs, as one window has them.

#include <string>

#include "OSGBaseTypes.h"
#include "OSGGL.h"
#include "OSGShaderAdaptor.h"

OSG_BEGIN_NAMESPACE

class Window;

/// The functions for GLSL programs under the names of OpenGL 2.0, or, where a driver lacks these, under
/// those of GL_ARB_shader_objects: the same calls, but objects are then handles, which drivers give as
/// numbers of 32 bits. Fetched from a window, and valid with its context current.
struct OSG_SYSTEMLIB_DLLMAPPING GLSLFunctions
{
    /// Registers the names; once, ahead of the first window.
    static void registerAll();

    /// Fetches everything from a window. False where it lacks GLSL; then nothing here may be called.
    bool fetch(Window *win);

    bool available = false; ///< whether all of the functions that every program needs are there
    bool hasGeometryShaders = false; ///< whether there are geometry shaders
    ShaderCapabilities capabilities; ///< what the language has

    /// A function of GL; null where the context lacks it.
    PFNGLCREATESHADERPROC createShader = nullptr;
    PFNGLSHADERSOURCEPROC shaderSource = nullptr;
    PFNGLCOMPILESHADERPROC compileShader = nullptr;
    PFNGLDELETESHADERPROC deleteShader = nullptr;
    PFNGLGETSHADERIVPROC getShaderiv = nullptr;
    PFNGLGETSHADERINFOLOGPROC getShaderInfoLog = nullptr;
    PFNGLCREATEPROGRAMPROC createProgram = nullptr;
    PFNGLATTACHSHADERPROC attachShader = nullptr;
    PFNGLLINKPROGRAMPROC linkProgram = nullptr;
    PFNGLUSEPROGRAMPROC useProgram = nullptr;
    PFNGLDELETEPROGRAMPROC deleteProgram = nullptr;
    PFNGLGETPROGRAMIVPROC getProgramiv = nullptr;
    PFNGLGETPROGRAMINFOLOGPROC getProgramInfoLog = nullptr;
    PFNGLGETUNIFORMLOCATIONPROC getUniformLocation = nullptr;
    PFNGLBINDATTRIBLOCATIONPROC bindAttribLocation = nullptr;
    PFNGLUNIFORM1IVPROC uniform1iv = nullptr;
    PFNGLUNIFORM1FVPROC uniform1fv = nullptr;
    PFNGLUNIFORM2FVPROC uniform2fv = nullptr;
    PFNGLUNIFORM3FVPROC uniform3fv = nullptr;
    PFNGLUNIFORM4FVPROC uniform4fv = nullptr;
    PFNGLUNIFORMMATRIX4FVPROC uniformMatrix4fv = nullptr;
    PFNGLPROGRAMPARAMETERIPROC programParameteri = nullptr; ///< null without geometry shaders
};

/// The object's log, as text without what follows its last visible character.
OSG_SYSTEMLIB_DLLMAPPING std::string shaderInfoLog(const GLSLFunctions &gl, UInt32 shader);
OSG_SYSTEMLIB_DLLMAPPING std::string programInfoLog(const GLSLFunctions &gl, UInt32 program);

OSG_END_NAMESPACE

#endif
