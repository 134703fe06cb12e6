#ifndef _OSGSHADERADAPTOR_H_
#define _OSGSHADERADAPTOR_H_

/// \file
/// Rewriting of GLSL texts that forgiving drivers take, for drivers that keep to the letter of the language.

#include <string>
#include <vector>

#include "OSGConfig.h"

OSG_BEGIN_NAMESPACE

/// The stage of the pipeline that a shader text is for.
enum class ShaderStage
{
    Vertex,
    Geometry,
    Fragment
};

/// What the driver does with GLSL that bends the language.
struct ShaderCapabilities
{
    /// Whether the driver keeps to the letter. With false every text is returned as it is.
    bool strict = true;
    /// Whether the driver knows GL_ARB_shader_texture_lod.
    bool textureLod = true;
    /// Whether a text of version 1.10 is to be compiled as 1.20, which converts int to float where 1.10
    /// refuses to. Nothing in a text tells this cheaply, so it is for the second try at a text that the
    /// driver has refused.
    bool raiseVersion = false;
};

/// The text as the driver is to have it. Plain text work: needs no context, and any thread may call it.
///
/// A text that no rule touches is returned byte for byte. Comments are never edited, and the line numbers
/// that a driver reports are those of the text handed in: an insertion stands on a line that is there already
/// or is followed by a #line directive. The names of the rules that were applied are appended to
/// appliedRules, unless that is null, in this order:
///
/// - "version-first": a #version behind other text moves to the front; of several the highest stays.
/// - "raise-version": a text of 1.10, said or unsaid, becomes 1.20; only with raiseVersion.
/// - "extension-first": an #extension behind a declaration moves to the front, unless it stands in an #if.
/// - "lod-extension": a fragment text below 1.30 that reads textures with an explicit level or gradient gets
///   an #extension for GL_ARB_shader_texture_lod if it has none; only with textureLod.
/// - "uniform-sampler": a sampler declared at global scope without "uniform" gets the word.
OSG_SYSTEMLIB_DLLMAPPING std::string
adaptShader(const std::string &text, ShaderStage stage,
            const ShaderCapabilities &capabilities = ShaderCapabilities(),
            std::vector<std::string> *appliedRules = nullptr);

/// The language version that a text asks for: 110 without a #version directive; of several the highest.
OSG_SYSTEMLIB_DLLMAPPING int shaderVersion(const std::string &text);

/// The text with the number of its line, counted from 1, ahead of each: "  12: text".
/// Every line ends in a line end.
OSG_SYSTEMLIB_DLLMAPPING std::string numberLines(const std::string &text);

OSG_END_NAMESPACE

#endif
