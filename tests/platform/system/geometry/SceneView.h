#ifndef TESTS_PLATFORM_SYSTEM_GEOMETRY_SCENEVIEW_H
#define TESTS_PLATFORM_SYSTEM_GEOMETRY_SCENEVIEW_H

/// \file
/// A window without a display that shows a scene from straight ahead.

#include "support/ReadBack.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGOrthographicCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGViewport.h>

#include <gtest/gtest.h>

#include <memory>

namespace geometry_test
{

/// Shows x and y from -1 to 1, z from -10 to 10, on black; y up, +z towards the viewer.
class SceneView
{
  public:
    explicit SceneView(const osg::NodePtr &root, int size = 64)
        : _size(size), _action(osg::RenderAction::create())
    {
        using namespace osg;
        const OrthographicCameraPtr camera = OrthographicCamera::create();
        camera->setVerticalSize(2);
        camera->setNear(-10);
        camera->setFar(10);
        endEditCP(camera);
        const ViewportPtr viewport = Viewport::create();
        viewport->setCamera(camera);
        viewport->setRoot(root);
        viewport->setBackground(SolidBackground::create());
        endEditCP(viewport);
        _window = EGLWindow::create();
        addRefCP(_window);
        _window->resize(size, size);
        _window->addPort(viewport);
        _window->init();
    }
    ~SceneView()
    {
        EXPECT_TRUE(_window->activate());
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR)) << "pending at the end of the view";
        osg::subRefCP(_window);
    }
    SceneView(const SceneView &) = delete;
    SceneView &operator=(const SceneView &) = delete;

    /// Draws a frame and gives the picture.
    test::RgbaImage render()
    {
        _window->render(_action.get());
        return read();
    }
    /// The same with the action that does not sort.
    test::RgbaImage draw()
    {
        const std::unique_ptr<osg::DrawAction> action(osg::DrawAction::create());
        _window->draw(action.get());
        return read();
    }
    test::RgbaImage read()
    {
        if(!_window->activate())
        {
            ADD_FAILURE() << "no context";
            return test::RgbaImage(_size, _size);
        }
        return test::readPixels(0, 0, _size, _size);
    }

    /// The pixel at these coordinates of the scene.
    test::RgbaImage::Pixel at(const test::RgbaImage &image, double x, double y) const
    {
        return image.at(int((x + 1) / 2 * _size), int((y + 1) / 2 * _size));
    }

    osg::RenderAction *action() const { return _action.get(); }
    const osg::EGLWindowPtr &window() const { return _window; }

  private:
    int _size;
    std::unique_ptr<osg::RenderAction> _action;
    osg::EGLWindowPtr _window;
};

} // namespace geometry_test

#endif
