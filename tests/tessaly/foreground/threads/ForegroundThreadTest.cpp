/// \file
/// Foregrounds and filters that one thread edits while another draws them on an aspect of its own.

#include "tessaly/foreground/ForegroundScene.h"

#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGChangeList.h>
#include <OpenSG/OSGDisplayFilterForeground.h>
#include <OpenSG/OSGThread.h>
#include <Tessaly/OSGFBOForeground.h>
#include <Tessaly/OSGForegroundGroup.h>
#include <Tessaly/OSGOculusRiftFilter.h>
#include <Tessaly/OSGPBOGrabForeground.h>

OSG_USING_NAMESPACE
using namespace foreground_test;

namespace
{

constexpr int frames = 18;
constexpr int width = 48;
constexpr int height = 40;

struct Shared
{
    EGLWindowPtr window;
    ImagePtr picture; ///< of the window, a frame late
    ImagePtr texels;
    std::vector<std::vector<UInt8>> pictures, textures;
};

std::vector<UInt8> bytesOf(const ImagePtr &image)
{
    const UInt8 *const data = image->getData();
    return data != nullptr ? std::vector<UInt8>(data, data + image->getSize()) : std::vector<UInt8>();
}

void drawFrames(void *argument)
{
    Shared &shared = *static_cast<Shared *>(argument);
    Barrier *const barrier = Barrier::get("foregrounds");
    std::unique_ptr<RenderAction> action;
    for(int frame = 0; frame < frames; ++frame)
    {
        barrier->enter(2);
        ThreadManager::getAppThread()->getChangeList()->applyToCurrent();
        barrier->enter(2);
        if(action == nullptr)
        {
            action.reset(RenderAction::create());
            shared.window->init();
        }
        shared.window->render(action.get());
        shared.pictures.push_back(bytesOf(shared.picture));
        shared.textures.push_back(bytesOf(shared.texels));
        Thread::getCurrentChangeList()->clearAll();
    }
    action.reset();
    shared.window->deactivate();
}

} // namespace

TEST(ForegroundThreadTest, AnotherAspectDrawsWhatTheApplicationEdits)
{
    ASSERT_TRUE(osgInit(0, nullptr));
    {
        Shared shared;
        const Held<ImagePtr> picture, texels;
        shared.picture = picture.ptr;
        shared.texels = texels.ptr;

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
        shared.window = window.ptr;
        window->resize(width, height);
        window->addPort(port.ptr);

        Thread *const drawer = Thread::get("drawer of foregrounds");
        ASSERT_TRUE(drawer->runFunction(&drawFrames, 1, &shared));
        Barrier *const barrier = Barrier::get("foregrounds");
        for(int frame = 0; frame < frames; ++frame)
        {
            barrier->enter(2);
            barrier->enter(2);
            Thread::getCurrentChangeList()->clearAll();
            // The next frame's: another colour, eye and texture.
            background->setColor(Color3f(Real32(frame + 1) / frames, 1, 0));
            endEditCP(background.ptr);
            filter->setLeftEye((frame + 1) % 2 == 0);
            endEditCP(filter.ptr, OculusRiftFilter::LeftEyeFieldMask);
            const TextureChunkPtr next = textures[(frame + 1) / 3 % 2];
            fbo->editMFTextures()->setValues({next});
            endEditCP(fbo.ptr, FBOForeground::TexturesFieldMask);
            grabTexture->setSourceTexture(next);
            endEditCP(grabTexture.ptr, PBOGrabForeground::SourceTextureFieldMask);
        }
        Thread::join(drawer);

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
            const std::vector<UInt8> &texture = shared.textures[std::size_t(frame)];
            ASSERT_EQ(texture.size(), std::size_t(4 * width * height));
            const int red = int(std::lround(255.0 * frame / frames));
            EXPECT_NEAR(at(texture, 3, 3)[0], red, 1);
            EXPECT_EQ(at(texture, width - 1, height - 1)[1], 255);
            if(frame == 0)
                continue;

            // The picture is the lens's of the frame before: coloured in the middle, and more of the eye's
            // outer side is black than of the inner one.
            const std::vector<UInt8> &shown = shared.pictures[std::size_t(frame)];
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
