#include "OSGPointChunk.h"

#include "OSGDrawActionBase.h"
#include "OSGLog.h"
#include "OSGWindow.h"

OSG_BEGIN_NAMESPACE

namespace
{

UInt32 pointSpriteExtension;
UInt32 pointParameterFunction;
UInt32 pointParametersFunction;

} // namespace

StateChunkClass PointChunk::_class("Point");

void PointChunk::initMethod()
{
    pointSpriteExtension = Window::registerExtension("GL_ARB_point_sprite");
    const UInt32 parameters = Window::registerExtension("GL_ARB_point_parameters");
    pointParameterFunction = Window::registerFunction("glPointParameterfARB", parameters, 0x0104);
    pointParametersFunction = Window::registerFunction("glPointParameterfvARB", parameters, 0x0104);
}

PointChunk::PointChunk() = default;

PointChunk::PointChunk(const PointChunk &source) : Inherited(source) {}

PointChunk::~PointChunk() = default;

void PointChunk::activate(DrawActionBase *action, UInt32)
{
    if(getSize() != 1.f)
        glPointSize(getSize());
    if(getSmooth())
        glEnable(GL_POINT_SMOOTH);
    Window *const win = action == nullptr ? nullptr : action->getWindow();
    if(win == nullptr)
        return;
    if(getMinSize() >= 0.f)
    {
        const auto parameter =
            reinterpret_cast<PFNGLPOINTPARAMETERFPROC>(win->getFunction(pointParameterFunction));
        const auto parameters =
            reinterpret_cast<PFNGLPOINTPARAMETERFVPROC>(win->getFunction(pointParametersFunction));
        if(parameter != nullptr && parameters != nullptr)
        {
            const GLfloat attenuation[3] = {getConstantAttenuation(), getLinearAttenuation(),
                                            getQuadraticAttenuation()};
            parameter(GL_POINT_SIZE_MIN, getMinSize());
            parameter(GL_POINT_SIZE_MAX, getMaxSize());
            parameter(GL_POINT_FADE_THRESHOLD_SIZE, getFadeThreshold());
            parameters(GL_POINT_DISTANCE_ATTENUATION, attenuation);
        }
    }
    if(getSprite() && win->hasExtension(pointSpriteExtension))
        glEnable(GL_POINT_SPRITE);
}

void PointChunk::changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index)
{
    Inherited::changeFrom(action, old, index);
}

void PointChunk::deactivate(DrawActionBase *action, UInt32)
{
    if(getSize() != 1.f)
        glPointSize(1.f);
    if(getSmooth())
        glDisable(GL_POINT_SMOOTH);
    Window *const win = action == nullptr ? nullptr : action->getWindow();
    if(win == nullptr)
        return;
    const auto parameters =
        reinterpret_cast<PFNGLPOINTPARAMETERFVPROC>(win->getFunction(pointParametersFunction));
    if(getMinSize() >= 0.f && parameters != nullptr)
    {
        const GLfloat none[3] = {1.f, 0.f, 0.f};
        parameters(GL_POINT_DISTANCE_ATTENUATION, none);
    }
    if(getSprite() && win->hasExtension(pointSpriteExtension))
        glDisable(GL_POINT_SPRITE);
}

void PointChunk::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void PointChunk::dump(UInt32, const BitVector) const
{
    SLOG << "Dump PointChunk NI" << std::endl;
}

OSG_END_NAMESPACE
