#include <array>
#include <cstdlib>
#include <functional>

#include <OpenSG/OSGChangeList.h>
#include <OpenSG/OSGGeoColors4ub.h>
#include <OpenSG/OSGGeoIndicesUI16.h>
#include <OpenSG/OSGGeoPositions4f.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGThread.h>
#include <Tessaly/OSGRenderParams.h>

#include "PrimitiveScene.h"

using namespace osg;

namespace
{

using Squares = std::vector<UInt32>;

/// Half transparent, in the order of the list: not sorted by depth.
const std::vector<Pnt3f> stackPoints{Pnt3f(0.f, 0.1f, -3.f), Pnt3f(0.f, 0.4f, 5.f), Pnt3f(0.f, -0.3f, 1.f),
                                     Pnt3f(0.f, 0.2f, -8.f)};
const std::vector<Color4f> stackColors{Color4f(1.f, 0.f, 0.f, 0.5f), Color4f(0.f, 1.f, 0.f, 0.5f),
                                       Color4f(0.f, 0.f, 1.f, 0.5f), Color4f(1.f, 1.f, 0.f, 0.5f)};
const Squares fromFar{3, 0, 2, 1}; // seen from +z
const Squares fromBehind{1, 2, 0, 3};
const Squares byHeight{2, 0, 3, 1};

/// What blending these squares one after the other over black gives.
std::array<double, 3> blended(const Squares &order)
{
    std::array<double, 3> color{0., 0., 0.};
    for(const UInt32 square : order)
        for(UInt32 c = 0; c < 3; ++c)
            color[c] = 0.5 * color[c] + 0.5 * double(stackColors[square][c]);
    return color;
}

/// Each blending rounds to a byte, and a byte of error is halved by the next: 2 in all.
::testing::AssertionResult shows(const test::RgbaImage::Pixel &pixel, const Squares &order)
{
    const auto expected = blended(order);
    for(std::size_t c = 0; c < 3; ++c)
        if(std::abs(double(pixel[c]) - 255. * expected[c]) > 2.)
            return ::testing::AssertionFailure()
                   << "(" << int(pixel[0]) << " " << int(pixel[1]) << " " << int(pixel[2]) << ") and not ("
                   << 255. * expected[0] << " " << 255. * expected[1] << " " << 255. * expected[2] << ")";
    return ::testing::AssertionSuccess();
}

/// Half transparent squares in a stack, ordered by distance, and a window that shows them.
class Stack
{
  public:
    explicit Stack(UInt32 mode = 1) : core(makeSquares(stackPoints, stackColors, mode)), view(core.ptr)
    {
        core->setMaterial(view.material);
        core->setDrawOrder(1);
        core->setThresholdVal(-1.f);
        endEditCP(core);
    }

    Held<SortedPrimitivesPtr> core;
    PrimitiveView view;
};

struct FreshParams
{
    ~FreshParams() { setRenderParams(0); }
};

} // namespace

TEST(SortedPrimitivesGl, ABlendedStackShowsTheOrder)
{
    for(const UInt32 mode : {0u, 1u})
    {
        SCOPED_TRACE(mode);
        Stack stack(mode);
        EXPECT_TRUE(shows(stack.view.render(), fromFar));
        EXPECT_EQ(drawnSquares(stack.core), fromFar);
        stack.core->setSort(0);
        stack.view.moveEye(1.f);
        EXPECT_TRUE(shows(stack.view.render(), fromBehind));
        // By height.
        stack.core->setSort(0);
        stack.core->setThresholdVal(0.f);
        EXPECT_TRUE(shows(stack.view.render(), byHeight));
        EXPECT_EQ(drawnSquares(stack.core), byHeight);
        // The order of the list.
        stack.core->setSort(0);
        stack.core->setDrawOrder(0);
        EXPECT_TRUE(shows(stack.view.render(), Squares{0, 1, 2, 3}));
        // Without the first quarter.
        stack.core->setSort(0);
        stack.core->setLowerBound(0.25f);
        EXPECT_TRUE(shows(stack.view.render(), Squares{1, 2, 3}));
        stack.core->setSort(0);
        stack.core->setDrawOrder(7);
        stack.core->setThresholdVal(-1.f);
        stack.view.moveEye(0.f);
        EXPECT_TRUE(shows(stack.view.render(), Squares{0, 2, 1}));
        EXPECT_EQ(stack.core->getIndicesSize(), mode == 1 ? 12u : 18u);
        stack.core->setSort(0);
        stack.core->setLowerBound(1.f);
        EXPECT_TRUE(shows(stack.view.render(), Squares{}));
        EXPECT_EQ(stack.core->getIndicesSize(), 0u);
    }
}

TEST(SortedPrimitivesGl, TheTransformAboveTheCoreTurnsTheOrder)
{
    Stack stack;
    Matrix turned;
    turned.setRotate(Quaternion(Vec3f(0.f, 1.f, 0.f), 3.14159265f));
    stack.view.place->setMatrix(turned);
    endEditCP(stack.view.place);
    EXPECT_TRUE(shows(stack.view.render(), fromBehind));
    // The action that does not sort knows the matrix from the node.
    stack.core->setSort(0);
    stack.core->setIndicesSize(0);
    EXPECT_TRUE(shows(stack.view.draw(), fromBehind));
    EXPECT_EQ(stack.core->getSort(), 1u);
}

TEST(SortedPrimitivesGl, EveryFourthDrawingMakesANewOrder)
{
    Stack stack;
    stack.view.render();
    EXPECT_EQ(stack.core->getSort(), 1u);
    stack.view.moveEye(1.f);
    for(const UInt32 next : {2u, 3u, 0u})
    {
        EXPECT_TRUE(shows(stack.view.render(), fromFar)) << next;
        EXPECT_EQ(stack.core->getSort(), next);
    }
    EXPECT_TRUE(shows(stack.view.render(), fromBehind));
    EXPECT_EQ(stack.core->getSort(), 1u);
}

TEST(SortedPrimitivesGl, WhatDrawingWritesIsAnEditOfTheCoreAndOfTheDrawBuffer)
{
    Stack stack;
    stack.core->setLowerBound(1.f); // the buffer's edit is closed though nothing is copied
    const auto editedBy = [](const FieldContainerPtr &container) {
        for(const ChangeList::ChangedEntry &entry : Thread::getCurrentChangeList()->getChanged())
            if(entry.first == container.getFieldContainerId())
                return entry.second;
        return BitVector(0);
    };
    Thread::getCurrentChangeList()->clearAll();
    stack.view.render();
    EXPECT_EQ(editedBy(stack.core),
              SortedPrimitives::SortFieldMask | SortedPrimitives::IndicesSizeFieldMask);
    EXPECT_EQ(editedBy(stack.core->getIndices()), FieldBits::AllFields);
    Thread::getCurrentChangeList()->clearAll();
    stack.view.render();
    EXPECT_EQ(editedBy(stack.core), BitVector(SortedPrimitives::SortFieldMask));
    EXPECT_EQ(editedBy(stack.core->getIndices()), 0u);
    Thread::getCurrentChangeList()->clearAll();
}

TEST(SortedPrimitivesGl, EffectsPassesDrawWhatIsThere)
{
    Stack stack;
    stack.view.action->setEffectsPass(true);
    EXPECT_TRUE(shows(stack.view.render(), Squares{}));
    EXPECT_EQ(stack.core->getSort(), 0u);
    stack.view.action->setEffectsPass(false);
    EXPECT_TRUE(shows(stack.view.render(), fromFar));
    stack.view.action->setEffectsPass(true);
    stack.core->setSort(0);
    stack.view.moveEye(1.f);
    EXPECT_TRUE(shows(stack.view.render(), fromFar));
    EXPECT_EQ(stack.core->getSort(), 0u);
}

TEST(SortedPrimitivesGl, BitZeroOfTheRenderParametersFreezesTheOrder)
{
    const FreshParams fresh;
    Stack stack;
    stack.view.render();
    stack.core->setSort(0);
    stack.view.moveEye(1.f);
    for(const UInt32 params : {1u, 0xFFFFFFFFu})
    {
        setRenderParams(params);
        EXPECT_TRUE(shows(stack.view.render(), fromFar));
        EXPECT_EQ(stack.core->getSort(), 0u);
    }
    setRenderParams(0xFFFFFFFEu); // the other bits mean nothing
    EXPECT_TRUE(shows(stack.view.render(), fromBehind));
    EXPECT_EQ(stack.core->getSort(), 1u);
}

TEST(SortedPrimitivesGl, TheListsOrderIsRefilledAtEachFourthDrawing)
{
    Stack stack;
    stack.core->setDrawOrder(0);
    stack.core->setThresholdVal(7.f); // which the order by the view would warn of
    const LogCapture log;
    EXPECT_TRUE(shows(stack.view.render(), Squares{0, 1, 2, 3}));
    std::vector<Int32> reversed;
    for(const Int32 square : {3, 2, 1, 0})
        for(Int32 corner = 0; corner < 4; ++corner)
            reversed.push_back(4 * square + corner);
    stack.core->setIndexArray(&reversed);
    for(int i = 0; i < 3; ++i)
        EXPECT_TRUE(shows(stack.view.render(), Squares{0, 1, 2, 3}));
    EXPECT_TRUE(shows(stack.view.render(), Squares{3, 2, 1, 0}));
    EXPECT_EQ(log.count(LOG_WARNING), 0u);
}

TEST(SortedPrimitivesGl, OccludersMoveTheSplit)
{
    Stack stack;
    stack.core->setThresholdVal(0.5f);
    stack.view.render();
    EXPECT_EQ(drawnSquares(stack.core), (Squares{3, 0, 2, 1})); // two by distance, then heights -0.3, 0.4
    stack.core->setThresholdVal(1.f);
    stack.core->setSort(0);
    stack.view.render();
    EXPECT_EQ(drawnSquares(stack.core), byHeight);
    // The eye is at (0, 0, 50): this hides all of them.
    stack.core->getOccluderSpheres().push_back(Vec4f(0.f, 0.f, 45.f, 1.f));
    endEditCP(stack.core);
    stack.core->setSort(0);
    stack.view.render();
    EXPECT_EQ(drawnSquares(stack.core), fromFar);
}

TEST(SortedPrimitivesGl, WithoutTheExtensionsThePictureIsTheSame)
{
    for(const char *const name : {"GL_ARB_multitexture", "GL_EXT_draw_range_elements"})
    {
        Window::maskExtension(name);
        {
            Stack stack;
            EXPECT_TRUE(shows(stack.view.render(), fromFar)) << name;
            EXPECT_TRUE(shows(stack.view.render(), fromFar)) << name;
        }
        Window::unmaskAll();
    }
}

TEST(SortedPrimitivesGl, LeavesUnitOneAsTheClientsAndNoArrayEnabled)
{
    Stack stack;
    stack.view.render();
    ASSERT_TRUE(stack.view.window->activate());
    const auto activeTexture = reinterpret_cast<PFNGLCLIENTACTIVETEXTUREARBPROC>(
        stack.view.window->getFunction(SortedPrimitives::_funcClientActiveTextureARB));
    ASSERT_NE(activeTexture, nullptr);
    GLint unit = 0;
    glGetIntegerv(GL_CLIENT_ACTIVE_TEXTURE, &unit);
    EXPECT_EQ(unit, GLint(GL_TEXTURE1));
    for(const GLenum array : {GL_VERTEX_ARRAY, GL_NORMAL_ARRAY, GL_COLOR_ARRAY, GL_TEXTURE_COORD_ARRAY})
        EXPECT_FALSE(glIsEnabled(array)) << array;
    activeTexture(GL_TEXTURE0);
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_COORD_ARRAY));
}

TEST(SortedPrimitivesGl, TangentsReachShadersAsCoordinatesOfUnitOne)
{
    const char *const vertexProgram = "varying vec3 seen;\n"
                                      "void main(void)\n"
                                      "{\n"
                                      "    seen = gl_MultiTexCoord1.xyz;\n"
                                      "    seen.z += gl_MultiTexCoord0.y;\n"
                                      "    gl_Position = ftransform();\n"
                                      "}\n";
    const char *const fragmentProgram = "varying vec3 seen;\n"
                                        "void main(void) { gl_FragColor = vec4(seen, 1.0); }\n";
    for(const bool masked : {false, true})
    {
        if(masked)
            Window::maskExtension("GL_ARB_multitexture");
        {
            const Held<SortedPrimitivesPtr> core(
                makeSquares({Pnt3f(0.f, 0.f, 0.f)}, {Color4f(1.f, 1.f, 1.f, 1.f)}, 1));
            for(UInt32 i = 0; i < 4; ++i)
            {
                core->getTangents()->setValue(Vec3f(1.f, 0.4f, 0.f), i);
                core->getTexCoords()->setValue(Vec2f(0.f, 0.8f), i);
            }
            PrimitiveView view(core.ptr, false);
            const SHLChunkPtr shader = SHLChunk::create();
            shader->setVertexProgram(vertexProgram);
            shader->setFragmentProgram(fragmentProgram);
            endEditCP(shader);
            view.material->addChunk(shader);
            endEditCP(view.material);
            core->setMaterial(view.material);
            const test::RgbaImage::Pixel pixel = view.render();
            // Without multitexture the tangents are not sent.
            EXPECT_EQ(int(pixel[0]), masked ? 0 : 255);
            EXPECT_EQ(int(pixel[1]), masked ? 0 : 102);
            EXPECT_EQ(int(pixel[2]), 204);
        }
        Window::unmaskAll();
    }
}

TEST(SortedPrimitivesGl, ColoursMayBeBytes)
{
    const Held<SortedPrimitivesPtr> core(
        makeSquares({Pnt3f(0.f, 0.f, 0.f)}, {Color4f(1.f, 1.f, 1.f, 1.f)}, 0));
    const GeoColors4ubPtr bytes = GeoColors4ub::create();
    bytes->editField().resize(4, Color4ub(10, 20, 30, 255));
    core->setColors(bytes);
    PrimitiveView view(core.ptr, false);
    core->setMaterial(view.material);
    const test::RgbaImage::Pixel pixel = view.render();
    EXPECT_EQ(int(pixel[0]), 10);
    EXPECT_EQ(int(pixel[1]), 20);
    EXPECT_EQ(int(pixel[2]), 30);
}

TEST(SortedPrimitivesGl, CountsAQuarterOfTheIndicesAsTrianglesForBothModes)
{
    const auto counted = [](const SortedPrimitivesPtr &core) {
        PrimitiveView view(core);
        core->setMaterial(view.material);
        view.render();
        StatCollector *const statistics = view.action->getStatistics();
        return std::make_pair(statistics->getElem(Drawable::statNTriangles)->get(),
                              statistics->getElem(Drawable::statNVertices)->get());
    };
    const std::vector<Pnt3f> three{Pnt3f(0.f, 0.f, 0.f), Pnt3f(0.f, 0.f, 1.f), Pnt3f(0.f, 0.f, 2.f)};
    const std::vector<Color4f> colors(stackColors.begin(), stackColors.begin() + 3);
    const Held<SortedPrimitivesPtr> quads(makeSquares(three, colors, 1));
    EXPECT_EQ(counted(quads), std::make_pair(Int32(3), Int32(12)));
    const Held<SortedPrimitivesPtr> triangles(
        makeSquares({three[0], three[1]}, {colors[0], colors[1]}, 0));
    EXPECT_EQ(triangles->getIndexArray().size(), 12u);
    EXPECT_EQ(counted(triangles), std::make_pair(Int32(3), Int32(8)));
}

TEST(SortedPrimitivesGl, ATriangleOfFourIndicesGetsRoomForSix)
{
    const Held<SortedPrimitivesPtr> core(
        makeSquares({Pnt3f(0.f, 0.f, 0.f)}, {Color4f(1.f, 1.f, 1.f, 1.f)}, 1));
    core->setMode(0);
    PrimitiveView view(core.ptr, false);
    core->setMaterial(view.material);
    view.render();
    EXPECT_EQ(drawn(core), (Squares{0, 1, 2, 3, 3, 3}));
    EXPECT_EQ(core->getIndices()->getSize(), 6u);
    EXPECT_EQ(int(view.read(0.5, -0.5)[0]), 255);
    EXPECT_EQ(int(view.read(-0.5, 0.5)[0]), 0);
}

TEST(SortedPrimitivesGl, WhatDoesNotFitTogetherIsToldAndNotDrawn)
{
    const auto toldBy = [](const std::function<void(const SortedPrimitivesPtr &)> &spoil) {
        Stack stack;
        spoil(stack.core.ptr);
        const LogCapture log;
        EXPECT_TRUE(shows(stack.view.render(), Squares{}));
        return log.text(LOG_WARNING);
    };
    const auto setIndex = [](Int32 value) {
        return [value](const SortedPrimitivesPtr &core) { core->getIndexArray(5) = value; };
    };
    EXPECT_EQ(toldBy(setIndex(16)), "SortedPrimitives: index 16 is none of 16 vertices; nothing is drawn\n");
    EXPECT_EQ(toldBy(setIndex(-2)), "SortedPrimitives: index -2 is none of 16 vertices; nothing is drawn\n");
    EXPECT_EQ(toldBy([](const SortedPrimitivesPtr &core) { core->getNormals()->resize(15); }),
              "SortedPrimitives: a property has 15 values for 16 vertices; nothing is drawn\n");
    EXPECT_EQ(toldBy([](const SortedPrimitivesPtr &core) { core->getColors()->resize(0); }),
              "SortedPrimitives: a property has 0 values for 16 vertices; nothing is drawn\n");
    EXPECT_EQ(toldBy([](const SortedPrimitivesPtr &core) { core->getPositions()->resize(0); }),
              "SortedPrimitives: index 15 is none of 0 vertices; nothing is drawn\n");
    const std::string kinds = "SortedPrimitives: positions, normals and tangents must have three floats, "
                              "texCoords two, colors three components or four; nothing is drawn\n";
    EXPECT_EQ(toldBy([](const SortedPrimitivesPtr &core) {
                  const GeoPositions4fPtr four = GeoPositions4f::create();
                  four->resize(16);
                  core->setPositions(four);
              }),
              kinds);
    EXPECT_EQ(toldBy([](const SortedPrimitivesPtr &core) {
                  const GeoIndicesUI16Ptr small = GeoIndicesUI16::create();
                  small->resize(16);
                  core->setIndices(small);
              }),
              "SortedPrimitives: indices must be of UInt32; nothing is drawn\n");
}

TEST(SortedPrimitivesGl, PrimitivesWithoutARangeAreToldAndTheOthersDrawn)
{
    Stack stack;
    const std::vector<Int32> four{0, 4, 8, 12}; // one short
    stack.core->setOffsetArray(&four);
    stack.core->setDrawOrder(0);
    const LogCapture log;
    EXPECT_TRUE(shows(stack.view.render(), Squares{0, 1, 2}));
    EXPECT_EQ(log.text(LOG_WARNING),
              "SortedPrimitives: 1 primitives have no part of indexArray by offsetArray and are left out\n");
}

TEST(SortedPrimitivesGl, ALowerBoundBelowZeroIsToldAndTakenAsZero)
{
    Stack stack;
    stack.core->setLowerBound(-2.f);
    const LogCapture log;
    EXPECT_TRUE(shows(stack.view.render(), fromFar));
    EXPECT_EQ(log.text(LOG_WARNING), "SortedPrimitives: lowerBound -2 is taken as 0\n");
}

TEST(SortedPrimitivesGl, ABufferThatHasShrunkIsToldAndNotDrawn)
{
    Stack stack;
    stack.view.render();
    stack.core->getIndices()->resize(7);
    LogCapture log;
    EXPECT_TRUE(shows(stack.view.render(), Squares{}));
    EXPECT_EQ(log.text(LOG_WARNING), "SortedPrimitives: indices has 7 entries of 16; nothing is drawn\n");
    // The next order makes room again.
    stack.core->setSort(0);
    EXPECT_TRUE(shows(stack.view.render(), fromFar));
}

TEST(SortedPrimitivesGl, AreDrawnByAnotherAspect)
{
    Thread::getCurrentChangeList()->clearAll();
    {
        Stack stack;
        ChangeList *const changes = Thread::getCurrentChangeList();
        struct Job
        {
            Stack *stack;
            ChangeList *changes;
            test::RgbaImage::Pixel pixels[2];
        } job{&stack, changes, {}};
        const auto onAspectOne = [&job](void (*work)(void *)) {
            Thread *const thread = Thread::get("aspect one");
            thread->runFunction(work, 1, &job);
            Thread::join(thread);
        };
        stack.view.window->deactivate();
        onAspectOne([](void *argument) {
            Job &work = *static_cast<Job *>(argument);
            work.changes->applyToCurrent();
            work.pixels[0] = work.stack->view.render();
            work.stack->view.window->deactivate();
            Thread::getCurrentChangeList()->clearAll();
        });
        changes->clearAll();
        EXPECT_TRUE(shows(job.pixels[0], fromFar));
        EXPECT_EQ(stack.core->getSort(), 0u); // the other aspect's counts
        stack.view.moveEye(1.f);
        stack.core->setSort(0);
        endEditCP(stack.core, SortedPrimitives::SortFieldMask);
        onAspectOne([](void *argument) {
            Job &work = *static_cast<Job *>(argument);
            work.changes->applyToCurrent();
            work.pixels[1] = work.stack->view.render();
            work.stack->view.window->deactivate();
            Thread::getCurrentChangeList()->clearAll();
        });
        EXPECT_TRUE(shows(job.pixels[1], fromBehind));
    }
    Thread::getCurrentChangeList()->clearAll();
}
