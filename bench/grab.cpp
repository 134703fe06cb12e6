/// \file
/// What grabbing a frame costs, straight and through rings of several lengths: in units of the frame without
/// it, and in allocations.

#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <new>

#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGMaterial.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <Tessaly/OSGPBOGrabForeground.h>
#include <Tessaly/Tessaly.h>

#include "Quiet.h"

using namespace osg;

namespace
{

constexpr int width = 1280;
constexpr int height = 720;

std::atomic<std::uint64_t> allocations(0);

double now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// A window with a ball, whose frames are grabbed where `grab` is active.
struct Scene
{
    explicit Scene(Int32 ring)
    {
        const GeometryPtr shape = makeLatLongSphereGeo(64, 64, 1.f);
        shape->setMaterial(getDefaultMaterial());
        endEditCP(shape);
        Matrix eye;
        MatrixLookAt(eye, Pnt3f(0, 0, 4), Pnt3f(0, 0, 0), Vec3f(0, 1, 0));
        const TransformPtr place = Transform::create();
        place->setMatrix(eye);
        const NodePtr beacon = makeNodeFor(place);
        const NodePtr root = makeNodeFor(shape);
        root->addChild(beacon);
        const PerspectiveCameraPtr camera = PerspectiveCamera::create();
        camera->setBeacon(beacon);
        camera->setFov(0.7f);
        camera->setNear(0.1f);
        camera->setFar(10.f);
        endEditCP(camera);
        grab->setImage(Image::create());
        grab->setNumPBOs(ring);
        endEditCP(grab);
        const ViewportPtr viewport = Viewport::create();
        viewport->setCamera(camera);
        viewport->setRoot(root);
        viewport->setBackground(SolidBackground::create());
        viewport->getForegrounds().push_back(grab);
        endEditCP(viewport);
        addRefCP(window);
        window->resize(width, height);
        window->addPort(viewport);
        window->init();
    }
    ~Scene() { subRefCP(window); }

    /// Seconds until the calling thread has a frame behind it, and what it allocated. The card is idle at
    /// first, and without grabbing it is waited for: what is grabbed straight has to wait, too.
    double frame(bool grabbed, std::uint64_t &count)
    {
        grab->setActive(grabbed);
        window->activate();
        glFinish();
        const std::uint64_t before = allocations;
        const double begin = now();
        window->render(action.get());
        if(!grabbed)
            glFinish();
        const double taken = now() - begin;
        count += allocations - before;
        return taken;
    }

    const PBOGrabForegroundPtr grab = PBOGrabForeground::create();
    const EGLWindowPtr window = EGLWindow::create();
    const std::unique_ptr<RenderAction> action{RenderAction::create()};
};

/// Frames with and without grabbing in turn, so that whatever slows the machine slows both.
void grabFrames(benchmark::State &state)
{
    Scene scene{Int32(state.range(0))};
    std::uint64_t ignored = 0, plainCount = 0, grabbedCount = 0;
    for(int i = 0; i < 8; ++i)
        scene.frame(i % 2 == 0, ignored);
    double plain = 0, grabbed = 0;
    for(auto _ : state)
    {
        plain += scene.frame(false, plainCount);
        const double taken = scene.frame(true, grabbedCount);
        grabbed += taken;
        state.SetIterationTime(taken);
    }
    state.counters["of a frame without"] = grabbed / plain;
    state.counters["allocations added"] =
        (double(grabbedCount) - double(plainCount)) / double(state.iterations());
}

BENCHMARK(grabFrames)
    ->Name("a frame, grabbed through a ring of")
    ->Arg(0)
    ->Arg(1)
    ->Arg(2)
    ->Arg(3)
    ->Arg(5)
    ->Iterations(40)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace

// Not inlined: where the compiler sees malloc and free through them, it takes them for a mismatch.
__attribute__((noinline)) void *operator new(std::size_t size)
{
    ++allocations;
    if(void *const memory = std::malloc(size != 0 ? size : 1))
        return memory;
    throw std::bad_alloc();
}

__attribute__((noinline)) void operator delete(void *memory) noexcept
{
    std::free(memory);
}

__attribute__((noinline)) void operator delete(void *memory, std::size_t) noexcept
{
    std::free(memory);
}

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if(benchmark::ReportUnrecognizedArguments(argc, argv) || !osgInit(argc, argv))
        return 1;
    initTessalyExtention();
    const QuietLog quiet;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return osgExit() ? 0 : 1;
}
