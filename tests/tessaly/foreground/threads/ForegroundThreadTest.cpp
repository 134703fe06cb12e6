/// \file
/// Foregrounds and filters that one thread edits while another draws them on an aspect of its own.

#include "support/Png.h"
#include "support/TwoAspects.h"
#include "tessaly/foreground/ForegroundScene.h"

#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGDisplayFilterForeground.h>
#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGThread.h>
#include <Tessaly/OSGFBOForeground.h>
#include <Tessaly/OSGForegroundGroup.h>
#include <Tessaly/OSGImprovedColorDisplayFilter.h>
#include <Tessaly/OSGOculusRiftFilter.h>
#include <Tessaly/OSGOculusRiftFilter2.h>
#include <Tessaly/OSGPBOGrabForeground.h>
#include <Tessaly/OSGScreenDumpForeground.h>

#include <filesystem>

#include <unistd.h>

OSG_USING_NAMESPACE
using namespace foreground_test;

namespace
{

constexpr int frames = 18;
constexpr int width = 48;
constexpr int height = 40;

std::vector<UInt8> bytesOf(const ImagePtr &image)
{
    const UInt8 *const data = image->getData();
    return data != nullptr ? std::vector<UInt8>(data, data + image->getSize()) : std::vector<UInt8>();
}

} // namespace

TEST(ForegroundThreadTest, AnotherAspectDrawsWhatTheApplicationEdits)
{
    ASSERT_TRUE(osgInit(0, nullptr));
    {
        const Held<ImagePtr> picture, texels; // of the window, a frame late, and of the texture
        std::vector<std::vector<UInt8>> pictures, textureBytes;

        // The background, a texture that is cleared in another colour each frame, and a lens over all.
        const TextureChunkPtr textures[2] = {makeTexture(8, 4), makeTexture(8, 4)};
        const Held<TextureChunkPtr> keepFirst(textures[0]), keepSecond(textures[1]);
        const Held<TestForegroundPtr> inner;
        for(UInt32 aspect = 0; aspect < ThreadManager::getNumAspects(); ++aspect)
            inner.ptr.getAspectCPtr(aspect)->onDraw = [](DrawActionBase *action, Viewport *) {
                const Color3f color =
                    SolidBackgroundPtr::dcast(FieldContainerPtr(action->getBackground()))->getColor();
                clearTo(color[0], color[1], color[2]);
            };
        const Held<FBOForegroundPtr> fbo;
        const Held<ForegroundGroupPtr> group;
        const Held<OculusRiftFilterPtr> filter;
        const Held<DisplayFilterForegroundPtr> lens;
        const Held<PBOGrabForegroundPtr> grabWindow, grabTexture;
        filter->setWidth(96);
        filter->setHeight(40);
        endEditCP(filter.ptr);
        lens->editMFFilter()->push_back(filter.ptr);
        endEditCP(lens.ptr);
        fbo->setForeground(inner.ptr);
        fbo->editMFTextures()->push_back(textures[0]);
        fbo->setTextureResizeMode(1);
        endEditCP(fbo.ptr);
        grabWindow->setImage(picture.ptr);
        grabWindow->setNumPBOs(2);
        endEditCP(grabWindow.ptr);
        grabTexture->setImage(texels.ptr);
        grabTexture->setSourceTexture(textures[0]);
        grabTexture->setNumPBOs(0);
        endEditCP(grabTexture.ptr);
        group->editMFForegrounds()->setValues({fbo.ptr, lens.ptr, grabWindow.ptr, grabTexture.ptr});
        endEditCP(group.ptr);

        const Held<PerspectiveCameraPtr> camera;
        const Held<SolidBackgroundPtr> background;
        const Held<ViewportPtr> port;
        background->setAlpha(1.f);
        background->setColor(Color3f(0, 1, 0));
        endEditCP(background.ptr);
        port->setCamera(camera.ptr);
        port->setRoot(makeCoredNode<Group>());
        port->setBackground(background.ptr);
        port->getForegrounds().push_back(group.ptr);
        endEditCP(port.ptr);
        const Held<EGLWindowPtr> window;
        window->resize(width, height);
        window->addPort(port.ptr);

        test::TwoAspects drawing;
        drawing.window = window.ptr;
        drawing.frames = frames;
        drawing.edit = [&](int frame) {
            background->setColor(Color3f(Real32(frame) / frames, 1, 0));
            endEditCP(background.ptr);
            filter->setLeftEye(frame % 2 == 0);
            endEditCP(filter.ptr, OculusRiftFilter::LeftEyeFieldMask);
            const TextureChunkPtr next = textures[frame / 3 % 2];
            fbo->editMFTextures()->setValues({next});
            endEditCP(fbo.ptr, FBOForeground::TexturesFieldMask);
            grabTexture->setSourceTexture(next);
            endEditCP(grabTexture.ptr, PBOGrabForeground::SourceTextureFieldMask);
        };
        drawing.look = [&](int) {
            pictures.push_back(bytesOf(picture.ptr));
            textureBytes.push_back(bytesOf(texels.ptr));
        };
        drawing.run("foregrounds");

        const auto at = [](const std::vector<UInt8> &bytes, int x, int y) {
            const std::size_t i = 4 * std::size_t(y * width + x);
            return i + 3 < bytes.size()
                       ? test::RgbaImage::Pixel{bytes[i], bytes[i + 1], bytes[i + 2], bytes[i + 3]}
                       : test::RgbaImage::Pixel{9, 9, 9, 9};
        };
        for(int frame = 0; frame < frames; ++frame)
        {
            SCOPED_TRACE(frame);
            // The texture holds this frame's colour, in the window's size.
            const std::vector<UInt8> &texture = textureBytes[std::size_t(frame)];
            ASSERT_EQ(texture.size(), std::size_t(4 * width * height));
            const int red = int(std::lround(255.0 * frame / frames));
            EXPECT_NEAR(at(texture, 3, 3)[0], red, 1);
            EXPECT_EQ(at(texture, width - 1, height - 1)[1], 255);
            if(frame == 0)
                continue;

            // The picture is the lens's of the frame before: coloured in the middle, and more of the eye's
            // outer side is black than of the inner one.
            const std::vector<UInt8> &shown = pictures[std::size_t(frame)];
            EXPECT_NEAR(at(shown, width / 2, height / 2)[0], std::lround(255.0 * (frame - 1) / frames), 1);
            EXPECT_EQ(at(shown, width / 2, height / 2)[1], 255);
            const bool left = (frame - 1) % 2 == 0;
            int leftBlack = 0, rightBlack = 0;
            for(int y = 0; y < height; ++y)
                for(int x = 0; x < width / 2; ++x)
                {
                    leftBlack += at(shown, x, y)[1] == 0 ? 1 : 0;
                    rightBlack += at(shown, width - 1 - x, y)[1] == 0 ? 1 : 0;
                }
            EXPECT_GT(leftBlack + rightBlack, 0);
            EXPECT_EQ(leftBlack > rightBlack, left) << leftBlack << " and " << rightBlack;
        }
    }
    Thread::getCurrentChangeList()->clearAll();
}

namespace
{

/// A window over an empty scene in one colour, with foregrounds, which nobody has drawn yet.
struct Plain
{
    Held<PerspectiveCameraPtr> camera;
    Held<SolidBackgroundPtr> background;
    Held<ViewportPtr> port;
    Held<EGLWindowPtr> window;

    explicit Plain(const std::vector<ForegroundPtr> &foregrounds)
    {
        setColor(0, 0, 0);
        port->setCamera(camera.ptr);
        port->setRoot(makeCoredNode<Group>());
        port->setBackground(background.ptr);
        for(const ForegroundPtr &foreground : foregrounds)
            port->getForegrounds().push_back(foreground);
        endEditCP(port.ptr);
        window->resize(width, height);
        window->addPort(port.ptr);
    }
    void setColor(Real32 red, Real32 green, Real32 blue)
    {
        background->setColor(Color3f(red, green, blue));
        background->setAlpha(1.f);
        endEditCP(background.ptr);
    }
};

} // namespace

TEST(ForegroundThreadTest, FilesHoldTheFramesForWhichTheApplicationGaveTheirNames)
{
    namespace fs = std::filesystem;
    ASSERT_TRUE(osgInit(0, nullptr));
    const fs::path folder = fs::temp_directory_path() / ("tessaly-threads-" + std::to_string(::getpid()));
    fs::create_directories(folder);
    const auto file = [&](int frame) { return (folder / (std::to_string(frame) + ".png")).string(); };
    {
        const Held<ScreenDumpForegroundPtr> dump;
        Plain plain({dump.ptr});
        test::TwoAspects drawing;
        drawing.window = plain.window.ptr;
        drawing.frames = 9;
        // The names that are taken off come back, or the next edit would ask for them again.
        drawing.takesBack = true;
        drawing.edit = [&](int frame) {
            plain.setColor(Real32(frame) / 15.f, 1, 0);
            if(frame % 4 != 0)
                return;
            EXPECT_TRUE(dump->getMFFilenames()->empty()) << frame;
            // For this frame and the next.
            dump->getMFFilenames()->setValues({file(frame), file(frame + 1)});
            endEditCP(dump.ptr, ScreenDumpForeground::FilenamesFieldMask);
        };
        drawing.look = [](int) {};
        drawing.run("screen dumps");
        for(const int frame : {0, 1, 4, 5, 8})
        {
            SCOPED_TRACE(frame);
            test::RgbaImage written;
            ASSERT_TRUE(test::readPng(file(frame), written));
            ASSERT_EQ(written.width, width);
            ASSERT_EQ(written.height, height);
            EXPECT_EQ(written.at(5, 7), (test::RgbaImage::Pixel{std::uint8_t(frame * 17), 255, 0, 255}));
        }
        EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 5);
    }
    Thread::getCurrentChangeList()->clearAll();
    fs::remove_all(folder);
}

TEST(ForegroundThreadTest, AnotherAspectGrabsFilteredPicturesOfTheListThatTheApplicationEdits)
{
    ASSERT_TRUE(osgInit(0, nullptr));
    {
        // Swaps red and blue; exact on bytes.
        const Held<ImprovedColorDisplayFilterPtr> swap;
        swap->setGamma(1.f);
        swap->setMatrix(Matrix(0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1));
        swap->editMFTable()->setValues({Vec3f(0, 0, 0), Vec3f(1, 1, 1)});
        endEditCP(swap.ptr);
        const Held<OculusRiftFilter2Ptr> lens;
        const Held<DisplayFilterForegroundPtr> filters;
        filters->editMFFilter()->setValues({swap.ptr, lens.ptr});
        endEditCP(filters.ptr);
        const Held<ImagePtr> picture;
        const Held<PBOGrabForegroundPtr> grab;
        grab->setImage(picture.ptr);
        endEditCP(grab.ptr);
        // A left half in another colour: where it ends tells where the lens's centre is.
        const Held<TestForegroundPtr> half;
        for(UInt32 aspect = 0; aspect < ThreadManager::getNumAspects(); ++aspect)
            half.ptr.getAspectCPtr(aspect)->onDraw = [](DrawActionBase *, Viewport *port) {
                glEnable(GL_SCISSOR_TEST);
                glScissor(0, 0, width / 2, height);
                clearTo(0, 1, 0);
                port->activateSize();
            };
        const Held<ForegroundGroupPtr> group;
        Plain plain({group.ptr});

        std::vector<std::vector<UInt8>> pictures;
        test::TwoAspects drawing;
        drawing.window = plain.window.ptr;
        drawing.frames = 8;
        drawing.edit = [&](int frame) {
            plain.setColor(1, 0, Real32(frame) / 15.f);
            lens->setLeftEye(frame % 2 == 0);
            endEditCP(lens.ptr, OculusRiftFilter2::LeftEyeFieldMask);
            // Later the filters leave the group.
            if(frame < 6)
                group->editMFForegrounds()->setValues({half.ptr, filters.ptr, grab.ptr});
            else
                group->editMFForegrounds()->setValues({half.ptr, grab.ptr});
            endEditCP(group.ptr);
        };
        drawing.look = [&](int) { pictures.push_back(bytesOf(picture.ptr)); };
        drawing.run("filters");

        ASSERT_EQ(pictures.size(), 8u);
        for(int frame = 0; frame < 8; ++frame)
        {
            SCOPED_TRACE(frame);
            const std::vector<UInt8> &bytes = pictures[std::size_t(frame)];
            ASSERT_EQ(bytes.size(), std::size_t(4 * width * height));
            const UInt8 *const row = bytes.data() + std::size_t(4 * width * (height / 2));
            const int red = frame < 6 ? frame * 17 : 255, blue = frame < 6 ? 255 : frame * 17;
            // Right of the middle is the colour of the background.
            const UInt8 *const pixel = row + 4 * (width * 3 / 4);
            EXPECT_NEAR(pixel[0], red, 1);
            EXPECT_EQ(pixel[1], 0);
            EXPECT_NEAR(pixel[2], blue, 1);
            // The picture shrinks towards the lens's centre, right of the middle for the left eye: so the
            // edge between the halves moves to the right for it and to the left for the other.
            int edge = 0;
            while(edge < width && !(row[4 * edge + 1] < 128 && row[4 * edge + 2] + row[4 * edge] > 128))
                ++edge;
            const double centre = frame % 2 == 0 ? 0.57265 : 0.42735;
            // Where the warped coordinate is 0.5, near the centre: theta = 2 (u - centre), s = 0.39002.
            double u = 0.5;
            for(int k = 0; k < 50; ++k)
            {
                const double q = 4 * (u - centre) * (u - centre);
                u = centre + (0.5 - centre) / (2 * 0.39002 * (1 + 0.22 * q + 0.24 * q * q));
            }
            EXPECT_NEAR(edge, frame < 6 ? u * width : width / 2.0, 1.0);
        }
    }
    Thread::getCurrentChangeList()->clearAll();
}
