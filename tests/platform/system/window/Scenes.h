#ifndef TESTS_WINDOW_SCENES_H
#define TESTS_WINDOW_SCENES_H

/// \file
/// What the tests of windows have in common.

#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGSwitch.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <OpenSG/OSGWindow.h>

#include <gtest/gtest.h>

namespace test
{

/// OpenSG is up from the first such test on.
class OpenSGTest : public ::testing::Test
{
  protected:
    static void SetUpTestSuite() { ASSERT_TRUE(osg::osgInit(0, nullptr)); }
};

inline osg::SolidBackgroundPtr makeBackground(osg::Real32 red, osg::Real32 green, osg::Real32 blue,
                                              osg::Real32 alpha = 1.0f)
{
    const osg::SolidBackgroundPtr background = osg::SolidBackground::create();
    background->setColor(osg::Color3f(red, green, blue));
    background->setAlpha(alpha);
    osg::endEditCP(background);
    return background;
}

/// A camera at (0, 0, 0) that looks along -z, without a beacon.
inline osg::PerspectiveCameraPtr makeCamera()
{
    const osg::PerspectiveCameraPtr camera = osg::PerspectiveCamera::create();
    camera->setFov(1.0f);
    camera->setNear(1.0f);
    camera->setFar(10.0f);
    osg::endEditCP(camera);
    return camera;
}

/// Gives a viewport all it needs: an empty scene, a camera and that background.
template <class PortPtr>
inline void fill(const PortPtr &port, const osg::BackgroundPtr &background)
{
    port->setCamera(makeCamera());
    port->setRoot(osg::makeCoredNode<osg::Group>());
    port->setBackground(background);
    osg::endEditCP(port);
}

} // namespace test

#endif
