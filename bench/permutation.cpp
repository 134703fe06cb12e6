/// \file
/// What choosing a shader permutation costs, in units of activating the plain chunk, and what a MultiCore
/// costs; and which of it allocates.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGShearedStereoCameraDecorator.h>
#include <OpenSG/OSGViewport.h>
#include <Tessaly/OSGMultiCore.h>
#include <Tessaly/OSGPermutationSHLChunk.h>

#include "Quiet.h"

using namespace osg;

namespace
{

std::size_t allocations = 0; ///< of this program, which has one thread

} // namespace

// Not inlined, or the compiler takes malloc and delete for a mismatch.
[[gnu::noinline]] void *operator new(std::size_t size)
{
    ++allocations;
    if(void *const memory = std::malloc(size != 0 ? size : 1))
        return memory;
    std::abort();
}

[[gnu::noinline]] void operator delete(void *memory) noexcept
{
    std::free(memory);
}

[[gnu::noinline]] void operator delete(void *memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace
{

/// A window, and the same program in a plain chunk and in a permutation chunk.
struct Bench
{
    EGLWindowPtr window = EGLWindow::create();
    SHLChunkPtr plain = SHLChunk::create();
    ShearedStereoCameraDecoratorPtr camera = ShearedStereoCameraDecorator::create();
    ViewportPtr port = Viewport::create();
    PermutationSHLChunkPtr permutation = PermutationSHLChunk::create();
    std::unique_ptr<DrawAction> action{DrawAction::create()};
    MultiCorePtr multi = MultiCore::create();
    NodePtr node = makeNodeFor(multi);

    Bench()
    {
        addRefCP(window);
        addRefCP(plain);
        addRefCP(permutation);
        addRefCP(node);
        window->resize(16, 16);
        window->init();
        window->activate();
        window->frameInit();
        action->setWindow(window.getCPtr());
        // What a viewport sets: the camera is asked for its eye.
        camera->setDecoratee(PerspectiveCamera::create());
        addRefCP(camera);
        addRefCP(port);
        action->setCamera(camera.getCPtr());
        action->setViewport(port.getCPtr());
        for(const SHLChunkPtr &chunk : {plain, SHLChunkPtr(permutation)})
        {
            chunk->setVertexProgram("varying vec3 normal;\n"
                                    "void main()\n{\n    normal = gl_NormalMatrix * gl_Normal;\n"
                                    "    gl_Position = ftransform();\n}\n");
            chunk->setFragmentProgram(
                "uniform vec3 color;\nuniform float gain;\nuniform float bias;\nvarying vec3 normal;\n"
                "void main()\n{\n    gl_FragColor = vec4(color * (gain * normal.z + bias), 1.0);\n}\n");
            chunk->setUniformParameter("color", Vec3f(1, 0.5f, 0.25f));
            chunk->setUniformParameter("gain", 0.75f);
            chunk->setUniformParameter("bias", 0.25f);
            endEditCP(chunk);
        }
        permutation->setPermutationParameter("SHADOWS", "1\n");
        permutation->setPermutationParameter("QUALITY", "high\n");
        endEditCP(permutation);
        for(int i = 0; i < 4; ++i)
            multi->addCore(Group::create());
        endEditCP(multi);
        // With a child ahead no core skips the ones behind it.
        node->addChild(makeCoredNode<Group>());
        endEditCP(node);
        action->setActNode(node);
    }
    ~Bench()
    {
        endEditCP(permutation);
        subRefCP(permutation);
        subRefCP(plain);
        subRefCP(node);
        subRefCP(camera);
        subRefCP(port);
        window->frameExit();
        action.reset();
        subRefCP(window);
    }
};

Bench *bench = nullptr;

void activate(const SHLChunkPtr &chunk)
{
    static_cast<StateChunk &>(*chunk).activate(bench->action.get(), 0);
}

template <class Work>
void measure(benchmark::State &state, Work &&work)
{
    for(int i = 0; i < 100; ++i)
        work();
    std::size_t count = 0;
    for(auto _ : state)
    {
        const std::size_t before = allocations;
        work();
        count += allocations - before;
    }
    state.counters["allocations"] = benchmark::Counter(double(count), benchmark::Counter::kAvgIterations);
}

void plainActivation(benchmark::State &state)
{
    measure(state, [] { activate(bench->plain); });
}

void permutationActivation(benchmark::State &state)
{
    measure(state, [] { activate(bench->permutation); });
}

void multiCoreOfFour(benchmark::State &state)
{
    measure(state, [] {
        bench->action->callEnter(bench->node);
        bench->action->callLeave(bench->node);
    });
}

/// The fastest of many rounds, so that what else runs on the machine counts least.
template <class Work>
double secondsOf(Work &&work)
{
    double best = 1e30;
    for(int round = 0; round < 200; ++round)
    {
        const auto begin = std::chrono::steady_clock::now();
        for(int i = 0; i < 200; ++i)
            work();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
        best = std::min(best, taken.count() / 200);
    }
    return best;
}

} // namespace

BENCHMARK(plainActivation);
BENCHMARK(permutationActivation);
BENCHMARK(multiCoreOfFour);

/// Behind the tables one line with the ratio; fails where it is above 2 or something allocates that should
/// not.
int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if(benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    const QuietLog quiet;
    osgInit(0, nullptr);
    bool good = true;
    {
        Bench made;
        bench = &made;
        benchmark::RunSpecifiedBenchmarks();

        const auto allocated = [](auto &&work) {
            work();
            const std::size_t before = allocations;
            work();
            return allocations - before;
        };
        const double plain = secondsOf([] { activate(bench->plain); });
        const double chosen = secondsOf([] { activate(bench->permutation); });
        const std::size_t plainCount = allocated([] { activate(bench->plain); });
        const std::size_t chosenCount = allocated([] { activate(bench->permutation); });
        const std::size_t multiCount = allocated([] {
            bench->action->callEnter(bench->node);
            bench->action->callLeave(bench->node);
        });
        std::printf("permutation %.0f ns, plain %.0f ns: ratio %.2f (at most 2)\n", chosen * 1e9, plain * 1e9,
                    chosen / plain);
        std::printf("allocations: plain %zu, permutation %zu (the text more), MultiCore of four %zu (none)\n",
                    plainCount, chosenCount, multiCount);
        good = chosen <= 2 * plain && chosenCount <= plainCount + 1 && multiCount == 0;
        std::printf("%s\n", good ? "as promised" : "NOT as promised");
    }
    osgExit();
    return good ? 0 : 1;
}
