#include "OSGSHLChunk.h"

#include <algorithm>
#include <mutex>
#include <set>

#include "OSGBaseInitFunctions.h"
#include "OSGDrawActionBase.h"
#include "OSGLog.h"
#include "OSGShaderValue.h"
#include "OSGWindow.h"

OSG_BEGIN_NAMESPACE

namespace
{

constexpr BitVector SourceMask = SHLChunk::VertexProgramFieldMask | SHLChunk::FragmentProgramFieldMask |
                                 SHLChunk::GeometryProgramFieldMask |
                                 SHLChunk::ProgramParameterNamesFieldMask |
                                 SHLChunk::ProgramParameterValuesFieldMask |
                                 SHLChunk::AttributeNamesFieldMask | SHLChunk::AttributeLocationsFieldMask;

/// The uniforms that have meanings of their own.
enum SystemUniform : UInt32
{
    WorldMatrix,
    InvWorldMatrix,
    TransInvWorldMatrix,
    CameraOrientation,
    CameraPosition,
    ViewMatrix,
    InvViewMatrix,
    ModelViewMatrix,
    ActiveLightsMask,
    NumSystemUniforms
};

const Char8 *const systemUniformNames[NumSystemUniforms] = {
    "OSGWorldMatrix",    "OSGInvWorldMatrix", "OSGTransInvWorldMatrix", "OSGCameraOrientation",
    "OSGCameraPosition", "OSGViewMatrix",     "OSGInvViewMatrix",       "OSGModelViewMatrix",
    "OSGActiveLightsMask"};

bool isSystemUniform(const std::string &name)
{
    for(const Char8 *const known : systemUniformNames)
    {
        if(name == known)
            return true;
    }
    return false;
}

const Char8 *stageName(ShaderStage stage)
{
    switch(stage)
    {
    case ShaderStage::Vertex:
        return "vertex";
    case ShaderStage::Geometry:
        return "geometry";
    default:
        return "fragment";
    }
}

GLenum stageEnum(ShaderStage stage)
{
    switch(stage)
    {
    case ShaderStage::Vertex:
        return GL_VERTEX_SHADER;
    case ShaderStage::Geometry:
        return GL_GEOMETRY_SHADER;
    default:
        return GL_FRAGMENT_SHADER;
    }
}

/// Warns of a window without GLSL, once for each window, however many chunks it draws.
void warnOfMissingGLSL(Window *win)
{
    static std::mutex mutex;
    static std::set<UInt32> warned;
    std::lock_guard<std::mutex> lock(mutex);
    if(warned.insert(win->getFieldContainerId()).second)
        SWARNING << "SHLChunk: GL_ARB_shading_language_100 or GL_ARB_shader_objects is not there, so this "
                    "window draws "
                    "without programs"
                 << std::endl;
}

void destroyProgram(Window *win, UInt32 idstatus)
{
    UInt32 id = 0;
    Window::GLObjectStatusE status = Window::notused;
    Window::unPackIdStatus(idstatus, id, status);
    const UInt32 program = win->getGLObjectId(id);
    GLSLFunctions gl;
    if(status != Window::destroy || program == 0 || !gl.fetch(win))
        return;
    gl.deleteProgram(program);
    win->setGLObjectId(id, 0);
}

/// Tries a text; the shader, or 0 with the driver's words.
UInt32 tryText(const GLSLFunctions &gl, const std::string &text, ShaderStage stage,
               const ShaderCapabilities &capabilities, std::string &driverLog)
{
    const std::string adapted = adaptShader(text, stage, capabilities);
    const GLuint shader = gl.createShader(stageEnum(stage));
    const GLchar *const source = adapted.data();
    const GLint length = GLint(adapted.size());
    gl.shaderSource(shader, 1, &source, &length);
    gl.compileShader(shader);
    GLint compiled = GL_FALSE;
    gl.getShaderiv(shader, GL_COMPILE_STATUS, &compiled);
    if(compiled != GL_FALSE)
        return shader;
    driverLog = shaderInfoLog(gl, shader);
    gl.deleteShader(shader);
    return 0;
}

} // namespace

StateChunkClass SHLChunk::_class("SHL");

void SHLChunk::initMethod()
{
    GLSLFunctions::registerAll();
}

SHLChunk::SHLChunk() = default;

// What windows have of the source is not the copy's.
SHLChunk::SHLChunk(const SHLChunk &source) : Inherited(source) {}

SHLChunk::~SHLChunk() = default;

void SHLChunk::onCreate(const SHLChunk *source)
{
    Inherited::onCreate(source);
    if(GlobalSystemState == Startup)
        return;
    const SHLChunkPtr chunk(*this);
    setGLId(Window::registerGLObject(
        [chunk](Window *win, UInt32 idstatus) { chunk->handleGL(win, idstatus); }, 1, &destroyProgram));
    endEditCP(chunk, GLIdFieldMask);
}

void SHLChunk::onDestroy()
{
    if(getGLId() != 0)
        Window::destroyGLObject(getGLId(), 1);
    Inherited::onDestroy();
}

void SHLChunk::changed(BitVector whichField, UInt32 origin)
{
    // Uniforms need no refresh: they are compared at each activation.
    if((whichField & SourceMask) != 0 && getGLId() != 0)
        Window::refreshGLObject(getGLId());
    Inherited::changed(whichField, origin);
}

void SHLChunk::setProgramParameter(GLenum name, UInt32 value)
{
    _mfProgramParameterValues.resize(_mfProgramParameterNames.size());
    const auto found = _mfProgramParameterNames.find(name);
    if(found != _mfProgramParameterNames.end())
    {
        _mfProgramParameterValues[UInt32(found - _mfProgramParameterNames.begin())] = value;
        return;
    }
    _mfProgramParameterNames.push_back(name);
    _mfProgramParameterValues.push_back(value);
}

UInt32 SHLChunk::getProgramParameter(GLenum name) const
{
    const auto found = _mfProgramParameterNames.find(name);
    const UInt32 index = UInt32(found - _mfProgramParameterNames.begin());
    return index < _mfProgramParameterValues.size() ? _mfProgramParameterValues[index] : 0;
}

bool SHLChunk::subProgramParameter(GLenum name)
{
    _mfProgramParameterValues.resize(_mfProgramParameterNames.size());
    const auto found = _mfProgramParameterNames.find(name);
    if(found == _mfProgramParameterNames.end())
        return false;
    _mfProgramParameterValues.erase(_mfProgramParameterValues.begin() +
                                    (found - _mfProgramParameterNames.begin()));
    _mfProgramParameterNames.erase(found);
    return true;
}

void SHLChunk::clearProgramParameters()
{
    _mfProgramParameterNames.clear();
    _mfProgramParameterValues.clear();
}

void SHLChunk::setAttributeLocation(const std::string &name, Int32 location)
{
    _mfAttributeLocations.resize(_mfAttributeNames.size());
    const auto found = _mfAttributeNames.find(name);
    if(found != _mfAttributeNames.end())
    {
        _mfAttributeLocations[UInt32(found - _mfAttributeNames.begin())] = location;
        return;
    }
    _mfAttributeNames.push_back(name);
    _mfAttributeLocations.push_back(location);
}

SHLChunk::Source SHLChunk::currentSource() const
{
    Source source;
    source.vertex = getVertexProgram();
    source.geometry = getGeometryProgram();
    source.fragment = getFragmentProgram();
    for(UInt32 i = 0; i < std::min(_mfProgramParameterNames.size(), _mfProgramParameterValues.size()); ++i)
        source.parameters.emplace_back(_mfProgramParameterNames[i], _mfProgramParameterValues[i]);
    for(UInt32 i = 0; i < std::min(_mfAttributeNames.size(), _mfAttributeLocations.size()); ++i)
        source.attributes.emplace_back(_mfAttributeNames[i], _mfAttributeLocations[i]);
    return source;
}

void SHLChunk::handleGL(Window *win, UInt32 idstatus)
{
    UInt32 id = 0;
    Window::GLObjectStatusE status = Window::notused;
    Window::unPackIdStatus(idstatus, id, status);
    if(status == Window::destroy)
    {
        // The window ends ahead of the chunk.
        destroyProgram(win, idstatus);
        _windows.erase(win);
        return;
    }
    if(status != Window::initialize && status != Window::reinitialize && status != Window::needrefresh)
        return;

    WindowProgram &program = _windows[win];
    if(status != Window::needrefresh)
    {
        program = WindowProgram();
        if(!program.functions.fetch(win))
            warnOfMissingGLSL(win);
    }
    if(!program.functions.available)
        return;
    // An edit that ended with all fields doesn't mean that a text has changed.
    Source source = currentSource();
    if(program.made && program.source == source)
        return;
    program.source = std::move(source);
    program.made = true;
    if(program.program != 0)
        program.functions.deleteProgram(program.program);
    program.slots.clear();
    program.systemUniforms.clear();
    program.program = makeProgram(program);
    win->setGLObjectId(id, program.program);
}

UInt32 SHLChunk::compile(const GLSLFunctions &gl, const std::string &text, ShaderStage stage)
{
    if(stage == ShaderStage::Geometry && !gl.hasGeometryShaders)
    {
        SWARNING << "SHLChunk: this window's GL has no geometry shaders, so the program can't be used"
                 << std::endl;
        return 0;
    }
    std::string driverLog;
    UInt32 shader = tryText(gl, text, stage, gl.capabilities, driverLog);
    if(shader == 0 && shaderVersion(text) < 120)
    {
        ShaderCapabilities capabilities = gl.capabilities;
        capabilities.raiseVersion = true;
        std::string secondLog;
        shader = tryText(gl, text, stage, capabilities, secondLog);
    }
    if(shader == 0)
        SWARNING << "SHLChunk: the " << stageName(stage) << " program does not compile:\n"
                 << driverLog << "\n"
                 << numberLines(text) << std::endl;
    return shader;
}

UInt32 SHLChunk::makeProgram(WindowProgram &target)
{
    const GLSLFunctions &gl = target.functions;
    const Source &source = target.source;
    const std::pair<const std::string *, ShaderStage> stages[] = {{&source.vertex, ShaderStage::Vertex},
                                                                  {&source.geometry, ShaderStage::Geometry},
                                                                  {&source.fragment, ShaderStage::Fragment}};
    std::vector<UInt32> shaders;
    bool complete = true;
    for(const auto &[text, stage] : stages)
    {
        if(text->empty())
            continue;
        const UInt32 shader = compile(gl, *text, stage);
        complete = complete && shader != 0;
        if(shader != 0)
            shaders.push_back(shader);
    }
    if(complete && shaders.empty())
        return 0;
    ++_numCompiles;

    UInt32 program = 0;
    if(complete)
    {
        program = gl.createProgram();
        for(const UInt32 shader : shaders)
            gl.attachShader(program, shader);
        for(const auto &[name, location] : source.attributes)
        {
            if(location >= 0)
                gl.bindAttribLocation(program, GLuint(location), name.c_str());
        }
        for(const auto &[name, value] : source.parameters)
        {
            if(gl.programParameteri != nullptr)
                gl.programParameteri(program, name, GLint(value));
        }
        gl.linkProgram(program);
        GLint linked = GL_FALSE;
        gl.getProgramiv(program, GL_LINK_STATUS, &linked);
        if(linked == GL_FALSE)
        {
            std::string texts;
            for(const auto &[text, stage] : stages)
            {
                if(!text->empty())
                    texts += std::string(stageName(stage)) + " program:\n" + numberLines(*text);
            }
            SWARNING << "SHLChunk: the program does not link:\n"
                     << programInfoLog(gl, program) << "\n"
                     << texts << std::endl;
            gl.deleteProgram(program);
            program = 0;
        }
    }
    // A shader that is attached goes with its program.
    for(const UInt32 shader : shaders)
        gl.deleteShader(shader);

    for(UInt32 i = 0; program != 0 && i < NumSystemUniforms; ++i)
    {
        const Int32 location = gl.getUniformLocation(program, systemUniformNames[i]);
        if(location >= 0)
            target.systemUniforms.emplace_back(i, location);
    }
    return program;
}

bool SHLChunk::use(DrawActionBase *action)
{
    Window *const win = action->getWindow();
    win->validateGLObject(getGLId());
    WindowProgram &program = _windows[win];
    if(program.program == 0)
        return false;
    program.functions.useProgram(program.program);
    sendParameters(program);
    sendSystemUniforms(action, program);
    return true;
}

void SHLChunk::sendParameters(WindowProgram &program)
{
    const GLSLFunctions &gl = program.functions;
    program.slots.resize(_mfParameters.size());
    std::vector<UInt8> bytes;
    for(UInt32 i = 0; i < _mfParameters.size(); ++i)
    {
        ShaderParameter *const parameter = _mfParameters[i].get();
        if(parameter == nullptr)
            continue;
        UniformSlot &slot = program.slots[i];
        if(!slot.known || slot.name != parameter->getName() || slot.typeId != parameter->getTypeId())
        {
            slot = UniformSlot();
            slot.known = true;
            slot.name = parameter->getName();
            slot.typeId = parameter->getTypeId();
            if(parameter->getLocation() >= 0)
                slot.location = parameter->getLocation();
            else if(!isSystemUniform(slot.name))
                slot.location = gl.getUniformLocation(program.program, slot.name.c_str());
        }
        if(slot.location < 0 || !shaderValueBytes(parameter, bytes) || bytes == slot.sent)
            continue;
        sendShaderValue(gl, slot.location, slot.typeId, bytes);
        ++_numUniformsSent;
        slot.sent.swap(bytes);
    }
}

void SHLChunk::sendSystemUniforms(DrawActionBase *action, const WindowProgram &program)
{
    if(program.systemUniforms.empty())
        return;
    Matrix modelView;
    glGetFloatv(GL_MODELVIEW_MATRIX, modelView.getValues());
    const Matrix &cameraToWorld = action->getCameraToWorld();
    Matrix world = cameraToWorld;
    world.mult(modelView);

    for(const auto &[which, location] : program.systemUniforms)
    {
        if(which == ActiveLightsMask)
        {
            const GLint mask = GLint(action->getActiveLightsMask());
            program.functions.uniform1iv(location, 1, &mask);
            continue;
        }
        if(which == CameraPosition)
        {
            program.functions.uniform3fv(location, 1, cameraToWorld[3].getValues());
            continue;
        }
        Matrix matrix;
        switch(which)
        {
        case WorldMatrix:
            matrix = world;
            break;
        case InvWorldMatrix:
            world.inverse(matrix);
            break;
        case TransInvWorldMatrix:
            world.inverse(matrix);
            matrix.transpose();
            break;
        case CameraOrientation:
            matrix = cameraToWorld;
            matrix.setTranslate(0.f, 0.f, 0.f);
            break;
        case ViewMatrix:
            matrix = action->getViewing();
            break;
        case InvViewMatrix:
            matrix = cameraToWorld;
            break;
        default:
            matrix = modelView;
            break;
        }
        program.functions.uniformMatrix4fv(location, 1, GL_FALSE, matrix.getValues());
    }
}

void SHLChunk::update(DrawActionBase *action)
{
    use(action);
}

void SHLChunk::activate(DrawActionBase *action, UInt32)
{
    if(use(action) && getPointSize())
        glEnable(GL_VERTEX_PROGRAM_POINT_SIZE);
}

void SHLChunk::changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index)
{
    if(old == this)
        use(action);
    else
        Inherited::changeFrom(action, old, index);
}

void SHLChunk::deactivate(DrawActionBase *action, UInt32)
{
    const WindowProgram &program = _windows[action->getWindow()];
    if(!program.functions.available)
        return;
    program.functions.useProgram(0);
    if(getPointSize())
        glDisable(GL_VERTEX_PROGRAM_POINT_SIZE);
}

void SHLChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump SHLChunk NI" << std::endl;
}

OSG_END_NAMESPACE
