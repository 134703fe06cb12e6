#ifndef TESTS_TESSALY_DROPLET_VIEWPORTSCENE_H
#define TESTS_TESSALY_DROPLET_VIEWPORTSCENE_H

/// \file
/// A window with the viewport of the simulation, frame by frame, and a look at its textures.

#include "DropletScene.h"

#include <cstdlib>

#include <Tessaly/OSGDropletFlowViewport.h>

namespace droplet_test
{

/// DEBUG_DROPFLOW is set as long as this lives.
struct DebugDropflow
{
    DebugDropflow() { setenv("DEBUG_DROPFLOW", "", 1); }
    ~DebugDropflow() { unsetenv("DEBUG_DROPFLOW"); }
    DebugDropflow(const DebugDropflow &) = delete;
    DebugDropflow &operator=(const DebugDropflow &) = delete;
};

/// A viewport whose fields are set as if no edit had been ended yet. A step adds -0.125 to the velocity of
/// every empty cell: a force of -0.125 along the bitangent, over a density of 0.01, times 0.01, not damped.
struct Frames
{
    DebugDropflow debug;
    Stage stage;
    Held<osg::ChunkMaterialPtr> material;
    Held<osg::NodePtr> top{osg::makeCoredNode<osg::Group>()};
    osg::NodePtr object = makeObject(material);
    Held<osg::DropletFlowViewportPtr> viewport;

    explicit Frames(int matMode = 0)
    {
        top->addChild(object);
        viewport->setMatMode(matMode);
        viewport->setRoot(object);
        viewport->setMaterial(material);
        viewport->setSurfaceMapSize(osg::Vec2f(16, 16));
        viewport->setPerturbAngle(0.0f);
        viewport->setForce(osg::Vec3f(0, -0.125f, 0));
        viewport->setTimeStep(0.01);
        viewport->setTimeDelay(1.0);
        viewport->setFluidViscosity(1000.0f);
        // The clock is the host's.
        viewport->setDirty(false);
        viewport->setTime(100.0);
        stage.window->addPort(viewport.ptr);
    }
    ~Frames()
    {
        stage.window->subPort(osg::ViewportPtr(viewport.ptr));
        stage.window->activate();
    }

    void frame(int count = 1)
    {
        for(int i = 0; i < count; ++i)
            stage.window->render(stage.action.get());
        stage.window->activate();
    }
    /// The frame that makes the simulation, and the one that bakes and runs the first step.
    void start() { frame(2); }
    void edited(osg::BitVector fields) { osg::endEditCP(viewport.ptr, fields); }
    void setTime(osg::Time time)
    {
        viewport->setTime(time);
        edited(osg::DropletFlowViewport::TimeFieldMask);
    }
    /// The next frame, a second of the host's clock later: one step.
    void secondLater()
    {
        setTime(viewport->getTime() + 1.0);
        frame();
    }

    osg::UInt32 numChunks() { return material->getChunks().size(); }
    /// Of the planes under the top, in their order: first and second surface map, splat, normals, tangents,
    /// noise.
    osg::TextureChunkPtr shown(osg::UInt32 index)
    {
        const osg::NodePtr plane = top->getChild(1 + index)->getChild(0)->getChild(0);
        const osg::MaterialPtr paint = osg::GeometryPtr::dcast(plane->getCore())->getMaterial();
        return osg::TextureChunkPtr::dcast(osg::ChunkMaterialPtr::dcast(paint)->getChunk(0));
    }
    Map map(osg::UInt32 index) { return stage.read(shown(index)); }
    double speed() { return double(map(0).at(8, 8)[1]); }
    /// How many steps have run, as long as nothing but the clock has changed.
    int steps() { return int(std::lround(speed() / -0.125)); }
};

} // namespace droplet_test

#endif
