/// \file
/// The tree of nodes: children, parents, cores, references.

#include "platform/system/geometry/GeometryFixture.h"

#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGName.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGTransform.h>

#include <gtest/gtest.h>

OSG_USING_NAMESPACE
using geometry_test::HeldNode;

namespace
{

class NodeTest : public ::testing::Test
{
  protected:
    void SetUp() override { osgInit(0, nullptr); }
};

std::vector<NodePtr> childrenOf(const NodePtr &node)
{
    std::vector<NodePtr> children;
    for(UInt32 i = 0; i < node->getNChildren(); ++i)
        children.push_back(node->getChild(i));
    return children;
}

/// Fixed nodes to move about; each holds one reference.
struct Family
{
    Family() : root(Node::create()), a(Node::create()), b(Node::create()), c(Node::create()) {}

    HeldNode root;
    HeldNode a;
    HeldNode b;
    HeldNode c;
};

typedef std::vector<NodePtr> Nodes;

TEST_F(NodeTest, ANewNodeIsAlone)
{
    HeldNode node(Node::create());
    EXPECT_EQ(node->getNChildren(), 0u);
    EXPECT_TRUE(node->getParent() == NullFC);
    EXPECT_TRUE(node->getCore() == NullFC);
    EXPECT_TRUE(node->getActive());
    EXPECT_EQ(node.ptr.getRefCount(), 1);
    EXPECT_EQ(int(NodeCore::NextFieldId), 3);
    EXPECT_EQ(int(Group::NextFieldId), 3);
}

TEST_F(NodeTest, AChildKnowsItsParentAndIsReferencedOnce)
{
    Family f;
    f.root->addChild(f.a.ptr);
    f.root->addChild(f.b.ptr);
    EXPECT_EQ(childrenOf(f.root.ptr), (Nodes{f.a.ptr, f.b.ptr}));
    EXPECT_TRUE(f.a->getParent() == f.root.ptr);
    EXPECT_EQ(f.a.ptr.getRefCount(), 2);
    EXPECT_EQ(f.root->findChild(f.b.ptr), 1);
    EXPECT_EQ(f.root->findChild(f.c.ptr), -1);
    f.root->subChild(f.a.ptr);
    EXPECT_EQ(childrenOf(f.root.ptr), (Nodes{f.b.ptr}));
    EXPECT_TRUE(f.a->getParent() == NullFC);
    EXPECT_EQ(f.a.ptr.getRefCount(), 1);
}

TEST_F(NodeTest, InsertingPutsAChildAheadOfTheIndex)
{
    Family f;
    f.root->addChild(f.a.ptr);
    f.root->insertChild(0, f.b.ptr);
    EXPECT_EQ(childrenOf(f.root.ptr), (Nodes{f.b.ptr, f.a.ptr}));
    f.root->insertChild(1, f.c.ptr);
    EXPECT_EQ(childrenOf(f.root.ptr), (Nodes{f.b.ptr, f.c.ptr, f.a.ptr}));
    f.root->insertChild(0, f.a.ptr);
    EXPECT_EQ(childrenOf(f.root.ptr), (Nodes{f.a.ptr, f.b.ptr, f.c.ptr})) << "within the same parent";
    f.root->insertChild(3, f.a.ptr);
    EXPECT_EQ(childrenOf(f.root.ptr), (Nodes{f.b.ptr, f.c.ptr, f.a.ptr}));
    f.root->insertChild(99, f.b.ptr);
    EXPECT_EQ(childrenOf(f.root.ptr), (Nodes{f.c.ptr, f.a.ptr, f.b.ptr}));
    for(const HeldNode *node : {&f.a, &f.b, &f.c})
        EXPECT_EQ(node->ptr.getRefCount(), 2);
}

TEST_F(NodeTest, AChildLeavesTheParentThatItHad)
{
    Family f;
    HeldNode other(Node::create());
    f.root->addChild(f.a.ptr);
    other->addChild(f.a.ptr);
    EXPECT_EQ(f.root->getNChildren(), 0u);
    EXPECT_TRUE(f.a->getParent() == other.ptr);
    EXPECT_EQ(f.a.ptr.getRefCount(), 2);
}

TEST_F(NodeTest, ReplacingKeepsThePlace)
{
    Family f;
    f.root->addChild(f.a.ptr);
    f.root->addChild(f.b.ptr);
    f.root->replaceChild(0, f.c.ptr);
    EXPECT_EQ(childrenOf(f.root.ptr), (Nodes{f.c.ptr, f.b.ptr}));
    EXPECT_TRUE(f.a->getParent() == NullFC);
    EXPECT_EQ(f.a.ptr.getRefCount(), 1);
    EXPECT_TRUE(f.root->replaceChildBy(f.b.ptr, f.a.ptr));
    EXPECT_EQ(childrenOf(f.root.ptr), (Nodes{f.c.ptr, f.a.ptr}));
    EXPECT_FALSE(f.root->replaceChildBy(f.b.ptr, f.a.ptr));
    // By another child of the same node.
    f.root->addChild(f.b.ptr);
    f.root->replaceChild(2, f.c.ptr);
    EXPECT_EQ(childrenOf(f.root.ptr), (Nodes{f.a.ptr, f.c.ptr}));
    EXPECT_EQ(f.b.ptr.getRefCount(), 1);
    EXPECT_EQ(f.c.ptr.getRefCount(), 2);
    f.root->replaceChild(1, f.c.ptr);
    EXPECT_EQ(f.c.ptr.getRefCount(), 2) << "by itself";
}

TEST_F(NodeTest, MovingTakesAllChildrenInTheirOrder)
{
    Family f;
    HeldNode other(Node::create());
    other->addChild(f.a.ptr);
    other->addChild(f.b.ptr);
    f.root->addChild(f.c.ptr);
    f.root->moveChildrenFrom(other.ptr);
    EXPECT_EQ(childrenOf(f.root.ptr), (Nodes{f.c.ptr, f.a.ptr, f.b.ptr}));
    EXPECT_EQ(other->getNChildren(), 0u);
    f.root->moveChildrenFrom(f.root.ptr);
    f.root->moveChildrenFrom(NullFC);
    EXPECT_EQ(f.root->getNChildren(), 3u);
}

TEST_F(NodeTest, WhatWouldCloseACircleIsRefusedWithAWarning)
{
    Family f;
    f.root->addChild(f.a.ptr);
    f.a->addChild(f.b.ptr);
    LogCapture log;
    f.b->addChild(f.root.ptr);
    f.b->addChild(f.b.ptr);
    f.b->addChild(NullFC);
    f.b->subChild(f.c.ptr);
    f.b->subChild(7);
    f.b->replaceChild(0, f.c.ptr);
    EXPECT_EQ(f.b->getNChildren(), 0u);
    EXPECT_EQ(log.count(LOG_WARNING), 6u);
    EXPECT_EQ(f.root.ptr.getRefCount(), 1);
    EXPECT_EQ(f.c.ptr.getRefCount(), 1);
}

TEST_F(NodeTest, ATreeEndsWithItsRootAsFarAsNobodyElseHoldsIt)
{
    HeldNode held(Node::create());
    const GroupPtr core = Group::create();
    addRefCP(core);
    {
        HeldNode root(Node::create());
        const NodePtr middle = makeNodeFor(core);
        root->addChild(middle);
        middle->addChild(held.ptr);
        EXPECT_EQ(core.getRefCount(), 2);
        EXPECT_EQ(core->getParents().size(), 1u);
    }
    EXPECT_TRUE(held->getParent() == NullFC);
    EXPECT_EQ(held.ptr.getRefCount(), 1);
    EXPECT_EQ(core.getRefCount(), 1);
    EXPECT_EQ(core->getParents().size(), 0u);
    subRefCP(core);
}

TEST_F(NodeTest, ACoreKnowsAllItsNodes)
{
    Family f;
    const GroupPtr core = Group::create();
    addRefCP(core);
    f.a->setCore(core);
    f.b->setCore(core);
    EXPECT_EQ(core->getParents().size(), 2u);
    EXPECT_EQ(core.getRefCount(), 3);
    f.a->setCore(core);
    EXPECT_EQ(core->getParents().size(), 2u) << "the same core again";
    EXPECT_EQ(core.getRefCount(), 3);
    f.a->setCore(Group::create());
    ASSERT_EQ(core->getParents().size(), 1u);
    EXPECT_TRUE(core->getParents()[0] == f.b.ptr);
    f.b->setCore(NullFC);
    EXPECT_EQ(core.getRefCount(), 1);
    subRefCP(core);
}

TEST_F(NodeTest, TransformationsMultiplyFromTheRootDown)
{
    Matrix move;
    move.setTranslate(1, 2, 3);
    Matrix scale;
    scale.setScale(2, 2, 2);
    TransformPtr first, second;
    HeldNode root(makeCoredNode<Transform>(&first));
    first->setMatrix(move);
    const NodePtr below = makeCoredNode<Transform>(&second);
    second->setMatrix(scale);
    root->addChild(below);
    const NodePtr leaf = Node::create();
    below->addChild(leaf);
    Pnt3f point;
    leaf->getToWorld().multMatrixPnt(Pnt3f(1, 1, 1), point);
    EXPECT_EQ(point, Pnt3f(3, 4, 5));
    Matrix toWorld;
    root->getToWorld(toWorld);
    EXPECT_TRUE(toWorld == move) << "a node's own transformation is in";
}

TEST_F(NodeTest, ACloneIsANewTreeWithTheSameCores)
{
    HeldNode root(makeCoredNode<Group>());
    const NodePtr child = makeCoredNode<Transform>();
    root->addChild(child);
    root->addChild(makeCoredNode<Group>());
    child->setTravMask(5);
    setName(child, "arm");
    HeldNode clone(cloneTree(root.ptr));
    ASSERT_EQ(clone->getNChildren(), 2u);
    EXPECT_TRUE(clone->getCore() == root->getCore());
    EXPECT_EQ(root->getCore()->getParents().size(), 2u);
    EXPECT_TRUE(clone->getChild(0) != child);
    EXPECT_TRUE(clone->getChild(0)->getCore() == child->getCore());
    EXPECT_TRUE(clone->getChild(0)->getParent() == clone.ptr);
    EXPECT_EQ(clone->getChild(0)->getTravMask(), 5u);
    EXPECT_STREQ(getName(clone->getChild(0)), "arm");
    EXPECT_EQ(clone.ptr.getRefCount(), 1);
    EXPECT_TRUE(cloneTree(NullFC) == NullFC);
}

TEST_F(NodeTest, ACopiedNodeHasNeitherFamilyNorCore)
{
    HeldNode root(makeCoredNode<Group>());
    root->addChild(Node::create());
    HeldNode copy(NodePtr::dcast(root->shallowCopy()));
    EXPECT_EQ(copy->getNChildren(), 0u);
    EXPECT_TRUE(copy->getCore() == NullFC);
    EXPECT_EQ(root->getCore()->getParents().size(), 1u);
}

TEST_F(NodeTest, ACopiedCoreHasNoNodes)
{
    HeldNode root(makeCoredNode<Group>());
    const GroupPtr copy = GroupPtr::dcast(root->getCore()->shallowCopy());
    addRefCP(copy);
    EXPECT_EQ(copy->getParents().size(), 0u);
    subRefCP(copy);
}

} // namespace
