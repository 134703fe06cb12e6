#include "CoreScene.h"

#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGMemoryDataHandler.h>
#include <Tessaly/OSGLayer.h>

using namespace osg;
using namespace cores_test;

namespace
{

/// The names of the handlers, which are for actions only.
struct Handlers : Layer
{
    using Layer::draw;
    using Layer::intersectEnter;
    using Layer::intersectLeave;
};

void setSwitches(MFInt8 &field, const std::vector<int> &values)
{
    field.clear();
    for(const int value : values)
        field.push_back(Int8(value));
}

/// A layer with three quads, at x = -2, 0, 2, and what tells which children an action visits.
struct LayerScene
{
    Held<LayerPtr> layer;
    Held<NodePtr> root{makeCoredNode<Group>()};
    NodePtr node = makeNodeFor(layer.ptr);
    Action::ResultE answer = Action::Quit;

    explicit LayerScene(int children = 3, Real32 shift = 0.0f)
    {
        for(int i = 0; i < children; ++i)
            node->addChild(quadAt(Real32(2 * i - 2) + shift));
        endEditCP(node);
        root->addChild(node);
        endEditCP(root.ptr);
    }

    void visible(const std::vector<int> &values)
    {
        setSwitches(layer->getVisible(), values);
        endEditCP(layer.ptr, Layer::VisibleFieldMask);
    }
    void pickable(const std::vector<int> &values)
    {
        setSwitches(layer->getPickable(), values);
        endEditCP(layer.ptr, Layer::PickableFieldMask);
    }

    /// Lets an action call the layer's own handler and notes the answer.
    void listen(Action *action)
    {
        action->registerEnterFunction(Layer::getClassType(), [this](NodeCore *core, Action *running) {
            answer = (static_cast<Layer *>(core)->*(&Handlers::draw))(running);
            return answer;
        });
    }

    /// Picks along -z at x; the distance, or -1 without a hit.
    Real32 pick(Real32 x, Real32 from = 5.0f)
    {
        const std::unique_ptr<IntersectAction> action(
            IntersectAction::create(Line(Pnt3f(x, 0, from), Vec3f(0, 0, -1))));
        action->apply(root.ptr);
        return action->didHit() ? action->getHitT() : -1.0f;
    }
};

} // namespace

TEST(Layer, ListsOfEveryLengthSwitchWhatIsDrawn)
{
    const struct
    {
        std::vector<int> visible;
        const char *columns;
    } rows[] = {
        {{}, "111"},           {{1, 0, 1}, "101"},    {{0, 0, 0}, "000"},    {{0}, "011"},
        {{0, 0}, "001"},       {{1, 0}, "101"},       {{1, 1, 1}, "111"},    {{0, 1, 0, 1, 1}, "010"},
        {{-1, 0, 2}, "101"},   {{0, 0, 0, 1}, "000"}, {{0, 0, 1}, "001"},
    };
    LayerScene scene;
    ColumnView view(scene.root.ptr);
    scene.listen(view.render());
    for(const auto &row : rows)
    {
        scene.visible(row.visible);
        scene.answer = Action::Quit;
        EXPECT_EQ(view.rendered(), row.columns);
        EXPECT_EQ(scene.answer, Action::Continue) << "also where nothing is selected";
        EXPECT_EQ(view.drawn(), row.columns);
    }
}

TEST(Layer, WhatIsSwitchedOnIsStillCulledByTheFrustum)
{
    // Quads at x = 2, 4 and 6, of which the last two are out of sight.
    LayerScene scene(3, 4.0f);
    ColumnView view(scene.root.ptr);
    int visited = 0;
    view.render()->registerEnterFunction(Transform::getClassType(), [&visited](NodeCore *, Action *) {
        ++visited;
        return Action::Continue;
    });
    scene.listen(view.render());
    for(const std::vector<int> &values : {std::vector<int>{}, {1}, {1, 1}, {1, 1, 1}, {1, 1, 1, 1}})
    {
        visited = 0;
        scene.visible(values);
        view.rendered();
        EXPECT_EQ(visited, 1) << values.size() << " entries";
        EXPECT_EQ(scene.answer, Action::Continue);
    }
    view.render()->setFrustumCulling(false);
    visited = 0;
    view.rendered();
    EXPECT_EQ(visited, 3);
}

TEST(Layer, OnlyAnEmptyListSkipsWhenNothingIsInSight)
{
    LayerScene scene(3, 100.0f);
    ColumnView view(scene.root.ptr);
    scene.listen(view.render());
    // The group above would cull the layer itself.
    view.render()->registerEnterFunction(Group::getClassType(),
                                         [](NodeCore *, Action *) { return Action::Continue; });
    EXPECT_EQ(view.rendered(), "000");
    EXPECT_EQ(scene.answer, Action::Skip);
    for(const std::vector<int> &values : {std::vector<int>{1}, {1, 1, 1}, {1, 1, 1, 1}})
    {
        scene.visible(values);
        view.rendered();
        EXPECT_EQ(scene.answer, Action::Continue);
    }
}

TEST(Layer, WithoutChildrenAndWithoutAListItGoesOn)
{
    LayerScene scene(0);
    ColumnView view(scene.root.ptr);
    scene.listen(view.render());
    view.render()->registerEnterFunction(Group::getClassType(),
                                         [](NodeCore *, Action *) { return Action::Continue; });
    view.rendered();
    EXPECT_EQ(scene.answer, Action::Continue);
}

TEST(Layer, ListsOfEveryLengthSwitchWhatIsPicked)
{
    const struct
    {
        std::vector<int> pickable;
        const char *columns;
    } rows[] = {
        {{}, "111"},           {{1, 0, 1}, "101"}, {{0, 0, 0}, "000"},       {{0}, "011"},
        {{0, 0}, "001"},       {{1, 0}, "101"},    {{0, 1, 0, 1, 1}, "010"}, {{-1, 0, 2}, "101"},
        {{0, 0, 0, 1}, "000"},
    };
    LayerScene scene;
    for(const auto &row : rows)
    {
        scene.pickable(row.pickable);
        std::string columns;
        for(int i = 0; i < 3; ++i)
        {
            scene.layer->setHit(77.0f);
            const Real32 distance = scene.pick(Real32(2 * i - 2) + 0.1f);
            columns += distance < 0.0f ? '0' : '1';
            EXPECT_FLOAT_EQ(scene.layer->getHit(), distance < 0.0f ? -1.0f : 5.0f);
        }
        EXPECT_EQ(columns, row.columns);
    }
}

TEST(Layer, VisibilityAndPickabilityAreApart)
{
    LayerScene scene;
    scene.visible({0, 0, 0});
    EXPECT_FLOAT_EQ(scene.pick(0.1f), 5.0f);
    scene.visible({});
    scene.pickable({0, 0, 0});
    EXPECT_EQ(scene.pick(0.1f), -1.0f);
    ColumnView view(scene.root.ptr);
    EXPECT_EQ(view.rendered(), "111");
}

TEST(Layer, TheHitIsTheDistanceAlongTheRayInTheWorld)
{
    LayerScene scene;
    for(const Real32 from : {0.5f, 3.0f, 250.0f})
    {
        EXPECT_FLOAT_EQ(scene.pick(2.2f, from), from);
        EXPECT_FLOAT_EQ(scene.layer->getHit(), from);
    }
    EXPECT_EQ(scene.pick(1.0f), -1.0f);
    EXPECT_EQ(scene.layer->getHit(), -1.0f);
}

TEST(Layer, TheHitMayLieOutsideOfTheLayer)
{
    LayerScene scene;
    // Visited ahead of the layer, at z = 2 and so nearer.
    scene.root->insertChild(0, quadAt(0.0f, 2.0f));
    endEditCP(scene.root.ptr);
    scene.pickable({0, 0, 0});
    EXPECT_FLOAT_EQ(scene.pick(0.1f), 3.0f);
    EXPECT_FLOAT_EQ(scene.layer->getHit(), 3.0f);
    // Visited behind the layer, whose leave has not seen it.
    scene.root->subChild(0u);
    scene.root->addChild(quadAt(0.0f, 2.0f));
    endEditCP(scene.root.ptr);
    EXPECT_FLOAT_EQ(scene.pick(0.1f), 3.0f);
    EXPECT_EQ(scene.layer->getHit(), -1.0f);
}

TEST(Layer, AHitIsAnEditOfItsField)
{
    LayerScene scene;
    Thread::getCurrentChangeList()->clearAll();
    scene.pick(0.1f);
    const ChangeList::ChangedStore changes = Thread::getCurrentChangeList()->getChanged();
    ASSERT_EQ(changes.size(), 1u);
    EXPECT_EQ(changes[0].first, scene.layer.ptr.getFieldContainerId());
    EXPECT_EQ(changes[0].second, BitVector(Layer::HitFieldMask));
}

TEST(Layer, ItStandsBelowAnotherLayer)
{
    LayerScene scene;
    Held<LayerPtr> outer;
    const NodePtr above = makeNodeFor(outer.ptr);
    above->addChild(scene.node);
    above->addChild(quadAt(2.0f));
    endEditCP(above);
    scene.root->addChild(above);
    endEditCP(scene.root.ptr);
    scene.visible({1, 0, 0});
    setSwitches(outer->getVisible(), {1, 0});
    endEditCP(outer.ptr);
    ColumnView view(scene.root.ptr);
    EXPECT_EQ(view.rendered(), "100");
    setSwitches(outer->getVisible(), {0});
    endEditCP(outer.ptr);
    EXPECT_EQ(view.rendered(), "001");
}

TEST(Layer, FieldsAreThoseOfTheTable)
{
    const FieldContainerPtr made = FieldContainerFactory::the()->createFieldContainer("Layer");
    const LayerPtr layer = LayerPtr::dcast(made);
    ASSERT_TRUE(layer != NullFC);
    const Held<LayerPtr> held(layer);
    const FieldContainerType &type = Layer::getClassType();
    EXPECT_STREQ(type.getParent()->getCName(), "Group");
    const struct
    {
        UInt32 id;
        BitVector mask;
        const char *name;
        const char *typeName;
    } rows[] = {{3, 8, "pickable", "MFInt8"}, {4, 16, "visible", "MFInt8"}, {5, 32, "hit", "SFReal32"}};
    EXPECT_EQ(type.getNumFieldDescs(), Group::getClassType().getNumFieldDescs() + 3);
    for(const auto &row : rows)
    {
        const FieldDescription *const field = type.getFieldDescription(row.id);
        ASSERT_NE(field, nullptr);
        EXPECT_STREQ(field->getCName(), row.name);
        EXPECT_STREQ(field->getTypeName(), row.typeName);
        EXPECT_EQ(field->getFieldMask(), row.mask);
        EXPECT_FALSE(field->isInternal());
    }
    EXPECT_EQ(UInt32(Layer::NextFieldId), 6u);
    EXPECT_EQ(layer->getPickable().size(), 0u);
    EXPECT_EQ(layer->getVisible().size(), 0u);
    EXPECT_EQ(layer->getHit(), -1.0f);
    EXPECT_EQ(BitVector(Layer::MTInfluenceMask), BitVector(Group::MTInfluenceMask));

    LogCapture log;
    layer->dump();
    EXPECT_EQ(log.text(LOG_LOG), "Dump Layer NI\n");
    EXPECT_EQ(log.count(), 1u);
}

TEST(Layer, BinaryDataHoldsTheSelectedFieldsInOrder)
{
    const Held<LayerPtr> source;
    const Held<LayerPtr> target;
    setSwitches(source->getPickable(), {1, 0, -3});
    setSwitches(source->getVisible(), {0});
    source->setHit(2.5f);
    const BitVector all = Layer::PickableFieldMask | Layer::VisibleFieldMask | Layer::HitFieldMask;
    MemoryDataHandler memory;
    source->copyToBin(memory, all);
    EXPECT_EQ(memory.getData().size(), (4u + 3u) + (4u + 1u) + 4u);
    EXPECT_EQ(source->getBinSize(all), memory.getData().size());
    EXPECT_EQ(source->getBinSize(Layer::HitFieldMask), 4u);
    EXPECT_EQ(source->getBinSize(0), 0u);
    target->copyFromBin(memory, all);
    EXPECT_EQ(memory.remaining(), 0u);
    EXPECT_EQ(target->getPickable().getValues(), source->getPickable().getValues());
    EXPECT_EQ(target->getVisible().getValues(), source->getVisible().getValues());
    EXPECT_EQ(target->getHit(), 2.5f);
}
