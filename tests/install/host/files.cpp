/// \file
/// Reads the files that it is told, each by its kind, so that what the installed readers say can be seen; and, where the
/// package has one, makes a window for the desktop, without opening it.

#include <OpenSG/OSGImageFileHandler.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGSceneFileHandler.h>
#ifdef HAS_GLFW_WINDOW
#include <OpenSG/OSGGLFWWindow.h>
#endif

#include <cstdio>

using namespace osg;

int main(int argc, char **argv)
{
    if(!osgInit(argc, argv))
        return 1;
    for(int i = 1; i < argc; ++i)
    {
        if(SceneFileHandler::the().getFileType(argv[i]) != nullptr)
            SceneFileHandler::the().read(argv[i]);
        else
            ImageFileHandler::the().read(argv[i]);
    }
#ifdef HAS_GLFW_WINDOW
    const GLFWWindowPtr window = GLFWWindow::create();
    addRefCP(window);
    window->setTitle("host");
    std::printf("window \"%s\" %s\n", window->getTitle().c_str(), window->isOpen() ? "open" : "closed");
    subRefCP(window);
#endif
    return osgExit() ? 0 : 1;
}
