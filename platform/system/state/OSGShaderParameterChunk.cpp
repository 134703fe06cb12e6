#include "OSGShaderParameterChunk.h"

#include "OSGShaderParameterBool.h"
#include "OSGShaderParameterInt.h"
#include "OSGShaderParameterMInt.h"
#include "OSGShaderParameterMMatrix.h"
#include "OSGShaderParameterMReal.h"
#include "OSGShaderParameterMVec2f.h"
#include "OSGShaderParameterMVec3f.h"
#include "OSGShaderParameterMVec4f.h"
#include "OSGShaderParameterMatrix.h"
#include "OSGShaderParameterReal.h"
#include "OSGShaderParameterVec2f.h"
#include "OSGShaderParameterVec3f.h"
#include "OSGShaderParameterVec4f.h"

OSG_BEGIN_NAMESPACE

void ShaderParameterChunk::initMethod() {}

ShaderParameterChunk::ShaderParameterChunk() : _parameterAccess(_mfParameters) {}

ShaderParameterChunk::ShaderParameterChunk(const ShaderParameterChunk &source)
    : Inherited(source), _parameterAccess(_mfParameters)
{
    _parameterAccess.updateMap();
}

ShaderParameterChunk::~ShaderParameterChunk() = default;

void ShaderParameterChunk::onCreate(const ShaderParameterChunk *source)
{
    Inherited::onCreate(source);
    for(const ShaderParameterPtr &parameter : _mfParameters)
        addRefCP(parameter);
}

void ShaderParameterChunk::onDestroy()
{
    clearUniformParameters();
    Inherited::onDestroy();
}

bool ShaderParameterChunk::setUniformParameter(const char *name, bool value)
{
    return _parameterAccess.setParameter<ShaderParameterBool>(name, value);
}

bool ShaderParameterChunk::setUniformParameter(const char *name, Int32 value)
{
    return _parameterAccess.setParameter<ShaderParameterInt>(name, value);
}

bool ShaderParameterChunk::setUniformParameter(const char *name, Real32 value)
{
    return _parameterAccess.setParameter<ShaderParameterReal>(name, value);
}

bool ShaderParameterChunk::setUniformParameter(const char *name, const Vec2f &value)
{
    return _parameterAccess.setParameter<ShaderParameterVec2f>(name, value);
}

bool ShaderParameterChunk::setUniformParameter(const char *name, const Vec3f &value)
{
    return _parameterAccess.setParameter<ShaderParameterVec3f>(name, value);
}

bool ShaderParameterChunk::setUniformParameter(const char *name, const Vec4f &value)
{
    return _parameterAccess.setParameter<ShaderParameterVec4f>(name, value);
}

bool ShaderParameterChunk::setUniformParameter(const char *name, const Matrix &value)
{
    return _parameterAccess.setParameter<ShaderParameterMatrix>(name, value);
}

bool ShaderParameterChunk::setUniformParameter(const char *name, const MFInt32 &value)
{
    return _parameterAccess.setParameter<ShaderParameterMInt>(name, value);
}

bool ShaderParameterChunk::setUniformParameter(const char *name, const MFReal32 &value)
{
    return _parameterAccess.setParameter<ShaderParameterMReal>(name, value);
}

bool ShaderParameterChunk::setUniformParameter(const char *name, const MFVec2f &value)
{
    return _parameterAccess.setParameter<ShaderParameterMVec2f>(name, value);
}

bool ShaderParameterChunk::setUniformParameter(const char *name, const MFVec3f &value)
{
    return _parameterAccess.setParameter<ShaderParameterMVec3f>(name, value);
}

bool ShaderParameterChunk::setUniformParameter(const char *name, const MFVec4f &value)
{
    return _parameterAccess.setParameter<ShaderParameterMVec4f>(name, value);
}

bool ShaderParameterChunk::setUniformParameter(const char *name, const MFMatrix &value)
{
    return _parameterAccess.setParameter<ShaderParameterMMatrix>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, bool &value)
{
    return _parameterAccess.getParameter<ShaderParameterBool>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, Int32 &value)
{
    return _parameterAccess.getParameter<ShaderParameterInt>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, Real32 &value)
{
    return _parameterAccess.getParameter<ShaderParameterReal>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, Vec2f &value)
{
    return _parameterAccess.getParameter<ShaderParameterVec2f>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, Vec3f &value)
{
    return _parameterAccess.getParameter<ShaderParameterVec3f>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, Vec4f &value)
{
    return _parameterAccess.getParameter<ShaderParameterVec4f>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, Matrix &value)
{
    return _parameterAccess.getParameter<ShaderParameterMatrix>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, MFInt32 &value)
{
    return _parameterAccess.getParameter<ShaderParameterMInt>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, MFReal32 &value)
{
    return _parameterAccess.getParameter<ShaderParameterMReal>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, MFVec2f &value)
{
    return _parameterAccess.getParameter<ShaderParameterMVec2f>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, MFVec3f &value)
{
    return _parameterAccess.getParameter<ShaderParameterMVec3f>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, MFVec4f &value)
{
    return _parameterAccess.getParameter<ShaderParameterMVec4f>(name, value);
}

bool ShaderParameterChunk::getUniformParameter(const char *name, MFMatrix &value)
{
    return _parameterAccess.getParameter<ShaderParameterMMatrix>(name, value);
}

bool ShaderParameterChunk::subUniformParameter(const char *name)
{
    return _parameterAccess.subParameter(name);
}

void ShaderParameterChunk::clearUniformParameters()
{
    MFShaderParameterPtr old;
    old.swap(_mfParameters);
    _parameterAccess.updateMap();
    for(const ShaderParameterPtr &parameter : old)
        subRefCP(parameter);
}

void ShaderParameterChunk::changed(BitVector whichField, UInt32 origin)
{
    if((whichField & ParametersFieldMask) != 0)
        _parameterAccess.updateMap();
    Inherited::changed(whichField, origin);
}

void ShaderParameterChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump ShaderParameterChunk NI" << std::endl;
}

OSG_END_NAMESPACE
