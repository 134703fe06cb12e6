/// \file
/// The registry of GL extensions and functions, on contexts that are made up.

#include <OpenSG/OSGGLExtensions.h>

#include <gtest/gtest.h>

#include <cstdlib>

namespace
{

using osg::GLExtensionTable;

void plainFunction() {}
void extensionFunction() {}

/// A context with one extension, whose functions go by the names with and without suffix.
GLExtensionTable::Context contextOf(const char *version)
{
    GLExtensionTable::Context context;
    context.extensions = "GL_EXT_first GL_ARB_second_longer GL_EXT_third ";
    context.version = version;
    context.lookup = [](const char *name) -> osg::GLExtensionFunction {
        const std::string text = name;
        if(text == "glDoIt")
            return &plainFunction;
        if(text == "glDoItEXT")
            return &extensionFunction;
        return nullptr;
    };
    return context;
}

class GLExtensions : public ::testing::Test
{
  protected:
    void TearDown() override { GLExtensionTable::unmaskAll(); }
};

TEST_F(GLExtensions, GiveTheSameIdForTheSameName)
{
    const auto first = GLExtensionTable::registerExtension("GL_EXT_first");
    EXPECT_EQ(GLExtensionTable::registerExtension("GL_EXT_first"), first);
    EXPECT_NE(GLExtensionTable::registerExtension("GL_ARB_second_longer"), first);
    const auto function = GLExtensionTable::registerFunction("glDoItEXT", first, 0xFFFF);
    EXPECT_EQ(GLExtensionTable::registerFunction("glDoItEXT", first, 0xFFFF), function);
    EXPECT_NE(GLExtensionTable::registerFunction("glDoItEXT", first, 0x0104), function);
    EXPECT_EQ(GLExtensionTable::registerExtension(nullptr), 0x7FFFFFFFu);
    EXPECT_EQ(GLExtensionTable::registerExtension(""), 0x7FFFFFFFu);
    EXPECT_EQ(GLExtensionTable::registerFunction(nullptr, first, 0xFFFF), 0x7FFFFFFFu);
}

TEST_F(GLExtensions, AreFoundByTheirWholeName)
{
    GLExtensionTable table;
    const auto whole = GLExtensionTable::registerExtension("GL_ARB_second_longer");
    const auto part = GLExtensionTable::registerExtension("GL_ARB_second");
    EXPECT_FALSE(table.hasExtension(whole)) << "nothing is there before load";
    table.load(contextOf("2.1"));
    EXPECT_TRUE(table.hasExtension(whole));
    EXPECT_FALSE(table.hasExtension(part));
    EXPECT_FALSE(table.hasExtension(GLExtensionTable::InvalidId));
    EXPECT_FALSE(table.hasExtension(100000));
}

TEST_F(GLExtensions, BindAFunctionOfVersionFfffToItsExtensionAlone)
{
    const auto present = GLExtensionTable::registerExtension("GL_EXT_first");
    const auto absent = GLExtensionTable::registerExtension("GL_EXT_absent");
    const auto bound = GLExtensionTable::registerFunction("glDoItEXT", present, 0xFFFF);
    const auto lost = GLExtensionTable::registerFunction("glDoItEXT", absent, 0xFFFF);
    GLExtensionTable table;
    EXPECT_EQ(table.getFunction(bound), nullptr) << "nothing is there before load";
    table.load(contextOf("4.6"));
    EXPECT_EQ(table.getFunction(bound), &extensionFunction);
    EXPECT_EQ(table.getFunction(lost), nullptr);
    EXPECT_EQ(table.getFunction(GLExtensionTable::InvalidId), nullptr);
}

TEST_F(GLExtensions, TakeAFunctionWithoutItsSuffixWhereTheVersionHasIt)
{
    const auto absent = GLExtensionTable::registerExtension("GL_EXT_absent");
    const auto function = GLExtensionTable::registerFunction("glDoItEXT", absent, 0x0300);
    GLExtensionTable old;
    old.load(contextOf("2.1.9"));
    EXPECT_EQ(old.getFunction(function), nullptr);
    GLExtensionTable recent;
    recent.load(contextOf("3.0 made up"));
    EXPECT_EQ(recent.getFunction(function), &plainFunction);
    const auto always = GLExtensionTable::registerFunction("glDoIt", GLExtensionTable::InvalidId, 0);
    EXPECT_EQ(old.getFunction(always), &plainFunction) << "registered behind load";
}

TEST_F(GLExtensions, AreGoneWhileMaskedInTablesThatHadThem)
{
    const auto extension = GLExtensionTable::registerExtension("GL_EXT_first");
    const auto other = GLExtensionTable::registerExtension("GL_EXT_third");
    const auto function = GLExtensionTable::registerFunction("glDoItEXT", extension, 0xFFFF);
    GLExtensionTable table;
    table.load(contextOf("2.1"));
    ASSERT_TRUE(table.hasExtension(extension));
    GLExtensionTable::mask("GL_EXT_first");
    EXPECT_FALSE(table.hasExtension(extension));
    EXPECT_EQ(table.getFunction(function), nullptr);
    EXPECT_TRUE(table.hasExtension(other));
    GLExtensionTable::unmaskAll();
    EXPECT_TRUE(table.hasExtension(extension));
    EXPECT_EQ(table.getFunction(function), &extensionFunction);
}

/// Ends the process with 0 if exactly the extensions that the environment names are masked.
void checkMaskOfEnvironment()
{
    GLExtensionTable::unmaskAll();
    GLExtensionTable table;
    table.load(contextOf("2.1"));
    const bool first = table.hasExtension(GLExtensionTable::registerExtension("GL_EXT_first"));
    const bool second = table.hasExtension(GLExtensionTable::registerExtension("GL_ARB_second_longer"));
    const bool third = table.hasExtension(GLExtensionTable::registerExtension("GL_EXT_third"));
    std::_Exit(!first && second && !third ? 0 : 1);
}

TEST_F(GLExtensions, StayMaskedByTheEnvironmentOfTheProcess)
{
    // The child process is started anew, so that it reads the environment as any program does.
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    setenv("OSG_MASKED_EXTENSIONS", "GL_EXT_third, GL_EXT_first", 1);
    EXPECT_EXIT(checkMaskOfEnvironment(), ::testing::ExitedWithCode(0), "");
    unsetenv("OSG_MASKED_EXTENSIONS");
    EXPECT_EXIT(checkMaskOfEnvironment(), ::testing::ExitedWithCode(1), "");
}

TEST_F(GLExtensions, ReadVersions)
{
    EXPECT_EQ(GLExtensionTable::parseVersion("4.5 (Compatibility Profile) and more"), 0x0405u);
    EXPECT_EQ(GLExtensionTable::parseVersion("2.1.0"), 0x0201u);
    EXPECT_EQ(GLExtensionTable::parseVersion("1.10"), 0x010Au);
    EXPECT_EQ(GLExtensionTable::parseVersion("4"), 0u);
    EXPECT_EQ(GLExtensionTable::parseVersion("4."), 0u);
    EXPECT_EQ(GLExtensionTable::parseVersion("999.1"), 0u);
    EXPECT_EQ(GLExtensionTable::parseVersion("OpenGL ES 3.2"), 0u);
    EXPECT_EQ(GLExtensionTable::parseVersion(""), 0u);
    EXPECT_EQ(GLExtensionTable::parseVersion(nullptr), 0u);
}

} // namespace
