/// \file
/// A surface that one thread edits and another one, of another aspect, draws.

#include "GluSpy.h"
#include "NurbsScene.h"

#include <OpenSG/OSGThread.h>

OSG_USING_NAMESPACE
using namespace nurbs_test;

namespace
{

constexpr int frames = 6;

struct Shared
{
    NurbsView *view = nullptr;
    int covered[frames] = {};
};

/// Draws each state of the scene that the application hands over.
void drawFrames(void *argument)
{
    Shared &shared = *static_cast<Shared *>(argument);
    Barrier *const barrier = Barrier::get("nurbs");
    for(int &covered : shared.covered)
    {
        barrier->enter(2);
        ThreadManager::getAppThread()->getChangeList()->applyToCurrent();
        barrier->enter(2);
        covered = coveredPixels(shared.view->render());
        Thread::getCurrentChangeList()->clearAll();
    }
    shared.view->window()->deactivate();
}

} // namespace

TEST(NurbsThreads, AnEditOfOneAspectIsTessellatedAnewInTheOther)
{
    GluSpy::the().clear();
    const Held<NurbsSurfacePtr> core;
    fill(core.ptr, square(), false);
    core->setMaterial(white(false));
    endEditCP(core.ptr);
    NurbsView view(core.ptr, 64);
    ASSERT_TRUE(view.window()->deactivate());
    Shared shared;
    shared.view = &view;

    Thread *const thread = Thread::get("nurbs");
    ASSERT_TRUE(thread->runFunction(&drawFrames, 1, &shared));
    Barrier *const barrier = Barrier::get("nurbs");
    for(int frame = 0; frame < frames; ++frame)
    {
        // From frame to frame the square becomes narrower, by its control points alone.
        const float half = 1.f - 0.125f * float(frame);
        const GeoPositions3fPtr points = GeoPositions3fPtr::dcast(core->getControlPoint());
        for(Pnt3f &p : points->getField())
            p[0] = p[0] < 0 ? -half : half;
        endEditCP(points);
        barrier->enter(2);
        barrier->enter(2);
        Thread::getCurrentChangeList()->clearAll();
    }
    Thread::join(thread);
    for(int frame = 0; frame < frames; ++frame)
        EXPECT_EQ(shared.covered[frame], 64 * 8 * (8 - frame)) << frame;
    EXPECT_TRUE(core->getPositions() == NullFC) << "this aspect has tessellated nothing";
    EXPECT_TRUE(core->getDirty());
}
