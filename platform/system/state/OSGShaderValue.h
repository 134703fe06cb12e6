#ifndef _OSGSHADERVALUE_H_
#define _OSGSHADERVALUE_H_

/// \file
/// The values of shader parameters as the bytes that GL takes.

#include <vector>

#include "OSGShaderFunctions.h"
#include "OSGShaderParameter.h"

OSG_BEGIN_NAMESPACE

/// Puts the value of a parameter into `bytes` as GL takes it: truth values as integers, matrices column by
/// column. False for a parameter of a kind that no uniform has, and for an empty array. Needs no GL
/// context.
OSG_SYSTEMLIB_DLLMAPPING bool shaderValueBytes(ShaderParameter *parameter, std::vector<UInt8> &bytes);

/// Sends such bytes to a uniform of the program in use; `typeId` is the kind of the parameter.
OSG_SYSTEMLIB_DLLMAPPING void sendShaderValue(const GLSLFunctions &gl, Int32 location, UInt32 typeId,
                                              const std::vector<UInt8> &bytes);

OSG_END_NAMESPACE

#endif
