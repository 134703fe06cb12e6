#include "OSGBlendChunk.h"

#include "OSGDrawActionBase.h"
#include "OSGLog.h"
#include "OSGWindow.h"

OSG_BEGIN_NAMESPACE

namespace
{

constexpr GLenum SameAsColor = 0xFFFFFFFFu;

UInt32 blendColorFunction;
UInt32 blendEquationFunction;
UInt32 blendFuncSeparateFunction;

bool isConstantFactor(GLenum factor)
{
    return factor == GL_CONSTANT_COLOR || factor == GL_ONE_MINUS_CONSTANT_COLOR ||
           factor == GL_CONSTANT_ALPHA || factor == GL_ONE_MINUS_CONSTANT_ALPHA;
}

/// The window's function of that id, null without a window.
template <class FunctionT>
FunctionT functionOf(DrawActionBase *action, UInt32 id)
{
    Window *const win = action == nullptr ? nullptr : action->getWindow();
    return win == nullptr ? nullptr : reinterpret_cast<FunctionT>(win->getFunction(id));
}

} // namespace

StateChunkClass BlendChunk::_class("Blend");

void BlendChunk::initMethod()
{
    const UInt32 color = Window::registerExtension("GL_EXT_blend_color");
    const UInt32 minMax = Window::registerExtension("GL_EXT_blend_minmax");
    const UInt32 separate = Window::registerExtension("GL_EXT_blend_func_separate");
    blendColorFunction = Window::registerFunction("glBlendColorEXT", color, 0x0104);
    blendEquationFunction = Window::registerFunction("glBlendEquationEXT", minMax, 0x0104);
    blendFuncSeparateFunction = Window::registerFunction("glBlendFuncSeparateEXT", separate, 0x0104);
}

BlendChunk::BlendChunk() = default;

BlendChunk::BlendChunk(const BlendChunk &source) : Inherited(source) {}

BlendChunk::~BlendChunk() = default;

void BlendChunk::activate(DrawActionBase *action, UInt32)
{
    const bool hasAlphaFactors = getAlphaSrcFactor() != SameAsColor && getAlphaDestFactor() != SameAsColor;
    if(getSrcFactor() != GL_ONE || getDestFactor() != GL_ZERO || hasAlphaFactors || getEquation() != GL_NONE)
    {
        PFNGLBLENDFUNCSEPARATEPROC blendFuncSeparate = nullptr;
        if(hasAlphaFactors)
            blendFuncSeparate = functionOf<PFNGLBLENDFUNCSEPARATEPROC>(action, blendFuncSeparateFunction);
        if(blendFuncSeparate != nullptr)
            blendFuncSeparate(getSrcFactor(), getDestFactor(), getAlphaSrcFactor(), getAlphaDestFactor());
        else
            glBlendFunc(getSrcFactor(), getDestFactor());
        if(isConstantFactor(getSrcFactor()) || isConstantFactor(getDestFactor()) ||
           (hasAlphaFactors &&
            (isConstantFactor(getAlphaSrcFactor()) || isConstantFactor(getAlphaDestFactor()))))
        {
            if(const auto blendColor = functionOf<PFNGLBLENDCOLORPROC>(action, blendColorFunction))
                blendColor(getColor().red(), getColor().green(), getColor().blue(), getColor().alpha());
        }
        if(const auto blendEquation = functionOf<PFNGLBLENDEQUATIONPROC>(action, blendEquationFunction))
            blendEquation(getEquation() == GL_NONE ? GLenum(GL_FUNC_ADD) : getEquation());
        glEnable(GL_BLEND);
    }
    if(getAlphaFunc() != GL_NONE)
    {
        glAlphaFunc(getAlphaFunc(), getAlphaValue());
        glEnable(GL_ALPHA_TEST);
    }
}

void BlendChunk::changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index)
{
    Inherited::changeFrom(action, old, index);
}

void BlendChunk::deactivate(DrawActionBase *, UInt32)
{
    glDisable(GL_BLEND);
    if(getAlphaFunc() != GL_NONE)
        glDisable(GL_ALPHA_TEST);
}

bool BlendChunk::isTransparent() const
{
    return getDestFactor() != GL_ZERO;
}

void BlendChunk::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void BlendChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump BlendChunk NI" << std::endl;
}

OSG_END_NAMESPACE
