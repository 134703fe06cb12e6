/// \file
/// The volumes of nodes, and lines that follow transformations down the tree.

#include "platform/system/geometry/GeometryFixture.h"

#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSwitch.h>
#include <OpenSG/OSGTransform.h>

#include <gtest/gtest.h>

#include <memory>

OSG_USING_NAMESPACE
using geometry_test::HeldNode;

namespace
{

class SceneVolumeTest : public ::testing::Test
{
  protected:
    void SetUp() override { osgInit(0, nullptr); }
};

void expectBounds(const Volume &volume, const Pnt3f &low, const Pnt3f &high)
{
    Pnt3f from, to;
    volume.getBounds(from, to);
    EXPECT_LT((from - low).length(), 1e-5f) << from[0] << " " << from[1] << " " << from[2];
    EXPECT_LT((to - high).length(), 1e-5f) << to[0] << " " << to[1] << " " << to[2];
}

NodePtr makeTransform(const Matrix &matrix, TransformPtr *transform = nullptr)
{
    TransformPtr core;
    const NodePtr node = makeCoredNode<Transform>(&core);
    core->setMatrix(matrix);
    endEditCP(core);
    if(transform != nullptr)
        *transform = core;
    return node;
}

Matrix translation(Real32 x, Real32 y, Real32 z)
{
    Matrix matrix;
    matrix.setTranslate(x, y, z);
    return matrix;
}

TEST_F(SceneVolumeTest, AGroupEnclosesItsChildren)
{
    HeldNode root(makeCoredNode<Group>());
    root->addChild(makeBox(2, 2, 2, 1, 1, 1));
    root->addChild(makeBox(1, 6, 1, 1, 1, 1));
    expectBounds(root->getVolume(true), Pnt3f(-1, -3, -1), Pnt3f(1, 3, 1));
    root->subChild(1);
    EXPECT_FALSE(root->getVolume().isValid());
    expectBounds(root->getVolume(true), Pnt3f(-1, -1, -1), Pnt3f(1, 1, 1));
}

TEST_F(SceneVolumeTest, ATransformMovesTheVolumeOfItsChildren)
{
    TransformPtr transform;
    HeldNode root(makeCoredNode<Group>());
    const NodePtr moved = makeTransform(translation(10, 0, 0), &transform);
    root->addChild(moved);
    const NodePtr box = makeBox(2, 2, 2, 1, 1, 1);
    moved->addChild(box);
    expectBounds(root->getVolume(true), Pnt3f(9, -1, -1), Pnt3f(11, 1, 1));
    expectBounds(box->getVolume(), Pnt3f(-1, -1, -1), Pnt3f(1, 1, 1));
    DynamicVolume world;
    box->getWorldVolume(world);
    expectBounds(world, Pnt3f(9, -1, -1), Pnt3f(11, 1, 1));

    transform->setMatrix(translation(0, 5, 0));
    endEditCP(transform, Transform::MatrixFieldMask);
    EXPECT_FALSE(root->getVolume().isValid());
    expectBounds(root->getVolume(true), Pnt3f(-1, 4, -1), Pnt3f(1, 6, 1));
}

TEST_F(SceneVolumeTest, ASharedCoreMovesUnderEachOfItsNodes)
{
    HeldNode root(makeCoredNode<Group>());
    const NodePtr left = makeTransform(translation(-5, 0, 0));
    const NodePtr right = makeTransform(translation(5, 0, 0));
    const NodePtr box = makeBox(2, 2, 2, 1, 1, 1);
    left->addChild(box);
    right->addChild(makeNodeFor(box->getCore()));
    root->addChild(left);
    root->addChild(right);
    expectBounds(root->getVolume(true), Pnt3f(-6, -1, -1), Pnt3f(6, 1, 1));
}

TEST_F(SceneVolumeTest, AStaticVolumeStays)
{
    HeldNode root(makeCoredNode<Group>());
    const NodePtr child = makeCoredNode<Group>();
    root->addChild(child);
    DynamicVolume &fixed = child->editVolume(true);
    fixed.setEmpty();
    fixed.extendBy(Pnt3f(-2, -2, -2));
    fixed.extendBy(Pnt3f(2, 2, 2));
    fixed.setStatic();
    child->addChild(makeBox(20, 20, 20, 1, 1, 1));
    expectBounds(child->getVolume(true), Pnt3f(-2, -2, -2), Pnt3f(2, 2, 2));
    root->invalidateVolume();
    expectBounds(root->getVolume(true), Pnt3f(-2, -2, -2), Pnt3f(2, 2, 2));
}

TEST_F(SceneVolumeTest, ALineIsTakenThroughNestedTransformations)
{
    HeldNode root(makeTransform(translation(0, 0, -5)));
    Matrix scale;
    scale.setScale(2, 2, 2);
    const NodePtr inner = makeTransform(scale);
    root->addChild(inner);
    const NodePtr deep = makeBox(1, 1, 1, 1, 1, 1);
    inner->addChild(deep);
    const NodePtr behind = makeBox(9, 9, 1, 1, 1, 1);
    root->addChild(behind);
    const std::unique_ptr<IntersectAction> action(IntersectAction::create());

    action->setLine(Line(Pnt3f(0.3f, 0.4f, 0), Vec3f(0, 0, -1)));
    action->apply(root.ptr);
    EXPECT_TRUE(action->getHitObject() == deep);
    EXPECT_NEAR(action->getHitT(), 4, 1e-5);

    action->setLine(Line(Pnt3f(3, 3, 0), Vec3f(0, 0, -1)));
    action->apply(root.ptr);
    EXPECT_TRUE(action->getHitObject() == behind);
    EXPECT_NEAR(action->getHitT(), 4.5, 1e-5);
}

TEST_F(SceneVolumeTest, WhatATransformationFlattensIsPassedByWithoutHarmToTheRest)
{
    HeldNode root(makeTransform(translation(0, 0, -5)));
    Matrix flat;
    flat.setScale(0, 0, 0);
    const NodePtr flattened = makeTransform(flat);
    flattened->addChild(makeBox(1, 1, 1, 1, 1, 1));
    root->addChild(flattened);
    const NodePtr box = makeBox(2, 2, 2, 1, 1, 1);
    root->addChild(box);
    const std::unique_ptr<IntersectAction> action(IntersectAction::create());
    action->setLine(Line(Pnt3f(0.1f, 0.2f, 0), Vec3f(0, 0, -1)));
    action->apply(root.ptr);
    ASSERT_TRUE(action->didHit());
    EXPECT_TRUE(action->getHitObject() == box);
    EXPECT_NEAR(action->getHitT(), 4, 1e-5);
}

TEST_F(SceneVolumeTest, OnlyTheChosenChildOfASwitchIsHit)
{
    SwitchPtr choice;
    HeldNode root(makeCoredNode<Switch>(&choice));
    const NodePtr small = makeBox(1, 1, 1, 1, 1, 1);
    const NodePtr large = makeBox(4, 4, 4, 1, 1, 1);
    root->addChild(small);
    root->addChild(large);
    const std::unique_ptr<IntersectAction> action(IntersectAction::create());
    const auto hit = [&](Int32 chosen) -> NodePtr {
        choice->setChoice(chosen);
        endEditCP(choice, Switch::ChoiceFieldMask);
        action->setLine(Line(Pnt3f(0.1f, 0.2f, 9), Vec3f(0, 0, -1)));
        action->apply(root.ptr);
        return action->didHit() ? action->getHitObject() : NodePtr();
    };
    EXPECT_EQ(choice->getChoice(), Int32(Switch::NONE));
    EXPECT_TRUE(hit(Switch::NONE) == NullFC);
    EXPECT_TRUE(hit(0) == small);
    EXPECT_TRUE(hit(1) == large);
    EXPECT_TRUE(hit(2) == NullFC);
    EXPECT_TRUE(hit(Switch::ALL) == large);
}

} // namespace
