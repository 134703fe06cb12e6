#ifndef TESTS_TESSALY_FOREGROUND_FOREGROUNDSCENE_H
#define TESTS_TESSALY_FOREGROUND_FOREGROUNDSCENE_H

/// \file
/// A window with one viewport over an empty scene, and the foregrounds that a test puts in front.

#include "support/Held.h"
#include "support/ReadBack.h"

#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGField.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGMemoryDataHandler.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTestForeground.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGViewport.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace foreground_test
{

using test::Held;

/// The window. Its context stays current, so that a test may look at GL behind a frame; a GL error that is
/// pending at the end fails the test.
class Stage
{
  public:
    explicit Stage(int width = 64, int height = 48)
    {
        camera->setFov(1.0f);
        camera->setNear(1.0f);
        camera->setFar(10.0f);
        osg::endEditCP(camera.ptr);
        setBackground(osg::Color3f(0.2f, 0.4f, 0.6f));
        port->setCamera(camera.ptr);
        port->setRoot(osg::makeCoredNode<osg::Group>());
        port->setBackground(background.ptr);
        osg::endEditCP(port.ptr);
        window->resize(width, height);
        window->addPort(port.ptr);
        window->init();
        EXPECT_TRUE(window->activate());
    }
    ~Stage()
    {
        window->activate();
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR)) << "pending at the end of the test";
    }

    void setBackground(const osg::Color3f &color)
    {
        background->setColor(color);
        background->setAlpha(1.0f);
        osg::endEditCP(background.ptr);
    }
    void add(const osg::ForegroundPtr &foreground)
    {
        port->getForegrounds().push_back(foreground);
        osg::endEditCP(port.ptr, osg::Viewport::ForegroundsFieldMask);
    }
    void frame() { window->render(action.get()); }

    test::RgbaImage pixels() const
    {
        return test::readPixels(0, 0, int(window->getWidth()), int(window->getHeight()));
    }

    Held<osg::PerspectiveCameraPtr> camera;
    Held<osg::SolidBackgroundPtr> background;
    Held<osg::ViewportPtr> port;
    Held<osg::EGLWindowPtr> window;
    std::unique_ptr<osg::RenderAction> action{osg::RenderAction::create()};
};

/// Makes all pixels of what is bound for drawing the colour.
inline void clearTo(float red, float green, float blue, float alpha = 1.0f)
{
    glClearColor(red, green, blue, alpha);
    glClear(GL_COLOR_BUFFER_BIT);
}

/// A texture over a new image without pixels of its own.
inline osg::TextureChunkPtr makeTexture(osg::Int32 width, osg::Int32 height,
                                        osg::UInt32 pixelFormat = GL_RGBA,
                                        osg::UInt32 internalFormat = GL_RGBA8,
                                        osg::Int32 type = GL_UNSIGNED_BYTE, osg::Int32 depth = 1)
{
    const osg::ImagePtr image = osg::Image::create();
    image->set(pixelFormat, width, height, depth, 1, 1, 0.0, nullptr, type);
    osg::endEditCP(image);
    const osg::TextureChunkPtr texture = osg::TextureChunk::create();
    texture->setImage(image);
    texture->setInternalFormat(internalFormat);
    texture->setMinFilter(GL_NEAREST);
    texture->setMagFilter(GL_NEAREST);
    osg::endEditCP(texture);
    return texture;
}

/// A row of a field table, with the default as text; "" for a field without a text form.
struct Row
{
    const char *name;
    const char *type;
    osg::UInt32 id;
    std::string value;
};

/// Checks a class's table, its making by name, and the line that dump writes.
inline void checkClass(const char *name, const char *parent, const std::vector<Row> &rows)
{
    using namespace osg;
    const FieldContainerType *const type = FieldContainerFactory::the()->findType(name);
    ASSERT_NE(type, nullptr);
    EXPECT_STREQ(type->getParent()->getCName(), parent);
    EXPECT_EQ(type->getNumFieldDescs(), type->getParent()->getNumFieldDescs() + rows.size());
    const Held<FieldContainerPtr> made(FieldContainerFactory::the()->createFieldContainer(name));
    ASSERT_TRUE(made.ptr != NullFC);
    for(const Row &row : rows)
    {
        SCOPED_TRACE(row.name);
        const FieldDescription *const field = type->getFieldDescription(row.id);
        ASSERT_NE(field, nullptr);
        EXPECT_STREQ(field->getCName(), row.name);
        EXPECT_EQ(field->getFieldId(), row.id);
        EXPECT_EQ(field->getFieldMask(), BitVector(1) << row.id);
        EXPECT_FALSE(field->isInternal());
        EXPECT_STREQ(field->getTypeName(), row.type);
        std::string text;
        const LogCapture quiet; // pointers have no text form
        made->getField(row.id)->getValueByStr(text);
        EXPECT_EQ(text, row.value);
    }
    LogCapture log;
    made->dump();
    ASSERT_EQ(log.count(), 1u);
    EXPECT_EQ(log.messages()[0].level, LOG_LOG);
    EXPECT_EQ(log.text(), std::string("Dump ") + name + " NI\n");
}

} // namespace foreground_test

#endif
