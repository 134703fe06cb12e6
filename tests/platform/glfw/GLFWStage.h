#ifndef TESTS_GLFW_STAGE_H
#define TESTS_GLFW_STAGE_H

/// \file
/// What the tests of windows on a display have in common.

#include "support/PixelCompare.h"
#include "support/XInput.h"

#include <OpenSG/OSGGLFWWindow.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGViewport.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace test
{

/// Writes down what it is told, one text each.
class Recorder : public osg::GLFWWindowListener
{
  public:
    void resized(osg::Int32 width, osg::Int32 height) override;
    void mouseMoved(osg::Real64 x, osg::Real64 y) override;
    void mouseButton(osg::Int32 button, bool pressed, osg::Real64 x, osg::Real64 y,
                     osg::Int32 modifiers) override;
    void scrolled(osg::Real64 dx, osg::Real64 dy, osg::Real64 x, osg::Real64 y) override;
    void key(osg::Int32 key, bool pressed, bool repeated, osg::Int32 modifiers) override;
    void character(osg::UInt32 codepoint) override;
    void dropped(const std::vector<std::string> &files) override;
    void closeRequested() override;
    void refreshed() override;

    bool has(const std::string &event) const;
    std::size_t count(const std::string &event) const;
    std::string all() const;

    std::vector<std::string> events;
};

/// Calls pollEvents until `reached`, or for ten seconds; whether it was reached.
bool pollUntil(const std::function<bool()> &reached);

/// A person, and an action to draw with.
class GLFWStage : public ::testing::Test
{
  protected:
    static void SetUpTestSuite();
    void SetUp() override;
    void TearDown() override;

    /// A window with a reference, open, seen by the person, `title` being the only one of that name.
    osg::GLFWWindowPtr openWindow(int width, int height, const std::string &title);
    XInput::WindowId idOf(const osg::GLFWWindowPtr &window);

    /// Waits until the window shows that colour at all of its pixels, and says where it does not.
    ::testing::AssertionResult showsAll(const osg::GLFWWindowPtr &window, RgbaImage::Pixel colour);

    std::unique_ptr<XInput> person;
    std::unique_ptr<osg::RenderAction> action;
};

/// A viewport over the whole of `window` with a background of that colour and nothing else.
void addEmptyView(const osg::WindowPtr &window, osg::Real32 red, osg::Real32 green, osg::Real32 blue);

/// A viewport over the whole of `window` with a lit sphere in front of a dark sky.
void addSphereView(const osg::WindowPtr &window);

} // namespace test

#endif
