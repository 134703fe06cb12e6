/// \file
/// A simulation that one thread edits while another draws it on an aspect of its own.

#include "DropletScene.h"

#include "support/TwoAspects.h"

#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGPointLight.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGViewport.h>
#include <Tessaly/OSGDropletFlowViewport.h>

OSG_USING_NAMESPACE
using namespace droplet_test;

TEST(DropletThreads, AnotherAspectDrawsTheLiquidThatTheApplicationEdits)
{
    {
        const Held<ChunkMaterialPtr> material;
        const Held<NodePtr> top(makeCoredNode<Group>());
        // Lit from the side, so that no highlight covers the liquid's colour.
        const PointLightPtr light = PointLight::create();
        light->setPosition(Pnt3f(20, 0, 1));
        light->setBeacon(top);
        endEditCP(light);
        const NodePtr lit = makeNodeFor(light);
        const NodePtr object = makeObject(material, 4.0f);
        lit->addChild(object);
        top->addChild(lit);
        endEditCP(lit);
        endEditCP(top.ptr);

        const Held<DropletFlowViewportPtr> droplets;
        droplets->setRoot(object);
        droplets->setMaterial(material);
        droplets->setMatMode(1);
        droplets->setSurfaceMapSize(Vec2f(32, 32));
        droplets->setForce(Vec3f(0, 0, 0));
        droplets->setTimeDelay(0.5);
        droplets->setDirty(false);
        droplets->setFluidColor(Color4f(1, 0, 0, 1));
        endEditCP(droplets.ptr);

        const TransformPtr place = Transform::create();
        place->getMatrix().setTranslate(0, 0, 4);
        endEditCP(place);
        const Held<NodePtr> beacon(makeNodeFor(place));
        const Held<PerspectiveCameraPtr> camera;
        camera->setBeacon(beacon);
        camera->setFov(0.5f);
        camera->setNear(1.0f);
        camera->setFar(10.0f);
        endEditCP(camera.ptr);
        const Held<SolidBackgroundPtr> background;
        background->setColor(Color3f(0, 0, 1));
        endEditCP(background.ptr);
        const Held<ImagePtr> picture;
        picture->set(Image::OSG_RGB_PF, 1, 1);
        endEditCP(picture.ptr);
        const Held<GrabForegroundPtr> grab;
        grab->setImage(picture);
        endEditCP(grab.ptr);
        const Held<ViewportPtr> shown;
        shown->setCamera(camera);
        shown->setRoot(top);
        shown->setBackground(background);
        shown->getForegrounds().push_back(grab.ptr);
        endEditCP(shown.ptr);
        const Held<EGLWindowPtr> window;
        window->resize(32, 32);
        window->addPort(droplets.ptr);
        window->addPort(shown);

        // What the edits ahead of the first frame changed throws the first simulation away: the second runs
        // from frame 3 on.
        constexpr int wet = 5, green = 7, dry = 9, anew = 11, wetAgain = 14, frames = 16;
        test::TwoAspects drawing;
        drawing.window = window.ptr;
        drawing.frames = frames;
        drawing.edit = [&](int frame) {
            droplets->setTime(1.0 + frame);
            BitVector edited = DropletFlowViewport::TimeFieldMask;
            if(frame == wet || frame == wetAgain)
            {
                // The middle under one large drop.
                droplets->getSources().push_back(Vec3f(0.5f, 0.5f, 1.0f));
                edited |= DropletFlowViewport::SourcesFieldMask;
            }
            if(frame == green)
            {
                droplets->setFluidColor(Color4f(0, 1, 0, 1));
                edited |= DropletFlowViewport::FluidColorFieldMask;
            }
            if(frame == dry)
            {
                droplets->getSources().clear();
                edited |= DropletFlowViewport::SourcesFieldMask;
            }
            if(frame == anew)
            {
                droplets->setSurfaceMapSize(Vec2f(16, 16));
                edited |= DropletFlowViewport::SurfaceMapSizeFieldMask;
            }
            endEditCP(droplets.ptr, edited);
        };
        std::vector<std::array<int, 3>> middle;
        drawing.look = [&](int) {
            const UInt8 *const pixel = picture->getData() + (16 * 32 + 16) * 3;
            middle.push_back({pixel[0], pixel[1], pixel[2]});
        };
        LogCapture log;
        drawing.run("droplets");

        ASSERT_EQ(middle.size(), std::size_t(frames));
        for(int frame = 0; frame < frames; ++frame)
        {
            SCOPED_TRACE(frame);
            const std::array<int, 3> &pixel = middle[std::size_t(frame)];
            if((frame >= wet && frame < dry) || frame >= wetAgain)
            {
                // A light at right angles to the surface leaves a fifth of the colour, opaque.
                EXPECT_NEAR(pixel[0], frame < green ? 51 : 0, 6);
                EXPECT_NEAR(pixel[1], frame < green ? 0 : 51, 6);
                EXPECT_LT(pixel[2], 12);
            }
            else
            {
                EXPECT_EQ(pixel, (std::array<int, 3>{0, 0, 255}));
            }
        }
        EXPECT_EQ(log.text(LOG_WARNING), "");
        DropletFlowContext::get()->setRender(NullFC, nullptr);
    }
    Thread::getCurrentChangeList()->clearAll();
}
