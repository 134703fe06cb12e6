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

[[maybe_unused]] const ::testing::Environment *const containers =
    ::testing::AddGlobalTestEnvironment(new Containers);

} // namespace
