/// \file
/// What a step of the droplet simulation costs, in units of copying its map twice.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <random>
#include <vector>

#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGFBOViewport.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGTextureChunk.h>

#include <droplet/DropletFlow.h>
#include <droplet/DropletFlowContext.h>
#include <droplet/DropletText.h>

#include "Quiet.h"

using namespace osg;

namespace
{

constexpr Int32 side = 512;
constexpr int stepsPerTiming = 10;

const char *const copyFragmentText = R"(uniform sampler2D surfaceMap;
varying vec2 texCoord;

void main()
{
    gl_FragColor = texture2D(surfaceMap, texCoord);
}
)";

/// A window, a simulation whose map is full of moving liquid, and two passes that copy one of its maps into
/// the other, built as the passes of the simulation are.
class Scene
{
  public:
    Scene()
    {
        addRefCP(_window);
        _window->resize(16, 16);
        _window->init();
        _window->activate();
        _window->frameInit();
        _action->setWindow(_window.getCPtr());
        DropletFlowContext *const context = DropletFlowContext::get();
        context->setRender(_window, _action.get());

        addRefCP(_object);
        _flow.reset(new DropletFlow(_object, NullFC, side, side, 0, NullFC));
        _flow->bakeSurfaceMaps(0.52f);
        fillMap();
        for(UInt32 i = 0; i < 2; ++i)
        {
            const SHLChunkPtr shader = context->makeShader(tessaly::flowVertexText, copyFragmentText);
            shader->setUniformParameter("surfaceMap", Int32(0));
            endEditCP(shader, SHLChunk::ParametersFieldMask);
            const NodePtr quad = context->makeQuad({shader, _flow->getSurfaceMap(1 - i)});
            _copies[i] = context->makeViewport(quad, _flow->getSurfaceMap(i), NullFC);
            addRefCP(_copies[i]);
        }
        // Programs are compiled and textures transferred ahead of all timing.
        secondsOfSteps();
        secondsOfCopies(true);
        secondsOfCopies(false);
    }
    Scene(const Scene &) = delete;
    Scene &operator=(const Scene &) = delete;
    ~Scene()
    {
        for(FBOViewportPtr &copy : _copies)
            clearRefCP(copy);
        _flow.reset();
        clearRefCP(_object);
        _window->frameExit();
        clearRefCP(_window);
    }

    double secondsOfSteps()
    {
        return seconds([this] { _flow->tick(nullptr, 0.0, 0); });
    }
    /// \param withDepthTest as a viewport draws, or without, as a step does it
    double secondsOfCopies(bool withDepthTest)
    {
        if(!withDepthTest)
            glDisable(GL_DEPTH_TEST);
        const double result = seconds([this] {
            for(const FBOViewportPtr &copy : _copies)
                DropletFlowContext::get()->render(copy);
        });
        glEnable(GL_DEPTH_TEST);
        return result;
    }

  private:
    template <class WorkT>
    double seconds(WorkT work)
    {
        glFinish();
        const auto begin = std::chrono::steady_clock::now();
        for(int i = 0; i < stepsPerTiming; ++i)
            work();
        glFinish();
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count() /
               stepsPerTiming;
    }

    void fillMap()
    {
        std::mt19937 random(7);
        std::uniform_real_distribution<float> speed(-2.0f, 2.0f), volume(0.0f, 0.5f);
        std::vector<float> map;
        for(Int32 i = 0; i < side * side; ++i)
            map.insert(map.end(), {speed(random), speed(random), volume(random), 0.0f});
        const TextureChunkPtr texture = _flow->getSurfaceMap(1);
        _window->validateGLObject(texture->getGLId());
        glBindTexture(GL_TEXTURE_2D, _window->getGLObjectId(texture->getGLId()));
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, side, side, GL_RGBA, GL_FLOAT, map.data());
        glBindTexture(GL_TEXTURE_2D, 0);
    }

    WindowPtr _window = EGLWindow::create();
    std::unique_ptr<RenderAction> _action{RenderAction::create()};
    NodePtr _object = makePlane(1.0f, 1.0f, 1, 1);
    std::unique_ptr<DropletFlow> _flow;
    FBOViewportPtr _copies[2];
};

double medianOf(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// Each iteration times steps and copies, one right behind the other; figures are the medians. The limit is
/// on the copies as viewports draw them; those without a depth test are the least that two passes can cost.
void dropletStep(benchmark::State &state)
{
    Scene scene;
    std::vector<double> steps, copies, bareCopies, ratios, bareRatios;
    for(auto _ : state)
    {
        steps.push_back(scene.secondsOfSteps());
        copies.push_back(scene.secondsOfCopies(true));
        bareCopies.push_back(scene.secondsOfCopies(false));
        state.SetIterationTime(steps.back());
        ratios.push_back(steps.back() / copies.back());
        bareRatios.push_back(steps.back() / bareCopies.back());
    }
    state.counters["ratio"] = medianOf(ratios);
    state.counters["limit"] = 1.5;
    state.counters["ratio_bare"] = medianOf(bareRatios);
    state.counters["step_ms"] = 1e3 * medianOf(steps);
    state.counters["copies_ms"] = 1e3 * medianOf(copies);
    state.counters["bare_copies_ms"] = 1e3 * medianOf(bareCopies);
    state.SetLabel(reinterpret_cast<const char *>(glGetString(GL_RENDERER)));
}

BENCHMARK(dropletStep)->UseManualTime()->Iterations(30)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    const QuietLog quiet;
    // Passes run on this thread, in which they are timed.
    setenv("LP_NUM_THREADS", "0", 0);
    if(!osgInit(argc, argv))
        return 1;
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    osgExit();
    return 0;
}
