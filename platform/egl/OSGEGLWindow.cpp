/// \file
/// A window that is never shown.

#include "OSGEGLWindow.h"

#include "OSGBaseInitFunctions.h"
#include "OSGEGLContext.h"
#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void EGLWindow::initMethod() {}

EGLWindow::EGLWindow() = default;

EGLWindow::EGLWindow(const EGLWindow &source) : Inherited(source) {}

EGLWindow::~EGLWindow() = default;

void EGLWindow::onCreate(const EGLWindow *source)
{
    Inherited::onCreate(source);
    if(GlobalSystemState == Startup)
        return;
    const EGLWindowPtr self(*this);
    EGLContextHandle *const context = new EGLContextHandle;
    for(UInt32 aspect = 0; aspect < ThreadManager::getNumAspects(); ++aspect)
        self.getAspectCPtr(aspect)->_context = context;
}

void EGLWindow::onDestroy()
{
    Inherited::onDestroy();
    delete _context;
    _context = nullptr;
}

bool EGLWindow::isOpen() const
{
    return _context != nullptr && _context->isOpen();
}

void EGLWindow::init()
{
    if(_context == nullptr || _context->isOpen())
        return;
    if(!_context->create(getWidth(), getHeight()))
        FFATAL(("%s\n", _context->getError().c_str()));
}

bool EGLWindow::activate()
{
    // Of a context that could not be opened init has told already.
    if(!isOpen())
        return false;
    if(_context->isCurrent() || _context->makeCurrent())
        return true;
    FWARNING(("%s\n", _context->getError().c_str()));
    return false;
}

bool EGLWindow::deactivate()
{
    return isOpen() && _context->doneCurrent();
}

bool EGLWindow::isActive()
{
    return isOpen() && _context->isCurrent();
}

bool EGLWindow::swap()
{
    return isOpen() && _context->swap();
}

EGLWindow::GLExtensionFunction EGLWindow::getFunctionByName(const Char8 *name)
{
    return EGLContextHandle::getProcAddress(name);
}

void EGLWindow::resizeGL()
{
    if(!isOpen() || (_context->getWidth() == getWidth() && _context->getHeight() == getHeight()))
        return;
    if(!_context->resize(getWidth(), getHeight()))
        FWARNING(("%s\n", _context->getError().c_str()));
}

void EGLWindow::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void EGLWindow::dump(UInt32, const BitVector) const
{
    SLOG << "Dump EGLWindow NI" << std::endl;
}

OSG_END_NAMESPACE
