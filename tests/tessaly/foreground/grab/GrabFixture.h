#ifndef TESTS_TESSALY_FOREGROUND_GRAB_GRABFIXTURE_H
#define TESTS_TESSALY_FOREGROUND_GRAB_GRABFIXTURE_H

/// \file
/// Pictures that differ from frame to frame, and a grabber for them.

#include "tessaly/foreground/ForegroundScene.h"
#include "tessaly/foreground/GlSpy.h"

#include <OpenSG/OSGBaseInitFunctions.h>
#include <Tessaly/OSGPBOGrabForeground.h>

#include <cstring>

namespace foreground_test
{

/// Reaches what derived classes reach.
struct Access : osg::PBOGrabForeground
{
    static bool ready(osg::PBOGrabForeground &grab, osg::Window *win, osg::UInt32 size)
    {
        return (grab.*(&Access::pbosReady))(win, size);
    }
    static osg::Int32 current(osg::PBOGrabForeground &grab)
    {
        return (grab.*(&Access::getCurrentPBOIndex))();
    }
    static osg::Int32 behind(osg::PBOGrabForeground &grab) { return (grab.*(&Access::getNextPBOIndex))(); }
    static void increment(osg::PBOGrabForeground &grab) { (grab.*(&Access::incrementPBOIndex))(); }
    static osg::UInt32 &pboExtension() { return _glPBOExtension; }
    static std::vector<osg::UInt32> handles()
    {
        return {_glVBOExtension,  _funcGenBuffers,    _funcDeleteBuffers,        _funcBindBuffer,
                _funcBufferData,  _funcBufferSubData, _funcGetBufferParameteriv, _funcMapBuffer,
                _funcUnmapBuffer, _glPBOExtension};
    }
};

inline std::vector<osg::UInt8> bytesOf(const osg::ImagePtr &image)
{
    const osg::UInt8 *const data = image->getData();
    return std::vector<osg::UInt8>(data, data + image->getSize());
}

class PBOGrabTest : public ::testing::Test
{
  protected:
    static void SetUpTestSuite() { ASSERT_TRUE(osg::osgInit(0, nullptr)); }

    void SetUp() override
    {
        // Another picture in each frame, no two rows or columns of which are alike.
        picture->onDraw = [this](osg::DrawActionBase *, osg::Viewport *port) {
            glEnable(GL_SCISSOR_TEST);
            for(int i = 0; i < 60; ++i)
            {
                glScissor(port->getPixelLeft() + i, port->getPixelBottom() + i * 2 / 3, 70, 50);
                clearTo(float((i * 37 + number * 11) % 256) / 255.f,
                        float((i * 101 + number * 53) % 256) / 255.f, float(number % 256) / 255.f,
                        float((i + number) % 256) / 255.f);
            }
            port->activateSize();
        };
        grab->setImage(image.ptr);
        osg::endEditCP(grab.ptr);
    }
    void TearDown() override
    {
        GlSpy::the().reset();
        osg::Window::unmaskAll();
    }

    void show(Stage &stage)
    {
        stage.add(picture.ptr);
        stage.add(grab.ptr);
    }
    void setRing(osg::Int32 length)
    {
        grab->setNumPBOs(length);
        osg::endEditCP(grab.ptr, osg::PBOGrabForeground::NumPBOsFieldMask);
    }
    void setSource(const osg::TextureChunkPtr &texture)
    {
        grab->setSourceTexture(texture);
        osg::endEditCP(grab.ptr, osg::PBOGrabForeground::SourceTextureFieldMask);
    }
    /// Draws a frame and gives back what the window shows.
    std::vector<osg::UInt8> next(Stage &stage)
    {
        ++number;
        stage.frame();
        return stage.pixels().bytes;
    }
    /// Draws a frame. Whether the image is the very same.
    bool imageIsNext(Stage &stage)
    {
        const std::vector<osg::UInt8> shown = next(stage);
        return shown == bytesOf(image.ptr);
    }

    int number = 0;
    Held<osg::TestForegroundPtr> picture;
    Held<osg::ImagePtr> image;
    Held<osg::PBOGrabForegroundPtr> grab;
};

} // namespace foreground_test

#endif
