#include <Tessaly/OSGPermutationSHLChunk.h>

#include <charconv>
#include <functional>

#include <OpenSG/OSGCameraDecorator.h>
#include <OpenSG/OSGDrawActionBase.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGShaderParameterBool.h>
#include <OpenSG/OSGShaderParameterInt.h>
#include <OpenSG/OSGShaderParameterMInt.h>
#include <OpenSG/OSGShaderParameterMMatrix.h>
#include <OpenSG/OSGShaderParameterMReal.h>
#include <OpenSG/OSGShaderParameterMVec2f.h>
#include <OpenSG/OSGShaderParameterMVec3f.h>
#include <OpenSG/OSGShaderParameterMVec4f.h>
#include <OpenSG/OSGShaderParameterMatrix.h>
#include <OpenSG/OSGShaderParameterReal.h>
#include <OpenSG/OSGShaderParameterString.h>
#include <OpenSG/OSGShaderParameterVec2f.h>
#include <OpenSG/OSGShaderParameterVec3f.h>
#include <OpenSG/OSGShaderParameterVec4f.h>
#include <OpenSG/OSGStereoCameraDecorator.h>

#include "StateDefines.h"

OSG_BEGIN_NAMESPACE

namespace
{

/// With more entries a cache is emptied.
constexpr std::size_t maxCached = 128;

constexpr BitVector ProgramMask =
    PermutationSHLChunk::VertexProgramFieldMask | PermutationSHLChunk::FragmentProgramFieldMask |
    PermutationSHLChunk::GeometryProgramFieldMask | PermutationSHLChunk::CgFrontEndFieldMask |
    PermutationSHLChunk::VertexProgramPrefixFieldMask | PermutationSHLChunk::FragmentProgramPrefixFieldMask |
    PermutationSHLChunk::GeometryProgramPrefixFieldMask;

/// `container` as an X, or null where it is none. The class records tell it faster than a dynamic_cast that
/// fails.
template <class X, class BaseT>
const X *castTo(const BaseT *container)
{
    return container != nullptr && container->getType().isDerivedFrom(X::getClassType())
               ? static_cast<const X *>(container)
               : nullptr;
}

/// Which eye the outermost stereo decorator is for: 1 left, 0 right, -1 without one.
int eyeOf(DrawActionBase *action)
{
    if(action->getCamera() == nullptr || action->getViewport() == nullptr)
        return -1;
    const CameraDecorator *decorator = castTo<CameraDecorator>(action->getCamera());
    while(decorator != nullptr)
    {
        if(const StereoCameraDecorator *const stereo = castTo<StereoCameraDecorator>(decorator))
            return stereo->getLeftEye() ? 1 : 0;
        decorator = castTo<CameraDecorator>(decorator->getDecoratee().getCPtr());
    }
    return -1;
}

int fogOf()
{
    if(glIsEnabled(GL_FOG) == GL_FALSE)
        return 0;
    GLint mode = 0;
    glGetIntegerv(GL_FOG_MODE, &mode);
    return mode == GL_EXP ? 2 : mode == GL_EXP2 ? 3 : 1;
}

tessaly::RenderingState stateOf(DrawActionBase *action)
{
    tessaly::RenderingState state;
    state.lights = action->getActiveLightsMask();
    state.eye = eyeOf(action);
    state.fog = fogOf();
    return state;
}

/// Appends the define of one compile-time parameter, without a line end: texts bring their own, and that is
/// how it must stay. False, with "<UnknownType>" as value, where it is neither a truth value nor a whole
/// number nor a text.
bool appendDefine(std::string &text, const ShaderParameter *parameter)
{
    text.append("#define ").append(parameter->getName()).append(1, ' ');
    if(const ShaderParameterBool *const flag = castTo<ShaderParameterBool>(parameter))
        text.append(1, flag->getValue() ? '1' : '0');
    else if(const ShaderParameterInt *const number = castTo<ShaderParameterInt>(parameter))
    {
        char digits[16];
        text.append(digits, std::to_chars(digits, digits + sizeof(digits), number->getValue()).ptr);
    }
    else if(const ShaderParameterString *const value = castTo<ShaderParameterString>(parameter))
        text.append(value->getValue());
    else
    {
        text.append("<UnknownType>");
        return false;
    }
    return true;
}

template <class ParameterT>
void handOver(const SHLChunkPtr &chunk, const ShaderParameterPtr &parameter)
{
    const typename ParameterT::Ptr typed = ParameterT::Ptr::dcast(parameter);
    if(typed != NullFC)
        chunk->setUniformParameter(typed->getName().c_str(), typed->getValue());
}

/// Sets one uniform. Kinds that no uniform has are passed over in silence.
void handOverByType(const SHLChunkPtr &chunk, const ShaderParameterPtr &parameter)
{
    switch(parameter->getTypeId())
    {
    case ShaderParameter::SHPTypeBool:
        handOver<ShaderParameterBool>(chunk, parameter);
        break;
    case ShaderParameter::SHPTypeInt:
        handOver<ShaderParameterInt>(chunk, parameter);
        break;
    case ShaderParameter::SHPTypeReal:
        handOver<ShaderParameterReal>(chunk, parameter);
        break;
    case ShaderParameter::SHPTypeVec2f:
        handOver<ShaderParameterVec2f>(chunk, parameter);
        break;
    case ShaderParameter::SHPTypeVec3f:
        handOver<ShaderParameterVec3f>(chunk, parameter);
        break;
    case ShaderParameter::SHPTypeVec4f:
        handOver<ShaderParameterVec4f>(chunk, parameter);
        break;
    case ShaderParameter::SHPTypeMatrix:
        handOver<ShaderParameterMatrix>(chunk, parameter);
        break;
    case ShaderParameter::SHPTypeMInt:
        handOver<ShaderParameterMInt>(chunk, parameter);
        break;
    case ShaderParameter::SHPTypeMReal:
        handOver<ShaderParameterMReal>(chunk, parameter);
        break;
    case ShaderParameter::SHPTypeMVec2f:
        handOver<ShaderParameterMVec2f>(chunk, parameter);
        break;
    case ShaderParameter::SHPTypeMVec3f:
        handOver<ShaderParameterMVec3f>(chunk, parameter);
        break;
    case ShaderParameter::SHPTypeMVec4f:
        handOver<ShaderParameterMVec4f>(chunk, parameter);
        break;
    case ShaderParameter::SHPTypeMMatrix:
        handOver<ShaderParameterMMatrix>(chunk, parameter);
        break;
    default:
        break;
    }
}

/// Prefix, defines and text; nothing for a program that there is not.
std::string permuted(const std::string &prefix, const std::string &header, const std::string &program)
{
    return program.empty() ? std::string() : prefix + header + program;
}

} // namespace

void PermutationSHLChunk::initMethod() {}

PermutationSHLChunk::PermutationSHLChunk() = default;

PermutationSHLChunk::PermutationSHLChunk(const PermutationSHLChunk &source) : Inherited(source) {}

// The permutations keep the reference that they were made with, which is meant.
PermutationSHLChunk::~PermutationSHLChunk() = default;

void PermutationSHLChunk::onCreate(const PermutationSHLChunk *source)
{
    Inherited::onCreate(source);
    for(const ShaderParameterPtr &parameter : _mfPermutationParameters)
        addRefCP(parameter);
    parameterAccess();
}

void PermutationSHLChunk::onDestroy()
{
    Inherited::onDestroy();
    clearPermutationParameters();
    _parameterAccess.reset();
}

// Made on demand by the aspects other than the maker's.
ShaderParameterAccess &PermutationSHLChunk::parameterAccess()
{
    if(_parameterAccess == nullptr)
        _parameterAccess.reset(new ShaderParameterAccess(_mfPermutationParameters));
    return *_parameterAccess;
}

bool PermutationSHLChunk::setPermutationParameter(const char *name, const std::string &value)
{
    return parameterAccess().setParameter<ShaderParameterString>(name, value);
}

bool PermutationSHLChunk::getPermutationParameter(const char *name, std::string &value)
{
    return parameterAccess().getParameter<ShaderParameterString>(name, value);
}

bool PermutationSHLChunk::subPermutationParameter(const char *name)
{
    return parameterAccess().subParameter(name);
}

void PermutationSHLChunk::clearPermutationParameters()
{
    MFShaderParameterPtr old;
    old.swap(_mfPermutationParameters);
    if(_parameterAccess != nullptr)
        _parameterAccess->updateMap();
    for(const ShaderParameterPtr &parameter : old)
        subRefCP(parameter);
}

void PermutationSHLChunk::update(DrawActionBase *) {}

bool PermutationSHLChunk::isTransparent() const
{
    return getIsTransparent();
}

Real32 PermutationSHLChunk::switchCost(StateChunk *)
{
    return 0.0f;
}

bool PermutationSHLChunk::operator<(const StateChunk &other) const
{
    return std::less<const StateChunk *>()(this, &other);
}

bool PermutationSHLChunk::operator==(const StateChunk &other) const
{
    return this == &other;
}

bool PermutationSHLChunk::operator!=(const StateChunk &other) const
{
    return !(*this == other);
}

void PermutationSHLChunk::changed(BitVector whichField, UInt32 origin)
{
    if((whichField & ProgramMask) != 0)
        clearPermutationCache();
    if((whichField & ParametersFieldMask) != 0)
        _parametersChanged = true;
    // The values may be other ones by now, but those are part of the text that permutations are found by.
    if((whichField & PermutationParametersFieldMask) != 0 && _parameterAccess != nullptr)
        _parameterAccess->updateMap();
    Inherited::changed(whichField, origin);
}

void PermutationSHLChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump PermutationSHLChunk NI" << std::endl;
}

void PermutationSHLChunk::activate(DrawActionBase *action, UInt32)
{
    if(_permutations.size() > maxCached)
        clearPermutationCache();

    const UInt32 state = tessaly::stateKey(stateOf(action));
    SHLChunkPtr permutation = _current;
    if(!isUnchanged(state))
    {
        std::stringstream stream;
        appendOSGPermutationParameters(stream, action);
        appendPermutationParameters(stream);
        const std::string key = stream.str();
        permutation = findPermutation(key);
        if(permutation == NullFC)
            permutation = createPermutation(key);
        _currentState = state;
        _currentParameters = _parameters;
        _currentCached = true;
    }

    // A new chunk may stand at the address of one that is gone; it needs its uniforms all the same.
    const UInt32 id = permutation.getFieldContainerId();
    if(id != _currentId || _parametersChanged)
    {
        _current = permutation;
        _currentId = id;
        if(_current != NullFC)
            updateParameters();
    }
    if(_current != NullFC)
        _current->activate(action, 0);
}

// Saves the text where it can only come out as the last time; then the permutation is the current one.
bool PermutationSHLChunk::isUnchanged(UInt32 state)
{
    bool known = true;
    _parameters.clear();
    for(const ShaderParameterPtr &parameter : _mfPermutationParameters)
    {
        if(parameter != NullFC)
            known = appendDefine(_parameters, parameter.getCPtr()) && known;
    }
    // What is unknown is to be warned of, and a cache that is too large is to be emptied, each time.
    return known && _currentCached && _osgDefineCache.size() <= maxCached &&
           state == _currentState && _parameters == _currentParameters;
}

// Deactivates also where `old` is this chunk: the state may ask for another permutation by now.
void PermutationSHLChunk::changeFrom(DrawActionBase *action, StateChunk *old, UInt32)
{
    PermutationSHLChunk *const other = dynamic_cast<PermutationSHLChunk *>(old);
    if(other == nullptr)
    {
        FWARNING(("PermutationSHLChunk::changeFrom: caught non-PermutationSHLChunk!\n"));
        return;
    }
    other->deactivate(action, 0);
    activate(action, 0);
}

void PermutationSHLChunk::deactivate(DrawActionBase *action, UInt32)
{
    if(_current == NullFC)
        return;
    if(FieldContainerFactory::the()->getContainer(_currentId) != NullFC)
    {
        _current->deactivate(action, 0);
        return;
    }
    // The permutation is gone since it was activated, but GL still has its program.
    GLSLFunctions gl;
    if(gl.fetch(action->getWindow()))
        gl.useProgram(0);
}

void PermutationSHLChunk::appendOSGPermutationParameters(std::stringstream &stream, DrawActionBase *action)
{
    const tessaly::RenderingState state = stateOf(action);
    const UInt32 key = tessaly::stateKey(state);

    if(_osgDefineCache.size() > maxCached)
        _osgDefineCache.clear();
    for(const auto &[cachedKey, text] : _osgDefineCache)
    {
        if(cachedKey == key)
        {
            stream << text;
            return;
        }
    }
    _osgDefineCache.emplace_back(key, tessaly::stateDefines(state));
    stream << _osgDefineCache.back().second;
}

void PermutationSHLChunk::appendPermutationParameters(std::stringstream &stream)
{
    std::string define;
    for(const ShaderParameterPtr &parameter : _mfPermutationParameters)
    {
        if(parameter == NullFC)
            continue;
        define.clear();
        if(!appendDefine(define, parameter.getCPtr()))
            FWARNING(("PermutationSHLChunk::appendPermutationParameters :PermutationParameter %s has unknown "
                      "type!\n",
                      parameter->getName().c_str()));
        stream << define;
    }
}

SHLChunkPtr PermutationSHLChunk::findPermutation(const std::string &key)
{
    const auto found = _permutations.find(key);
    return found == _permutations.end() ? SHLChunkPtr() : found->second;
}

SHLChunkPtr PermutationSHLChunk::createPermutation(const std::string &key)
{
    const SHLChunkPtr permutation = SHLChunk::create();
    const std::string header = "\n" + key + "\n";
    beginEditCP(permutation);
    permutation->setVertexProgram(permuted(getVertexProgramPrefix(), header, getVertexProgram()));
    permutation->setFragmentProgram(permuted(getFragmentProgramPrefix(), header, getFragmentProgram()));
    permutation->setGeometryProgram(permuted(getGeometryProgramPrefix(), header, getGeometryProgram()));
    permutation->setCgFrontEnd(getCgFrontEnd());
    endEditCP(permutation, FieldBits::AllFields, 1);
    _permutations[key] = permutation;
    FNOTICE(("PermutationSHLChunk::createPermutation: New permutation created.\n"));
    return permutation;
}

void PermutationSHLChunk::updateParameters()
{
    ++_numUniformUpdates;
    // Uniforms whose names begin with OSG are handed over like all others; that is meant.
    for(const ShaderParameterPtr &parameter : _mfParameters)
    {
        if(parameter != NullFC)
            handOverByType(_current, parameter);
    }
    endEditCP(_current, ParametersFieldMask, 1);
    _parametersChanged = false;
}

void PermutationSHLChunk::clearPermutationCache()
{
    std::map<std::string, SHLChunkPtr> old;
    old.swap(_permutations);
    _currentCached = false;
    for(const auto &entry : old)
        subRefCP(entry.second);
}

OSG_END_NAMESPACE
