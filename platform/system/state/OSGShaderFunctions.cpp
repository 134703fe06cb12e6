#include "OSGShaderFunctions.h"

#include <algorithm>
#include <type_traits>

#include "OSGWindow.h"

OSG_BEGIN_NAMESPACE

namespace
{

/// The two names of each function: of OpenGL 2.0, and of the extensions ahead of it.
enum FunctionIndex
{
    CreateShader,
    ShaderSource,
    CompileShader,
    DeleteShader,
    GetShaderiv,
    GetShaderInfoLog,
    CreateProgram,
    AttachShader,
    LinkProgram,
    UseProgram,
    DeleteProgram,
    GetProgramiv,
    GetProgramInfoLog,
    GetUniformLocation,
    BindAttribLocation,
    Uniform1iv,
    Uniform1fv,
    Uniform2fv,
    Uniform3fv,
    Uniform4fv,
    UniformMatrix4fv,
    NumFunctions
};

const Char8 *const functionNames[NumFunctions][2] = {
    {"glCreateShader", "glCreateShaderObjectARB"},
    {"glShaderSource", "glShaderSourceARB"},
    {"glCompileShader", "glCompileShaderARB"},
    {"glDeleteShader", "glDeleteObjectARB"},
    {"glGetShaderiv", "glGetObjectParameterivARB"},
    {"glGetShaderInfoLog", "glGetInfoLogARB"},
    {"glCreateProgram", "glCreateProgramObjectARB"},
    {"glAttachShader", "glAttachObjectARB"},
    {"glLinkProgram", "glLinkProgramARB"},
    {"glUseProgram", "glUseProgramObjectARB"},
    {"glDeleteProgram", "glDeleteObjectARB"},
    {"glGetProgramiv", "glGetObjectParameterivARB"},
    {"glGetProgramInfoLog", "glGetInfoLogARB"},
    {"glGetUniformLocation", "glGetUniformLocationARB"},
    {"glBindAttribLocation", "glBindAttribLocationARB"},
    {"glUniform1iv", "glUniform1ivARB"},
    {"glUniform1fv", "glUniform1fvARB"},
    {"glUniform2fv", "glUniform2fvARB"},
    {"glUniform3fv", "glUniform3fvARB"},
    {"glUniform4fv", "glUniform4fvARB"},
    {"glUniformMatrix4fv", "glUniformMatrix4fvARB"},
};

/// The ids of everything that programs ask a window for.
struct ShaderIds
{
    UInt32 language = Window::registerExtension("GL_ARB_shading_language_100");
    UInt32 objects = Window::registerExtension("GL_ARB_shader_objects");
    UInt32 textureLod = Window::registerExtension("GL_ARB_shader_texture_lod");
    UInt32 geometryARB = Window::registerExtension("GL_ARB_geometry_shader4");
    UInt32 geometryEXT = Window::registerExtension("GL_EXT_geometry_shader4");
    UInt32 functions[NumFunctions][2];
    // The same function; which of the names a driver has depends on its age.
    UInt32 programParameter[2] = {Window::registerFunction("glProgramParameteriARB", geometryARB, 0x0401),
                                  Window::registerFunction("glProgramParameteriEXT", geometryEXT, 0x0401)};

    ShaderIds()
    {
        for(UInt32 i = 0; i < NumFunctions; ++i)
        {
            functions[i][0] = Window::registerFunction(functionNames[i][0], language);
            functions[i][1] = Window::registerFunction(functionNames[i][1], objects);
        }
    }
};

const ShaderIds &shaderIds()
{
    static const ShaderIds ids;
    return ids;
}

std::string trimmed(std::string text)
{
    while(!text.empty() &&
          (text.back() == '\0' || text.back() == '\n' || text.back() == '\r' || text.back() == ' '))
        text.pop_back();
    return text;
}

} // namespace

void GLSLFunctions::registerAll()
{
    shaderIds();
}

bool GLSLFunctions::fetch(Window *win)
{
    *this = GLSLFunctions();
    const ShaderIds &ids = shaderIds();
    if(!win->hasExtension(ids.language) || !win->hasExtension(ids.objects))
        return false;

    // Drivers below 2.0 may hand out functions for the newer names that do nothing.
    const UInt32 names = win->getGLVersion() >= 0x0200 ? 0 : 1;
    bool complete = true;
    const auto get = [&](auto &function, FunctionIndex index) {
        using FunctionT = std::remove_reference_t<decltype(function)>;
        auto found = win->getFunction(ids.functions[index][names]);
        if(found == nullptr)
            found = win->getFunction(ids.functions[index][1]);
        function = reinterpret_cast<FunctionT>(found);
        complete = complete && function != nullptr;
    };
    get(createShader, CreateShader);
    get(shaderSource, ShaderSource);
    get(compileShader, CompileShader);
    get(deleteShader, DeleteShader);
    get(getShaderiv, GetShaderiv);
    get(getShaderInfoLog, GetShaderInfoLog);
    get(createProgram, CreateProgram);
    get(attachShader, AttachShader);
    get(linkProgram, LinkProgram);
    get(useProgram, UseProgram);
    get(deleteProgram, DeleteProgram);
    get(getProgramiv, GetProgramiv);
    get(getProgramInfoLog, GetProgramInfoLog);
    get(getUniformLocation, GetUniformLocation);
    get(bindAttribLocation, BindAttribLocation);
    get(uniform1iv, Uniform1iv);
    get(uniform1fv, Uniform1fv);
    get(uniform2fv, Uniform2fv);
    get(uniform3fv, Uniform3fv);
    get(uniform4fv, Uniform4fv);
    get(uniformMatrix4fv, UniformMatrix4fv);

    hasGeometryShaders = win->getGLVersion() >= 0x0302 || win->hasExtension(ids.geometryARB) ||
                         win->hasExtension(ids.geometryEXT);
    for(const UInt32 id : ids.programParameter)
    {
        if(programParameteri == nullptr)
            programParameteri = reinterpret_cast<PFNGLPROGRAMPARAMETERIPROC>(win->getFunction(id));
    }
    capabilities.textureLod = win->hasExtension(ids.textureLod);
    available = complete;
    return available;
}

std::string shaderInfoLog(const GLSLFunctions &gl, UInt32 shader)
{
    GLint length = 0;
    gl.getShaderiv(shader, GL_INFO_LOG_LENGTH, &length);
    std::string text(std::size_t(std::max(length, 1)), '\0');
    gl.getShaderInfoLog(shader, GLsizei(text.size()), nullptr, text.data());
    return trimmed(text.c_str());
}

std::string programInfoLog(const GLSLFunctions &gl, UInt32 program)
{
    GLint length = 0;
    gl.getProgramiv(program, GL_INFO_LOG_LENGTH, &length);
    std::string text(std::size_t(std::max(length, 1)), '\0');
    gl.getProgramInfoLog(program, GLsizei(text.size()), nullptr, text.data());
    return trimmed(text.c_str());
}

OSG_END_NAMESPACE
