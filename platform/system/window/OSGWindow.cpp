/// \file
/// The window: a GL context, its framebuffer and its viewports.

#include "OSGWindow.h"

#include <algorithm>

#include "OSGBaseInitFunctions.h"
#include "OSGDrawAction.h"
#include "OSGGL.h"
#include "OSGLog.h"
#include "OSGRenderActionBase.h"
#include "OSGViewport.h"

OSG_BEGIN_NAMESPACE

struct Window::Content
{
    GLObjectTable objects;
    GLExtensionTable extensions;
    UInt32 drawnWidth = 0; ///< size that the framebuffer has
    UInt32 drawnHeight = 0;
};

void Window::initMethod() {}

Window::Window() = default;

Window::Window(const Window &source) : Inherited(source) {}

Window::~Window() = default;

void Window::onCreate(const Window *source)
{
    Inherited::onCreate(source);
    // A prototype is never drawn.
    if(GlobalSystemState == Startup)
        return;
    // A copy has a context of its own, and no viewports: these have one parent.
    _mfPort.clear();
    const WindowPtr self(*this);
    Content *const content = new Content;
    for(UInt32 aspect = 0; aspect < ThreadManager::getNumAspects(); ++aspect)
        self.getAspectCPtr(aspect)->_content = content;
}

void Window::onDestroy()
{
    for(const ViewportPtr &port : _heldPorts.getHeld())
    {
        if(port != NullFC && port->getParent() == WindowPtr(*this))
            port->setParent(NullFC);
    }
    _mfPort.clear();
    _heldPorts.release();
    // What owners keep for this window goes first; where the context can't be had, the names go with it.
    if(_content != nullptr && !_content->objects.isEmpty() && activate())
        _content->objects.destroyAll(this);
    delete _content;
    _content = nullptr;
    Inherited::onDestroy();
}

// The state that every chunk takes for granted and comes back to.
void Window::setupGL()
{
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glEnable(GL_NORMALIZE);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
}

void Window::frameInit()
{
    if(_content == nullptr || (!isActive() && !activate()))
        return;
    if(!_content->extensions.isLoaded())
    {
        GLExtensionTable::Context context;
        context.extensions = getExtensionString();
        context.version = getVersionString();
        // Asked only while this window is there; the pointer is that of the aspect at hand.
        const WindowPtr self(*this);
        context.lookup = [self](const Char8 *name) { return self->getFunctionByName(name); };
        _content->extensions.load(context);
        setupGL();
    }
    if(_content->drawnWidth != getWidth() || _content->drawnHeight != getHeight())
    {
        _content->drawnWidth = getWidth();
        _content->drawnHeight = getHeight();
        resizeGL();
    }
    if(getResizePending())
    {
        setResizePending(false);
        endEditCP(WindowPtr(*this), ResizePendingFieldMask);
    }
}

void Window::frameExit()
{
    if(_content != nullptr)
        _content->objects.destroyEnded(this);
}

void Window::render(RenderActionBase *action)
{
    if(action == nullptr)
    {
        SWARNING << "Window::render: no action" << std::endl;
        return;
    }
    const bool wasActive = isActive();
    if(!activate())
        return;
    frameInit();
    renderAllViewports(action);
    swap();
    frameExit();
    if(!wasActive)
        deactivate();
}

void Window::renderAllViewports(RenderActionBase *action)
{
    if(action == nullptr)
        return;
    action->setWindow(this);
    // By index: a viewport may change the list.
    for(UInt32 i = 0; i < _mfPort.size(); ++i)
    {
        const ViewportPtr port = _mfPort[i];
        if(port != NullFC)
            port->render(action);
    }
}

void Window::draw(DrawAction *action)
{
    if(action == nullptr)
    {
        SWARNING << "Window::draw: no action" << std::endl;
        return;
    }
    const bool wasActive = isActive();
    if(!activate())
        return;
    frameInit();
    drawAllViewports(action);
    swap();
    frameExit();
    if(!wasActive)
        deactivate();
}

void Window::drawAllViewports(DrawAction *action)
{
    if(action == nullptr)
        return;
    action->setWindow(this);
    for(UInt32 i = 0; i < _mfPort.size(); ++i)
    {
        const ViewportPtr port = _mfPort[i];
        if(port != NullFC)
            port->draw(action);
    }
}

void Window::resize(int width, int height)
{
    setWidth(UInt16(std::clamp(width, 1, 65535)));
    setHeight(UInt16(std::clamp(height, 1, 65535)));
    setResizePending(true);
    endEditCP(WindowPtr(*this), WidthFieldMask | HeightFieldMask | ResizePendingFieldMask);
}

void Window::addPort(const ViewportPtr &port)
{
    insertPort(NullFC, port);
}

void Window::insertPort(const ViewportPtr &before, const ViewportPtr &port)
{
    if(port == NullFC)
    {
        SWARNING << "Window: no viewport to add" << std::endl;
        return;
    }
    _mfPort.insert(before != NullFC ? _mfPort.find(before) : _mfPort.end(), port);
    endEditCP(WindowPtr(*this), PortFieldMask);
}

void Window::replacePort(const ViewportPtr &old, const ViewportPtr &port)
{
    const auto at = _mfPort.find(old);
    if(at == _mfPort.end() || port == NullFC)
    {
        SWARNING << "Window: no viewport to replace" << std::endl;
        return;
    }
    *at = port;
    endEditCP(WindowPtr(*this), PortFieldMask);
}

void Window::subPort(const ViewportPtr &port)
{
    const auto at = _mfPort.find(port);
    if(at == _mfPort.end())
    {
        SWARNING << "Window: no such viewport to remove" << std::endl;
        return;
    }
    _mfPort.erase(at);
    endEditCP(WindowPtr(*this), PortFieldMask);
}

void Window::subPort(UInt32 index)
{
    if(index < _mfPort.size())
        subPort(ViewportPtr(_mfPort[index]));
    else
        SWARNING << "Window: no such viewport to remove" << std::endl;
}

UInt32 Window::registerGLObject(const GLObjectFunctor &functor, UInt32 num, GLObjectDestroyF destroyer)
{
    return GLObjectTable::registerObject(functor, num, destroyer);
}

void Window::refreshGLObject(UInt32 id, UInt32 num)
{
    GLObjectTable::refresh(id, num);
}

void Window::reinitializeGLObject(UInt32 id, UInt32 num)
{
    GLObjectTable::reinitialize(id, num);
}

void Window::destroyGLObject(UInt32 id, UInt32 num)
{
    GLObjectTable::destroy(id, num);
}

void Window::validateGLObject(UInt32 id)
{
    if(_content != nullptr)
        _content->objects.validate(this, id);
}

UInt32 Window::getGLObjectId(UInt32 osgId) const
{
    return _content != nullptr ? _content->objects.getName(osgId) : 0;
}

void Window::setGLObjectId(UInt32 osgId, UInt32 glId)
{
    if(_content != nullptr)
        _content->objects.setName(osgId, glId);
}

UInt32 Window::registerExtension(const Char8 *name)
{
    return GLExtensionTable::registerExtension(name);
}

UInt32 Window::registerFunction(const Char8 *name, UInt32 extension, UInt32 version)
{
    return GLExtensionTable::registerFunction(name, extension, version);
}

bool Window::hasExtension(UInt32 id)
{
    return _content != nullptr && _content->extensions.hasExtension(id);
}

Window::GLExtensionFunction Window::getFunction(UInt32 id)
{
    return _content != nullptr ? _content->extensions.getFunction(id) : nullptr;
}

UInt32 Window::getGLVersion() const
{
    return _content != nullptr ? _content->extensions.getVersion() : 0;
}

void Window::maskExtension(const Char8 *name)
{
    GLExtensionTable::mask(name);
}

void Window::unmaskAll()
{
    GLExtensionTable::unmaskAll();
}

std::string Window::getExtensionString()
{
    if(const GLubyte *const all = glGetString(GL_EXTENSIONS))
        return reinterpret_cast<const Char8 *>(all);

    // A core profile only gives them one by one, and has just noted an error for being asked for all.
    glGetError();
    std::string names;
    const auto getString = reinterpret_cast<PFNGLGETSTRINGIPROC>(getFunctionByName("glGetStringi"));
    GLint count = 0;
    if(getString != nullptr)
        glGetIntegerv(GL_NUM_EXTENSIONS, &count);
    for(GLint i = 0; i < count; ++i)
    {
        if(const GLubyte *const name = getString(GL_EXTENSIONS, GLuint(i)))
            names.append(reinterpret_cast<const Char8 *>(name)).append(" ");
    }
    return names;
}

std::string Window::getVersionString()
{
    const GLubyte *const version = glGetString(GL_VERSION);
    return version != nullptr ? reinterpret_cast<const Char8 *>(version) : "";
}

void Window::resizeGL() {}

void Window::changed(BitVector whichField, UInt32 origin)
{
    if((whichField & PortFieldMask) != 0)
    {
        const std::vector<ViewportPtr> old = _heldPorts.getHeld();
        if((origin & ChangedOrigin::Sync) == 0)
        {
            const WindowPtr self(*this);
            const auto setParent = [](const ViewportPtr &port, const WindowPtr &parent) {
                port->setParent(parent);
                endEditCP(port, Viewport::ParentFieldMask);
            };
            for(const ViewportPtr &port : old)
            {
                if(port != NullFC && port->getParent() == self && _mfPort.find(port) == _mfPort.end())
                    setParent(port, NullFC);
            }
            for(const ViewportPtr &port : _mfPort)
            {
                if(port != NullFC && port->getParent() != self)
                    setParent(port, self);
            }
        }
        _heldPorts.follow(_mfPort, origin);
    }
    Inherited::changed(whichField, origin);
}

void Window::dump(UInt32, const BitVector) const
{
    SLOG << "Dump Window NI" << std::endl;
}

OSG_END_NAMESPACE
