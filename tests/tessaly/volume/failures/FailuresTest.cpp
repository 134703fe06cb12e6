/// \file
/// Volumes in windows whose GL lacks an extension, refuses a framebuffer or a program.

#include "Subjects.h"
#include "VolumeStage.h"

#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGEGLContext.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGHookedWindow.h>

#include <cstring>

using namespace reference;
using test::VolumeStage;

namespace
{

// A power of 2, for the window that has textures of such sizes only.
constexpr int side = 64;

template <class FunctionT>
FunctionT real(const char *name)
{
    return reinterpret_cast<FunctionT>(osg::EGLContextHandle::getProcAddress(name));
}

/// The warnings and fatal messages, without line ends, in the order in which they came.
std::vector<std::string> complaints(const osg::LogCapture &log)
{
    std::vector<std::string> texts;
    for(const osg::LogMessage &message : log.messages())
    {
        if(message.level == osg::LOG_WARNING || message.level == osg::LOG_FATAL)
            texts.push_back(message.text.substr(0, message.text.find('\n')));
    }
    return texts;
}

class VolumeFailures : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { osg::osgInit(0, nullptr); }
    void TearDown() override
    {
        osg::Window::unmaskAll();
        osg::HookedWindow::functions.clear();
    }

    static Scene scene()
    {
        Scene shown = test::sceneOf(8, side);
        shown.boxes = test::twoBoxes();
        return shown;
    }

    /// A new window behind the failure shows the volume as if nothing had been.
    static void expectRecovery(const std::string &name)
    {
        osg::Window::unmaskAll();
        osg::HookedWindow::functions.clear();
        const osg::LogCapture log;
        VolumeStage stage(side, side, osg::HookedWindow::create());
        EXPECT_TRUE(stage.matches(scene(), name + "-recovered"));
        EXPECT_EQ(test::complaintsIn(log), "") << name;
    }
};

/// What a window lacks, and what comes of it.
struct Lack
{
    std::string name;
    std::vector<std::string> extensions;
    bool drawn;                     ///< other ways lead to the same picture
    std::vector<std::string> lines; ///< what is said, for all frames
};

void PrintTo(const Lack &lack, std::ostream *out)
{
    *out << lack.name;
}

class VolumeWithout : public VolumeFailures, public ::testing::WithParamInterface<Lack>
{
};

TEST_P(VolumeWithout, AnExtensionIsDrawnInAnotherWayOrSaysOnceWhyNot)
{
    const Lack &lack = GetParam();
    for(const std::string &extension : lack.extensions)
        osg::Window::maskExtension(extension.c_str());
    {
        const osg::LogCapture log;
        VolumeStage stage(side, side);
        stage.show(scene());
        stage.picture();
        stage.frame();
        const test::RgbaImage picture = stage.frame();
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
        EXPECT_EQ(complaints(log), lack.lines);
        if(lack.drawn)
        {
            EXPECT_TRUE(test::agrees(picture, render(scene()), "without-" + lack.name));
        }
    }
    expectRecovery(lack.name);
}

TEST_F(VolumeFailures, WithoutTexturesOfAnySizeAWindowWhoseSidesAreNoPowersOfTwoIsToldOnce)
{
    osg::Window::maskExtension("GL_ARB_texture_non_power_of_two");
    const osg::LogCapture log;
    VolumeStage stage(60, 60);
    stage.show(test::sceneOf(8, 60));
    stage.picture();
    stage.frame();
    stage.frame();
    EXPECT_EQ(complaints(log),
              (std::vector<std::string>{"VolumeViewport: without GL_ARB_texture_non_power_of_two the picture is only "
                                        "right where its sides are powers of two, not at 60 x 60"}));
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

std::vector<Lack> lacks()
{
    std::vector<Lack> all;
    for(const char *const extension : {"GL_EXT_framebuffer_object",
                                       "GL_ARB_framebuffer_object",
                                       "GL_ARB_draw_buffers",
                                       "GL_ARB_multitexture",
                                       "GL_EXT_secondary_color",
                                       "GL_EXT_draw_range_elements",
                                       "GL_ARB_vertex_buffer_object",
                                       "GL_ARB_texture_rectangle",
                                       "GL_EXT_texture_compression_s3tc",
                                       "GL_EXT_texture_filter_anisotropic",
                                       "GL_ARB_shadow",
                                       "GL_EXT_texture_lod_bias",
                                       "GL_ARB_texture_env_combine",
                                       "GL_ARB_point_sprite",
                                       "GL_EXT_texture3D",
                                       "GL_ARB_texture_compression",
                                       "GL_ARB_point_parameters",
                                       "GL_EXT_blend_color",
                                       "GL_EXT_blend_minmax",
                                       "GL_EXT_blend_func_separate",
                                       "GL_ARB_geometry_shader4",
                                       "GL_EXT_geometry_shader4",
                                       "GL_ARB_shader_texture_lod",
                                       "GL_ARB_texture_non_power_of_two"})
        all.push_back({std::string(extension + 3), {extension}, true, {}});
    // One line for each of the passes.
    const std::string noFBO = "FBOViewport::render: the window has no framebuffer objects";
    all.push_back({"framebuffer_objects",
                   {"GL_EXT_framebuffer_object", "GL_ARB_framebuffer_object"},
                   false,
                   {noFBO, noFBO, noFBO}});
    const std::string noGLSL =
        "SHLChunk: GL_ARB_shading_language_100 or GL_ARB_shader_objects is not there, so this "
        "window draws without programs";
    all.push_back({"ARB_shading_language_100", {"GL_ARB_shading_language_100"}, false, {noGLSL}});
    all.push_back({"ARB_shader_objects", {"GL_ARB_shader_objects"}, false, {noGLSL}});
    return all;
}

GLenum forcedStatus = GL_FRAMEBUFFER_COMPLETE;

GLenum APIENTRY checkStatus(GLenum)
{
    return forcedStatus;
}

TEST_F(VolumeFailures, OfAFramebufferAreSaidOnceForEachPassAndTheNextWholeFramebufferIsDrawn)
{
    const std::pair<GLenum, const char *> statuses[] = {
        {GL_FRAMEBUFFER_UNDEFINED, "GL_FRAMEBUFFER_UNDEFINED (0x8219)"},
        {GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT, "GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT (0x8cd6)"},
        {GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT,
         "GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT (0x8cd7)"},
        {GL_FRAMEBUFFER_INCOMPLETE_DIMENSIONS_EXT, "GL_FRAMEBUFFER_INCOMPLETE_DIMENSIONS (0x8cd9)"},
        {GL_FRAMEBUFFER_INCOMPLETE_FORMATS_EXT, "GL_FRAMEBUFFER_INCOMPLETE_FORMATS (0x8cda)"},
        {GL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER, "GL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER (0x8cdb)"},
        {GL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER, "GL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER (0x8cdc)"},
        {GL_FRAMEBUFFER_UNSUPPORTED, "GL_FRAMEBUFFER_UNSUPPORTED (0x8cdd)"},
        {GL_FRAMEBUFFER_INCOMPLETE_MULTISAMPLE, "GL_FRAMEBUFFER_INCOMPLETE_MULTISAMPLE (0x8d56)"},
        {GL_FRAMEBUFFER_INCOMPLETE_LAYER_TARGETS, "GL_FRAMEBUFFER_INCOMPLETE_LAYER_TARGETS (0x8da8)"},
        {0, "unknown status (0x0)"},
    };
    for(const auto &[status, text] : statuses)
    {
        for(const char *const name : {"glCheckFramebufferStatus", "glCheckFramebufferStatusEXT"})
            osg::HookedWindow::functions[name] =
                reinterpret_cast<osg::Window::GLExtensionFunction>(&checkStatus);
        forcedStatus = status;
        const osg::LogCapture log;
        VolumeStage stage(side, side, osg::HookedWindow::create());
        stage.show(scene());
        for(int frame = 0; frame < 4; ++frame)
            stage.frame();
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
        const std::string line =
            std::string("FBOViewport::render: the framebuffer of 64 x 64 pixels is not complete: ") + text;
        EXPECT_EQ(complaints(log), std::vector<std::string>(3, line));

        forcedStatus = GL_FRAMEBUFFER_COMPLETE;
        EXPECT_TRUE(test::agrees(stage.frame(), render(scene()), "complete-again"));
        EXPECT_EQ(complaints(log).size(), 3u);
    }
    expectRecovery("framebuffer");
}

std::string brokenWord; ///< a shader with this in its text does not compile

void APIENTRY breakSource(GLuint shader, GLsizei count, const GLchar *const *texts, const GLint *lengths)
{
    const auto pass = real<PFNGLSHADERSOURCEPROC>("glShaderSource");
    std::string whole;
    for(GLsizei i = 0; i < count; ++i)
        whole.append(texts[i],
                     lengths != nullptr && lengths[i] >= 0 ? std::size_t(lengths[i]) : std::strlen(texts[i]));
    const GLchar *const broken = "void main() { this is no program }";
    if(whole.find(brokenWord) != std::string::npos)
        pass(shader, 1, &broken, nullptr);
    else
        pass(shader, count, texts, lengths);
}

TEST_F(VolumeFailures, OfAProgramToCompileAreSaidOnceAndTheFramesGoOn)
{
    const struct
    {
        const char *word;
        const char *stage;
        std::size_t programs;
    } cases[] = {{"traverseVolume", "fragment", 1},
                 {"lightPos", "vertex", 1},
                 {"vec4(oPosition, 0.0)", "fragment", 1},
                 {"vec4(texCoords, 1.0);", "fragment", 3},
                 {"startImage", "fragment", 1}};
    for(const auto &broken : cases)
    {
        osg::HookedWindow::functions["glShaderSource"] =
            reinterpret_cast<osg::Window::GLExtensionFunction>(&breakSource);
        brokenWord = broken.word;
        {
            const osg::LogCapture log;
            VolumeStage stage(side, side, osg::HookedWindow::create());
            stage.show(scene());
            for(int frame = 0; frame < 4; ++frame)
                stage.frame();
            EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
            EXPECT_EQ(complaints(log),
                      std::vector<std::string>(broken.programs, std::string("SHLChunk: the ") + broken.stage +
                                                                    " program does not compile:"))
                << broken.word;
        }
        expectRecovery(std::string("compile-") + broken.stage);
    }
}

void APIENTRY linkNothing(GLuint) {}

TEST_F(VolumeFailures, OfProgramsToLinkAreSaidOnceForEachAndTheFramesGoOn)
{
    osg::HookedWindow::functions["glLinkProgram"] =
        reinterpret_cast<osg::Window::GLExtensionFunction>(&linkNothing);
    {
        const osg::LogCapture log;
        VolumeStage stage(side, side, osg::HookedWindow::create());
        stage.show(scene());
        for(int frame = 0; frame < 4; ++frame)
            stage.frame();
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
        // The plane, the front and the back faces, the exit, the rays.
        EXPECT_EQ(complaints(log), std::vector<std::string>(5, "SHLChunk: the program does not link:"));
    }
    expectRecovery("link");
}

int voxelUploads = 0;

void APIENTRY countUploads(GLenum target, GLint level, GLint format, GLsizei width, GLsizei height,
                           GLsizei depth, GLint border, GLenum pixelFormat, GLenum type, const void *pixels)
{
    if(target == GL_TEXTURE_3D && width == 32 && height == 32 && depth == 32)
        ++voxelUploads;
    real<PFNGLTEXIMAGE3DPROC>("glTexImage3D")(target, level, format, width, height, depth, border,
                                              pixelFormat, type, pixels);
}

TEST_F(VolumeFailures, DoNotComeFromVoxelsThatAreSentToGLMoreThanOnce)
{
    osg::HookedWindow::functions["glTexImage3D"] =
        reinterpret_cast<osg::Window::GLExtensionFunction>(&countUploads);
    voxelUploads = 0;
    VolumeStage stage(side, side, osg::HookedWindow::create());
    Scene shown = scene();
    EXPECT_TRUE(stage.matches(shown, "first-table"));
    EXPECT_EQ(voxelUploads, 1);
    for(std::uint8_t &byte : shown.transfer.bytes)
        byte = std::uint8_t(byte / 2 + 9);
    EXPECT_TRUE(stage.matches(shown, "second-table"));
    shown.ray = RayType::Interleaved;
    shown.traversal = TraversalType::BlockSkipping;
    shown.camera = test::inside();
    EXPECT_TRUE(stage.matches(shown, "other-strategies"));
    EXPECT_EQ(voxelUploads, 1);
}

TEST_F(VolumeFailures, OfThreeDimensionalTexturesAreSaidOnce)
{
    osg::HookedWindow::functions["glTexImage3D"] = nullptr;
    {
        const osg::LogCapture log;
        VolumeStage stage(side, side, osg::HookedWindow::create());
        stage.show(scene());
        for(int frame = 0; frame < 4; ++frame)
            stage.frame();
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
        EXPECT_EQ(complaints(log), std::vector<std::string>{
                                       "TextureChunk: this window's GL has no textures of the kind 32879"});
    }
    expectRecovery("texture3d");
}

INSTANTIATE_TEST_SUITE_P(Masked, VolumeWithout, ::testing::ValuesIn(lacks()),
                         [](const auto &info) { return info.param.name; });

} // namespace
