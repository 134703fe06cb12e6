#include "CoreScene.h"

#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGIntersectActor.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGMemoryDataHandler.h>
#include <Tessaly/OSGLayer.h>
#include <Tessaly/OSGMultiCore.h>

#include <cstdint>
#include <cstdio>
#include <map>

using namespace osg;
using namespace cores_test;

namespace
{

/// The names of the handlers, which are for actions only.
struct Handlers : MultiCore
{
    using MultiCore::intersectActorEnter;
    using MultiCore::intersectActorLeave;
    using MultiCore::intersectEnter;
    using MultiCore::intersectLeave;
    using MultiCore::renderEnter;
    using MultiCore::renderLeave;
};

/// An action that draws nothing.
class PlainAction : public Action
{
  protected:
    FunctorStore *getDefaultEnterFunctors() override { return nullptr; }
    FunctorStore *getDefaultLeaveFunctors() override { return nullptr; }
};

/// Notes which cores are entered ("+a") and left ("-a"), and answers for them.
struct Witness
{
    std::map<const NodeCore *, char> names;
    std::map<char, Action::ResultE> enterAnswers;
    std::map<char, Action::ResultE> leaveAnswers;
    std::string story;
    std::string culling; ///< at each call, '1' for on

    void listen(Action *action)
    {
        for(const FieldContainerType *type : {&Group::getClassType(), &Transform::getClassType()})
        {
            action->registerEnterFunction(*type, [this](NodeCore *core, Action *running) {
                return note(core, running, '+', enterAnswers);
            });
            action->registerLeaveFunction(*type, [this](NodeCore *core, Action *running) {
                return note(core, running, '-', leaveAnswers);
            });
        }
    }

    Action::ResultE note(NodeCore *core, Action *action, char what,
                         const std::map<char, Action::ResultE> &answers)
    {
        const auto found = names.find(core);
        if(found == names.end())
            return Action::Continue;
        story += what;
        story += found->second;
        if(const DrawActionBase *const drawing = dynamic_cast<DrawActionBase *>(action))
            culling += drawing->getFrustumCulling() ? '1' : '0';
        const auto answer = answers.find(found->second);
        return answer == answers.end() ? Action::Continue : answer->second;
    }

    std::string take()
    {
        std::string result;
        result.swap(story);
        return result;
    }
};

/// A MultiCore of the cores a, b, c above a child x, all of them noted.
struct MultiScene
{
    Held<MultiCorePtr> multi;
    Held<NodePtr> root{makeNodeFor(multi.ptr)};
    Witness witness;

    MultiScene()
    {
        for(const char name : {'a', 'b', 'c'})
        {
            const GroupPtr core = Group::create();
            witness.names[core.getCPtr()] = name;
            multi->addCore(core);
        }
        const GroupPtr below = Group::create();
        witness.names[below.getCPtr()] = 'x';
        root->addChild(makeNodeFor(below));
        endEditCP(root.ptr);
        endEditCP(multi.ptr);
    }

    /// How a RenderAction and a DrawAction go; both have to go the same way.
    std::string story(Action::ResultE *result = nullptr)
    {
        const std::unique_ptr<RenderAction> render(RenderAction::create());
        witness.listen(render.get());
        const Action::ResultE rendered = render->apply(root.ptr);
        const std::string first = witness.take();
        const std::unique_ptr<DrawAction> draw(DrawAction::create());
        witness.listen(draw.get());
        const Action::ResultE drawn = draw->apply(root.ptr);
        EXPECT_EQ(witness.take(), first);
        EXPECT_EQ(rendered, drawn);
        if(result != nullptr)
            *result = rendered;
        return first;
    }
};

/// GL behind the actions that draw.
class MultiCoreTest : public ::testing::Test
{
  protected:
    void SetUp() override
    {
        window->resize(16, 16);
        window->init();
        ASSERT_TRUE(window->activate());
    }

    Held<EGLWindowPtr> window;
};

std::string hex(const void *address)
{
    char text[32];
    std::snprintf(text, sizeof(text), "0x%llx",
                  static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(address)));
    return text;
}

} // namespace

TEST_F(MultiCoreTest, CoresAreEnteredInOrderAndLeftInReverseAroundTheChildren)
{
    MultiScene scene;
    EXPECT_EQ(scene.story(), "+a+b+c+x-x-c-b-a");
    EXPECT_EQ(scene.story(), "+a+b+c+x-x-c-b-a") << "the second time too";
}

TEST_F(MultiCoreTest, ASkipEndsTheWayInButNotTheWayToTheChildrenNorTheWayOut)
{
    MultiScene scene;
    scene.witness.enterAnswers['b'] = Action::Skip;
    EXPECT_EQ(scene.story(), "+a+b+x-x-c-b-a");
    scene.witness.enterAnswers.clear();
    scene.witness.leaveAnswers['b'] = Action::Skip;
    EXPECT_EQ(scene.story(), "+a+b+c+x-x-c-b");
}

TEST_F(MultiCoreTest, AQuitEndsTheDispatchAndTheTraversal)
{
    MultiScene scene;
    Action::ResultE result = Action::Continue;
    scene.witness.enterAnswers['b'] = Action::Quit;
    EXPECT_EQ(scene.story(&result).substr(0, 4), "+a+b");
    EXPECT_EQ(result, Action::Quit);
    EXPECT_EQ(scene.story().find('x'), std::string::npos);
    scene.witness.enterAnswers.clear();
    scene.witness.leaveAnswers['c'] = Action::Quit;
    EXPECT_EQ(scene.story(&result), "+a+b+c+x-x-c");
    EXPECT_EQ(result, Action::Quit);
}

TEST_F(MultiCoreTest, TheHandlersAnswerAsTold)
{
    MultiScene scene;
    PlainAction action;
    scene.witness.listen(&action);
    const std::pair<Action::ResultE, Action::ResultE> rows[] = {{Action::Continue, Action::Continue},
                                                                {Action::Skip, Action::Continue},
                                                                {Action::Break, Action::Break},
                                                                {Action::Quit, Action::Quit}};
    for(const auto &[answer, expected] : rows)
    {
        scene.witness.enterAnswers['c'] = answer;
        scene.witness.leaveAnswers['a'] = answer;
        EXPECT_EQ((scene.multi.ptr.getCPtr()->*(&Handlers::renderEnter))(&action), expected);
        EXPECT_EQ(scene.witness.take(), "+a+b+c");
        EXPECT_EQ((scene.multi.ptr.getCPtr()->*(&Handlers::renderLeave))(&action), expected);
        EXPECT_EQ(scene.witness.take(), "-c-b-a");
    }
}

TEST_F(MultiCoreTest, FrustumCullingIsOffWhileTheCoresRunAndAsBeforeBehindThem)
{
    MultiScene scene;
    for(const bool culling : {true, false})
    {
        const std::unique_ptr<RenderAction> action(RenderAction::create());
        action->setFrustumCulling(culling);
        scene.witness.listen(action.get());
        scene.witness.culling.clear();
        action->apply(scene.root.ptr);
        EXPECT_EQ(scene.witness.culling, culling ? "00011000" : "00000000") << scene.witness.story;
        EXPECT_EQ(action->getFrustumCulling(), culling);
        scene.witness.enterAnswers['a'] = Action::Quit;
        action->apply(scene.root.ptr);
        EXPECT_EQ(action->getFrustumCulling(), culling);
        scene.witness.enterAnswers.clear();
    }
}

TEST_F(MultiCoreTest, WithoutCoresEveryHandlerGoesOn)
{
    const Held<MultiCorePtr> multi;
    MultiCore *const core = multi.ptr.getCPtr();
    const std::unique_ptr<RenderAction> action(RenderAction::create());
    EXPECT_EQ((core->*(&Handlers::renderEnter))(action.get()), Action::Continue);
    EXPECT_EQ((core->*(&Handlers::renderLeave))(action.get()), Action::Continue);
    EXPECT_TRUE(action->getFrustumCulling());
    EXPECT_EQ((core->*(&Handlers::intersectEnter))(action.get()), Action::Continue);
    EXPECT_EQ((core->*(&Handlers::intersectLeave))(action.get()), Action::Continue);
    ActorFunctorArgument argument(nullptr, nullptr, NullFC);
    EXPECT_EQ(int((core->*(&Handlers::intersectActorEnter))(argument)), 0);
    EXPECT_EQ(int((core->*(&Handlers::intersectActorLeave))(argument)), 0);
}

TEST_F(MultiCoreTest, ContainedCoresDrawAndMove)
{
    // Two transformations that add up, around a quad.
    const Held<MultiCorePtr> multi;
    const Held<NodePtr> root(makeNodeFor(multi.ptr));
    for(const Real32 x : {5.0f, -3.0f})
    {
        const TransformPtr place = Transform::create();
        Matrix matrix;
        matrix.setTranslate(x, 0, 0);
        place->setMatrix(matrix);
        endEditCP(place);
        multi->addCore(place);
    }
    endEditCP(multi.ptr);
    root->addChild(quadAt(0.0f));
    endEditCP(root.ptr);
    ColumnView view(root.ptr);
    // Both are entered although the first one's place alone is out of sight.
    EXPECT_EQ(view.rendered(), "001");
    EXPECT_EQ(view.drawn(), "001");
    EXPECT_EQ(view.rendered(), "001");
    // The cores add nothing to the volume or the matrix of the node.
    Matrix toWorld;
    root->getChild(0)->getToWorld(toWorld);
    EXPECT_EQ(toWorld, Matrix());
    Pnt3f low;
    Pnt3f high;
    root->getVolume(true).getBounds(low, high);
    EXPECT_FLOAT_EQ(high[0], 0.5f);
}

TEST_F(MultiCoreTest, AContainedGeometryIsDrawn)
{
    const Held<MultiCorePtr> multi;
    const Held<NodePtr> root(makeNodeFor(multi.ptr));
    multi->addCore(quadAt(0.0f)->getChild(0)->getCore());
    endEditCP(multi.ptr);
    root->addChild(quadAt(2.0f));
    endEditCP(root.ptr);
    ColumnView view(root.ptr);
    EXPECT_EQ(view.rendered(), "011");
    EXPECT_EQ(view.drawn(), "011");
}

TEST_F(MultiCoreTest, AContainedLayerSwitchesTheChildrenOfTheNode)
{
    const Held<MultiCorePtr> multi;
    const Held<LayerPtr> layer;
    const Held<NodePtr> root(makeNodeFor(multi.ptr));
    multi->addCore(Group::create());
    multi->addCore(layer.ptr);
    endEditCP(multi.ptr);
    for(const Real32 x : {-2.0f, 0.0f, 2.0f})
        root->addChild(quadAt(x));
    endEditCP(root.ptr);
    for(const int value : {1, 0, 1})
        layer->getVisible().push_back(Int8(value));
    endEditCP(layer.ptr);
    ColumnView view(root.ptr);
    EXPECT_EQ(view.rendered(), "101");
}

TEST_F(MultiCoreTest, PickingSeesTheChildrenAndNotTheCores)
{
    const Held<MultiCorePtr> multi;
    const Held<NodePtr> root(makeNodeFor(multi.ptr));
    multi->addCore(quadAt(0.0f)->getChild(0)->getCore());
    const TransformPtr place = Transform::create();
    Matrix matrix;
    matrix.setTranslate(1, 0, 0);
    place->setMatrix(matrix);
    endEditCP(place);
    multi->addCore(place);
    endEditCP(multi.ptr);
    root->addChild(quadAt(2.0f));
    endEditCP(root.ptr);
    for(const auto &[x, hits] : {std::pair<Real32, bool>{0.1f, false}, {2.1f, true}, {2.9f, false}})
    {
        const Line ray(Pnt3f(x, 0.1f, 5), Vec3f(0, 0, -1));
        const std::unique_ptr<IntersectAction> action(IntersectAction::create(ray));
        action->apply(root.ptr);
        EXPECT_EQ(action->didHit(), hits) << x;
        const std::unique_ptr<IntersectActor> actor(IntersectActor::create());
        const std::unique_ptr<DepthFirstAction> walk(DepthFirstAction::create());
        walk->addActor(actor.get());
        actor->setRay(ray);
        walk->apply(root.ptr);
        EXPECT_EQ(actor->getHit(), hits) << x;
    }
}

TEST(MultiCoreList, OperationsKeepTheListAndItsReferences)
{
    const Held<MultiCorePtr> multi;
    const Held<NodeCorePtr> a(Group::create());
    const Held<NodeCorePtr> b(Group::create());
    const Held<NodeCorePtr> c(Group::create());
    multi->addCore(NullFC);
    multi->insertCore(0, NullFC);
    EXPECT_EQ(multi->getNCores(), 0u);
    EXPECT_EQ(multi->findCore(a.ptr), -1);

    multi->addCore(a.ptr);
    multi->addCore(b.ptr);
    multi->insertCore(0, c.ptr);
    multi->insertCore(3, a.ptr);
    EXPECT_EQ(multi->getCores().getValues(), (std::vector<NodeCorePtr>{c.ptr, a.ptr, b.ptr, a.ptr}));
    EXPECT_EQ(a.ptr.getRefCount(), 3);
    EXPECT_EQ(multi->findCore(a.ptr), 1);
    EXPECT_EQ(multi->findCore(b.ptr), 2);
    EXPECT_TRUE(multi->getCore(2) == b.ptr);

    multi->subCore(a.ptr);
    EXPECT_EQ(multi->getCores().getValues(), (std::vector<NodeCorePtr>{c.ptr, b.ptr, a.ptr}));
    EXPECT_EQ(a.ptr.getRefCount(), 2);
    multi->subCore(3u);
    EXPECT_EQ(multi->getNCores(), 3u);
    multi->subCore(0u);
    EXPECT_EQ(multi->getCores().getValues(), (std::vector<NodeCorePtr>{b.ptr, a.ptr}));
    EXPECT_EQ(c.ptr.getRefCount(), 1);

    multi->replaceCore(2, c.ptr);
    multi->replaceCore(0, NullFC);
    EXPECT_EQ(multi->getCores().getValues(), (std::vector<NodeCorePtr>{b.ptr, a.ptr}));
    multi->replaceCore(0, c.ptr);
    EXPECT_EQ(multi->getCores().getValues(), (std::vector<NodeCorePtr>{c.ptr, a.ptr}));
    EXPECT_EQ(b.ptr.getRefCount(), 1);
    EXPECT_EQ(c.ptr.getRefCount(), 2);
    multi->replaceCore(0, c.ptr);
    EXPECT_EQ(c.ptr.getRefCount(), 2);

    EXPECT_FALSE(multi->replaceCoreBy(b.ptr, a.ptr));
    EXPECT_FALSE(multi->replaceCoreBy(a.ptr, NullFC));
    EXPECT_TRUE(multi->replaceCoreBy(a.ptr, b.ptr));
    EXPECT_EQ(multi->getCores().getValues(), (std::vector<NodeCorePtr>{c.ptr, b.ptr}));
    EXPECT_EQ(a.ptr.getRefCount(), 1);
    endEditCP(multi.ptr);
    EXPECT_EQ(b.ptr.getRefCount(), 2);
    EXPECT_EQ(c.ptr.getRefCount(), 2);
}

TEST(MultiCoreList, AnUnknownCoreIsNamedInTheWarning)
{
    const Held<MultiCorePtr> multi;
    const Held<NodeCorePtr> unknown(Group::create());
    const std::string self = hex(multi.ptr.getCPtr());
    const std::string other = hex(unknown.ptr.getCPtr());
    LogCapture log;
    multi->subCore(unknown.ptr);
    EXPECT_EQ(log.text(LOG_WARNING), "MultiCore(" + self + ")::subCcore: FCPtr " + other + " GroupPtr(" +
                                         other + ") is not one of my cores!\n");
    EXPECT_EQ(log.count(), 1u);
    EXPECT_EQ(unknown.ptr.getRefCount(), 1);
    log.clear();
    multi->subCore(NodeCorePtr());
    EXPECT_EQ(log.text(LOG_WARNING),
              "MultiCore(" + self + ")::subCcore: FCPtr 0x0:NullFC is not one of my cores!\n");
}

TEST(MultiCoreList, EverythingIsLetGoOnceAtTheEnd)
{
    const Held<NodeCorePtr> a(Group::create());
    const Held<NodeCorePtr> b(Group::create());
    const UInt32 before = FieldContainerFactory::the()->getNumContainers();
    {
        const Held<MultiCorePtr> multi;
        multi->addCore(a.ptr);
        multi->getCores().push_back(b.ptr); // counted from the end of the edit on
        EXPECT_EQ(b.ptr.getRefCount(), 1);
        endEditCP(multi.ptr);
        EXPECT_EQ(b.ptr.getRefCount(), 2);
        const Held<FieldContainerPtr> copy(multi->shallowCopy());
        EXPECT_EQ(a.ptr.getRefCount(), 3);
        PlainAction action;
        (multi.ptr.getCPtr()->*(&Handlers::renderEnter))(&action);
        EXPECT_EQ(b.ptr.getRefCount(), 4) << "the carrier holds the last core";
    }
    EXPECT_EQ(a.ptr.getRefCount(), 1);
    EXPECT_EQ(b.ptr.getRefCount(), 1);
    EXPECT_EQ(a->getParents().size(), 0u);
    EXPECT_EQ(b->getParents().size(), 0u);
    EXPECT_EQ(FieldContainerFactory::the()->getNumContainers(), before);
}

TEST(MultiCoreList, EachAspectHasACarrierOfItsOwnAndAllAreLetGo)
{
    const Held<NodeCorePtr> a(Group::create());
    const UInt32 before = FieldContainerFactory::the()->getNumContainers();
    {
        const Held<MultiCorePtr> multi;
        multi->addCore(a.ptr);
        endEditCP(multi.ptr);
        onOtherAspect([&] {
            EXPECT_EQ(multi->getNCores(), 1u);
            EXPECT_EQ(a.ptr.getRefCount(), 2) << "references are counted once for all aspects";
            PlainAction action;
            (multi.ptr.getCPtr()->*(&Handlers::renderEnter))(&action);
            EXPECT_EQ(a->getParents().size(), 1u);
        });
        PlainAction action;
        (multi.ptr.getCPtr()->*(&Handlers::renderEnter))(&action);
        EXPECT_EQ(a.ptr.getRefCount(), 4);
    }
    EXPECT_EQ(a.ptr.getRefCount(), 1);
    Thread::getCurrentChangeList()->clearAll();
    EXPECT_EQ(a.ptr.getRefCount(), 1);
    EXPECT_EQ(FieldContainerFactory::the()->getNumContainers(), before);
}

TEST(MultiCoreList, AChangeOfTheCoresMakesTheVolumeInvalid)
{
    const Held<MultiCorePtr> multi;
    const Held<NodePtr> node(makeNodeFor(multi.ptr));
    node->addChild(quadAt(0.0f));
    endEditCP(node.ptr);
    node->updateVolume();
    EXPECT_TRUE(node->getVolume().isValid());
    endEditCP(multi.ptr, MultiCore::CoresFieldMask);
    EXPECT_FALSE(node->getVolume().isValid());
}

TEST(MultiCoreList, TheFieldIsThatOfTheTable)
{
    const MultiCorePtr multi =
        MultiCorePtr::dcast(FieldContainerFactory::the()->createFieldContainer("MultiCore"));
    ASSERT_TRUE(multi != NullFC);
    const Held<MultiCorePtr> held(multi);
    const FieldContainerType &type = MultiCore::getClassType();
    EXPECT_STREQ(type.getParent()->getCName(), "Group");
    EXPECT_EQ(type.getNumFieldDescs(), Group::getClassType().getNumFieldDescs() + 1);
    const FieldDescription *const field = type.getFieldDescription(3);
    ASSERT_NE(field, nullptr);
    EXPECT_STREQ(field->getCName(), "cores");
    EXPECT_STREQ(field->getTypeName(), "MFNodeCorePtr");
    EXPECT_EQ(field->getFieldMask(), BitVector(8));
    EXPECT_FALSE(field->isInternal());
    EXPECT_EQ(UInt32(MultiCore::NextFieldId), 4u);
    EXPECT_EQ(multi->editMFCores(), multi->getMFCores());

    LogCapture log;
    multi->dump();
    EXPECT_EQ(log.text(LOG_LOG), "Dump Group NI\n") << "it has no line of its own";
    EXPECT_EQ(log.count(), 1u);

    const Held<NodeCorePtr> core(Group::create());
    multi->addCore(core.ptr);
    const Held<MultiCorePtr> target;
    MemoryDataHandler memory;
    multi->copyToBin(memory, MultiCore::CoresFieldMask);
    EXPECT_EQ(memory.getData().size(), 4u + 4u);
    EXPECT_EQ(multi->getBinSize(MultiCore::CoresFieldMask), 8u);
    target->copyFromBin(memory, MultiCore::CoresFieldMask);
    EXPECT_EQ(target->getCores().getValues(), std::vector<NodeCorePtr>{core.ptr});
}
