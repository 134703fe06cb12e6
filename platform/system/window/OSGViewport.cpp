/// \file
/// A rectangle of a window in which a scene is shown.

#include "OSGViewport.h"

#include "OSGBackground.h"
#include "OSGCamera.h"
#include "OSGDrawAction.h"
#include "OSGForeground.h"
#include "OSGGL.h"
#include "OSGLog.h"
#include "OSGNode.h"
#include "OSGRenderActionBase.h"
#include "OSGTime.h"
#include "OSGWindow.h"

OSG_BEGIN_NAMESPACE

namespace
{

/// GL and windows have no use for more.
constexpr Real32 LargestPixel = 1e6f;

/// A value above 1 is a pixel, any other a share of the window.
bool isPixel(Real32 value)
{
    return value > 1.0f;
}

Int32 toPixel(Real32 value)
{
    return value < LargestPixel ? Int32(value) : Int32(LargestPixel);
}

/// A share of a window's size in pixels; what is no number, or far outside, counts as 0.
Int32 shareOf(UInt32 size, Real32 share)
{
    return share > -1000.0f ? Int32(Real32(size) * share) : 0;
}

} // namespace

void Viewport::initMethod() {}

Viewport::Viewport() = default;

Viewport::Viewport(const Viewport &source) : Inherited(source) {}

Viewport::~Viewport() = default;

void Viewport::onCreate(const Viewport *source)
{
    Inherited::onCreate(source);
    addRefCP(_sfCamera.getValue());
    addRefCP(_sfRoot.getValue());
    addRefCP(_sfBackground.getValue());
    _heldForegrounds.follow(_mfForegrounds, ChangedOrigin::External);
    // A copy stands in no window yet.
    _sfParent.setValue(NullFC);
}

void Viewport::onDestroy()
{
    clearRefCP(_sfCamera.getValue());
    clearRefCP(_sfRoot.getValue());
    clearRefCP(_sfBackground.getValue());
    _heldForegrounds.release();
    Inherited::onDestroy();
}

void Viewport::setCamera(const CameraPtr &camera)
{
    setRefdCP(_sfCamera.getValue(), CameraPtr(camera));
}

void Viewport::setRoot(const NodePtr &root)
{
    setRefdCP(_sfRoot.getValue(), NodePtr(root));
}

void Viewport::setBackground(const BackgroundPtr &background)
{
    setRefdCP(_sfBackground.getValue(), BackgroundPtr(background));
}

void Viewport::setSize(Real32 left, Real32 bottom, Real32 right, Real32 top)
{
    setLeft(left);
    setBottom(bottom);
    setRight(right);
    setTop(top);
}

Int32 Viewport::getPixelLeft() const
{
    if(isPixel(getLeft()))
        return toPixel(getLeft());
    return getParent() != NullFC ? shareOf(getParent()->getWidth(), getLeft()) : 0;
}

Int32 Viewport::getPixelRight() const
{
    if(isPixel(getRight()))
        return toPixel(getRight());
    return getParent() != NullFC ? shareOf(getParent()->getWidth(), getRight()) - 1 : -1;
}

Int32 Viewport::getPixelBottom() const
{
    if(isPixel(getBottom()))
        return toPixel(getBottom());
    return getParent() != NullFC ? shareOf(getParent()->getHeight(), getBottom()) : 0;
}

Int32 Viewport::getPixelTop() const
{
    if(isPixel(getTop()))
        return toPixel(getTop());
    return getParent() != NullFC ? shareOf(getParent()->getHeight(), getTop()) - 1 : -1;
}

bool Viewport::isFullWindow() const
{
    return getParent() != NullFC && getPixelLeft() == 0 && getPixelBottom() == 0 &&
           getPixelRight() == Int32(getParent()->getWidth()) - 1 &&
           getPixelTop() == Int32(getParent()->getHeight()) - 1;
}

void Viewport::activate()
{
    activateSize();
}

void Viewport::activateSize()
{
    const Int32 left = getPixelLeft();
    const Int32 bottom = getPixelBottom();
    const Int32 width = getPixelWidth();
    const Int32 height = getPixelHeight();
    if(width < 1 || height < 1)
        return;
    glViewport(left, bottom, width, height);
    glScissor(left, bottom, width, height);
    if(isFullWindow())
        glDisable(GL_SCISSOR_TEST);
    else
        glEnable(GL_SCISSOR_TEST);
}

void Viewport::deactivate()
{
    glDisable(GL_SCISSOR_TEST);
}

void Viewport::render(RenderActionBase *action)
{
    if(action == nullptr || !isComplete())
        return;
    if(getPixelWidth() < 1 || getPixelHeight() < 1)
        return;
    const Time start = getSystemTime();
    prepare(action);
    activate();
    action->apply(getRoot());
    drawForegrounds(action);
    deactivate();
    setDrawTime(Real32(getSystemTime() - start));
}

void Viewport::draw(DrawAction *action)
{
    if(action == nullptr || !isComplete())
        return;
    if(getPixelWidth() < 1 || getPixelHeight() < 1)
        return;
    prepare(action);
    activate();
    action->apply(getRoot());
    drawForegrounds(action);
    deactivate();
}

bool Viewport::isComplete()
{
    const Char8 *missing = nullptr;
    if(getCamera() == NullFC)
        missing = "camera";
    else if(getBackground() == NullFC)
        missing = "background";
    else if(getRoot() == NullFC)
        missing = "root";
    if(missing == nullptr)
        return true;
    if(!_warned)
        FWARNING(("Viewport::render: no %s, nothing is drawn\n", missing));
    _warned = true;
    return false;
}

void Viewport::prepare(DrawActionBase *action)
{
    if(getParent() != NullFC)
        action->setWindow(getParent().get());
    action->setViewport(this);
    action->setCamera(getCamera().get());
    action->setBackground(getBackground().get());
    action->setTravMask(getTravMask());
}

void Viewport::drawForegrounds(DrawActionBase *action)
{
    for(UInt32 i = 0; i < _mfForegrounds.size(); ++i)
    {
        const ForegroundPtr foreground = _mfForegrounds[i];
        if(foreground != NullFC)
            foreground->draw(action, this);
    }
}

void Viewport::changed(BitVector whichField, UInt32 origin)
{
    if((whichField & ForegroundsFieldMask) != 0)
        _heldForegrounds.follow(_mfForegrounds, origin);
    if((whichField & (CameraFieldMask | RootFieldMask | BackgroundFieldMask)) != 0)
        _warned = false;
    Inherited::changed(whichField, origin);
}

void Viewport::dump(UInt32, const BitVector) const
{
    SLOG << "Dump Viewport NI" << std::endl;
}

OSG_END_NAMESPACE
