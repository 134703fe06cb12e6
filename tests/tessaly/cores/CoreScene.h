#ifndef TESTS_TESSALY_CORES_CORESCENE_H
#define TESTS_TESSALY_CORES_CORESCENE_H

/// \file
/// A window that shows quads in columns, and what holds containers for the time of a test.

#include "support/ReadBack.h"

#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGOrthographicCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>

#include "support/Held.h"

#include <gtest/gtest.h>

#include <memory>

namespace cores_test
{

using test::Held;

/// Does the work on a thread with aspect 1, behind the edits of the calling thread, and waits for its end.
template <class Work>
inline void onOtherAspect(Work work)
{
    osg::Thread *const other = osg::Thread::get("other aspect");
    osg::ChangeList *const edits = osg::Thread::getCurrentChangeList();
    auto all = [&] {
        edits->applyToCurrent();
        work();
        osg::Thread::getCurrentChangeList()->clearAll();
    };
    ASSERT_TRUE(
        other->runFunction([](void *argument) { (*static_cast<decltype(all) *>(argument))(); }, 1, &all));
    osg::Thread::join(other);
}

/// A node at (x, 0, z) with a white quad of side 1 that faces +z.
inline osg::NodePtr quadAt(osg::Real32 x, osg::Real32 z = 0.0f)
{
    using namespace osg;
    const SimpleMaterialPtr material = SimpleMaterial::create();
    material->setLit(false);
    material->setDiffuse(Color3f(1, 1, 1));
    endEditCP(material);
    const GeometryPtr quad = makePlaneGeo(1, 1, 1, 1);
    quad->setMaterial(material);
    endEditCP(quad);
    TransformPtr place;
    const NodePtr node = makeCoredNode<Transform>(&place);
    Matrix matrix;
    matrix.setTranslate(x, 0.0f, z);
    place->setMatrix(matrix);
    endEditCP(place);
    node->addChild(makeNodeFor(quad));
    endEditCP(node);
    return node;
}

/// 96 x 32 pixels that show x from -3 to 3 and y from -1 to 1, on black.
class ColumnView
{
  public:
    static constexpr int columns = 3;

    explicit ColumnView(const osg::NodePtr &root)
        : _render(osg::RenderAction::create()), _draw(osg::DrawAction::create())
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
        _window->resize(96, 32);
        _window->addPort(viewport);
        _window->init();
    }
    ~ColumnView()
    {
        EXPECT_TRUE(_window->activate());
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR)) << "pending at the end of the view";
        osg::subRefCP(_window);
    }
    ColumnView(const ColumnView &) = delete;
    ColumnView &operator=(const ColumnView &) = delete;

    /// Which of the columns at x = -2, 0, 2 are white, as "101".
    std::string rendered()
    {
        _window->render(_render.get());
        return read();
    }
    std::string drawn()
    {
        _window->draw(_draw.get());
        return read();
    }

    osg::RenderAction *render() const { return _render.get(); }
    osg::DrawAction *draw() const { return _draw.get(); }

  private:
    std::string read()
    {
        EXPECT_TRUE(_window->activate());
        std::string result;
        for(int i = 0; i < columns; ++i)
        {
            const test::RgbaImage::Pixel pixel = test::readPixel(16 + 32 * i, 16);
            EXPECT_TRUE(pixel[0] == 0 || pixel[0] == 255) << int(pixel[0]);
            result += pixel[0] == 255 ? '1' : '0';
        }
        return result;
    }

    std::unique_ptr<osg::RenderAction> _render;
    std::unique_ptr<osg::DrawAction> _draw;
    osg::EGLWindowPtr _window;
};

} // namespace cores_test

#endif
