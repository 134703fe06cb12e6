/// \file
/// The container classes come up once for all tests of this program, and go at its end.

#include <gtest/gtest.h>

#include <OpenSG/OSGConfig.h>

namespace
{

class Containers : public ::testing::Environment
{
    void SetUp() override { ASSERT_TRUE(osg::osgInit(0, nullptr)); }
    void TearDown() override { osg::osgExit(); }
};

[[maybe_unused]] const ::testing::Environment *const containers = ::testing::AddGlobalTestEnvironment(new Containers);

} // namespace

/// What a leak check of this program passes over: GLU keeps memory of contours that it can't make sense of, and the GL driver
/// some of the display lists that live when their context goes. Lists of curves and surfaces do, which is meant.
extern "C" const char *__lsan_default_suppressions();
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:libGLU.so\nleak:swrast_dri.so\n";
}
