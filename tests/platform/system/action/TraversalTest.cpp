#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

#include <OpenSG/OSGAction.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGName.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGStatCollector.h>
#include <OpenSG/OSGSwitch.h>
#include <OpenSG/OSGTransform.h>

OSG_USING_NAMESPACE

namespace
{

/// Writes down the names of the nodes that it enters and leaves.
class Diary : public Action
{
  public:
    std::string text;
    std::string skipAt;
    std::string breakAt;
    std::string quitAt;
    std::string listAt; ///< visits only the last child, and then the first
    std::string keepAt; ///< visits only those of the nodes about to be visited that `kept` names
    std::string kept;

    Diary()
    {
        registerEnterFunction(Group::getClassType(), [this](NodeCore *, Action *) { return enter(); });
        registerLeaveFunction(Group::getClassType(), [this](NodeCore *, Action *) {
            text += std::string("/") + name() + " ";
            return Continue;
        });
    }

  protected:
    FunctorStore *getDefaultEnterFunctors() override { return nullptr; }
    FunctorStore *getDefaultLeaveFunctors() override { return nullptr; }

  private:
    const char *name() const { return getName(getActNode()); }

    ResultE enter()
    {
        text += std::string(name()) + " ";
        if(listAt == name())
        {
            useNodeList();
            addNode(getActNode()->getChild(getActNode()->getNChildren() - 1));
            addNode(getActNode()->getChild(0));
            EXPECT_EQ(getNNodes(), 2u);
        }
        if(keepAt == name())
        {
            const UInt32 count = keepNodes(
                [this](const NodePtr &node) { return kept.find(getName(node)) != std::string::npos; });
            EXPECT_EQ(count, getNNodes());
        }
        if(skipAt == name())
            return Skip;
        if(breakAt == name())
            return Break;
        return quitAt == name() ? Quit : Continue;
    }
};

NodePtr group(const char *name, const std::vector<NodePtr> &children = {})
{
    const NodePtr node = makeCoredNode<Group>();
    setName(node, name);
    for(const NodePtr &child : children)
        node->addChild(child);
    return node;
}

struct TraversalTest : public testing::Test
{
    NodePtr root;

    void SetUp() override
    {
        osgInit(0, nullptr);
        root = group("a", {group("b", {group("c"), group("d"), group("e")}), group("f")});
        addRefCP(root);
    }
    void TearDown() override { subRefCP(root); }
};

TEST_F(TraversalTest, ParentsAreEnteredFirstAndLeftLast)
{
    Diary diary;
    EXPECT_EQ(diary.apply(root), Action::Continue);
    EXPECT_EQ(diary.text, "a b c /c d /d e /e /b f /f /a ");
    EXPECT_TRUE(diary.getActNode() == NullFC);
}

TEST_F(TraversalTest, SkipLeavesOutTheChildrenOnly)
{
    Diary diary;
    diary.skipAt = "b";
    EXPECT_EQ(diary.apply(root), Action::Continue);
    EXPECT_EQ(diary.text, "a b /b f /f /a ");
}

TEST_F(TraversalTest, BreakLeavesOutTheSiblingsThatFollow)
{
    Diary diary;
    diary.breakAt = "d";
    EXPECT_EQ(diary.apply(root), Action::Continue);
    EXPECT_EQ(diary.text, "a b c /c d /d /b f /f /a ");
}

TEST_F(TraversalTest, QuitEndsTheTraversal)
{
    Diary diary;
    diary.quitAt = "d";
    EXPECT_EQ(diary.apply(root), Action::Quit);
    EXPECT_EQ(diary.text, "a b c /c d /d /b /a ");
}

TEST_F(TraversalTest, AListOfNodesTakesThePlaceOfTheChildren)
{
    Diary diary;
    diary.listAt = "b";
    diary.apply(root);
    EXPECT_EQ(diary.text, "a b e /e c /c /b f /f /a ");
}

TEST_F(TraversalTest, ChildrenThatAreNotKeptAreLeftOut)
{
    for(const auto &[kept, text] : {std::pair("ce", "a b c /c e /e /b f /f /a "), std::pair("d", "a b d /d /b f /f /a "),
                                    std::pair("", "a b /b f /f /a "), std::pair("cde", "a b c /c d /d e /e /b f /f /a ")})
    {
        Diary diary;
        diary.keepAt = "b";
        diary.kept = kept;
        diary.apply(root);
        EXPECT_EQ(diary.text, text) << kept;
    }
}

TEST_F(TraversalTest, OfAListOnlyWhatIsKeptStaysInItsOrder)
{
    Diary diary;
    diary.listAt = "b"; // e, then c
    diary.keepAt = "b";
    diary.kept = "c";
    diary.apply(root);
    EXPECT_EQ(diary.text, "a b c /c /b f /f /a ");
    diary.text.clear();
    diary.kept = "ce";
    diary.apply(root);
    EXPECT_EQ(diary.text, "a b e /e c /c /b f /f /a ");
}

TEST_F(TraversalTest, WhatIsKeptBelowLeavesTheListAboveAsItIs)
{
    Diary diary;
    diary.listAt = "a"; // f, then b
    diary.keepAt = "b";
    diary.kept = "d";
    diary.apply(root);
    EXPECT_EQ(diary.text, "a f /f b d /d /b /a ");
}

TEST_F(TraversalTest, OnlyNodesWithACommonMaskBitAreVisited)
{
    root->getChild(0)->setTravMask(2);
    Diary diary;
    diary.setTravMask(5);
    diary.apply(root);
    EXPECT_EQ(diary.text, "a f /f /a ");
    diary.text.clear();
    diary.setTravMask(2);
    root->getChild(0)->setActive(false);
    diary.apply(root);
    EXPECT_EQ(diary.text, "a f /f /a ");
}

TEST_F(TraversalTest, FunctorsAreNotInherited)
{
    const NodePtr transform = makeCoredNode<Transform>();
    setName(transform, "t");
    transform->addChild(group("u"));
    root->addChild(transform);
    Diary diary;
    diary.apply(root);
    EXPECT_EQ(diary.text, "a b c /c d /d e /e /b f /f u /u /a ");
}

TEST_F(TraversalTest, NoRootIsAWarning)
{
    LogCapture log;
    Diary diary;
    EXPECT_EQ(diary.apply(NullFC), Action::Continue);
    ASSERT_EQ(log.messages().size(), 1u);
    EXPECT_EQ(log.messages()[0].text, "Action::apply: there is no node to start from\n");
    EXPECT_EQ(log.messages()[0].level, LOG_WARNING);
}

TEST_F(TraversalTest, CallEnterAndLeaveCallTheFunctorOfOneCore)
{
    Diary diary;
    diary.setActNode(root);
    EXPECT_EQ(diary.callEnter(root), Action::Continue);
    EXPECT_EQ(diary.callLeave(root), Action::Continue);
    EXPECT_EQ(diary.text, "a /a ");
}

TEST_F(TraversalTest, ListsOfOneTraversalLeaveNothingBehindForTheNext)
{
    // Lists of all levels share one store; it must be as empty after each node as before.
    Diary diary;
    diary.listAt = "b";
    std::string once;
    for(int i = 0; i < 100; ++i)
    {
        diary.text.clear();
        diary.apply(root);
        if(i == 0)
            once = diary.text;
        ASSERT_EQ(diary.text, once);
    }
}

TEST_F(TraversalTest, TraverseVisitsEveryNode)
{
    std::string text;
    traverse(root, [&text](NodePtr &node) {
        text += getName(node);
        return text.back() == 'b' ? Action::Skip : Action::Continue;
    });
    EXPECT_EQ(text, "abf");
}

TEST(StatCollectorTest, ElementsAreMadeOnDemandAndReset)
{
    static StatElemDesc<StatIntElem> things("testThings", "things that were counted");
    static StatElemDesc<StatRealElem> weight("testWeight", "what they weigh");
    const std::unique_ptr<StatCollector> collector(StatCollector::create());
    EXPECT_EQ(collector->getElem(things, false), nullptr);
    collector->getElem(things)->inc();
    collector->getElem(things)->add(4);
    collector->getElem(weight)->add(2.5);
    Real64 value = 0;
    EXPECT_TRUE(collector->getValue("testThings", value));
    EXPECT_EQ(value, 5);
    EXPECT_FALSE(collector->getValue("nothing", value));
    std::string text;
    collector->putToString(text);
    EXPECT_EQ(text, "testThings=5|testWeight=2.5");
    collector->getElem(things)->setOn(false);
    collector->getElem(things)->inc();
    EXPECT_EQ(collector->getElem(things)->get(), 5);
    collector->reset();
    EXPECT_EQ(collector->getElem(things)->get(), 0);
    EXPECT_EQ(StatElemDescBase::findDescByName("testWeight"), &weight);
}

} // namespace
