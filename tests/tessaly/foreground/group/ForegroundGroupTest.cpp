/// \file
/// A group of foregrounds: its order, its members, its table.

#include "tessaly/foreground/ForegroundScene.h"

#include <OpenSG/OSGBaseInitFunctions.h>
#include <Tessaly/OSGForegroundGroup.h>

OSG_USING_NAMESPACE
using namespace foreground_test;

namespace
{

class ForegroundGroupTest : public ::testing::Test
{
  protected:
    static void SetUpTestSuite() { ASSERT_TRUE(osgInit(0, nullptr)); }

    void add(const ForegroundPtr &foreground)
    {
        group->editMFForegrounds()->push_back(foreground);
        endEditCP(group.ptr, ForegroundGroup::ForegroundsFieldMask);
    }

    Held<ForegroundGroupPtr> group;
    Held<TestForegroundPtr> first, second;
    std::vector<int> calls;
};

} // namespace

TEST_F(ForegroundGroupTest, TheTableIsAsPromised)
{
    checkClass("ForegroundGroup", "Foreground", {{"foregrounds", "MFForegroundPtr", 3, ""}});
    EXPECT_EQ(UInt32(ForegroundGroup::NextFieldId), 4u);
}

TEST_F(ForegroundGroupTest, MembersAreDrawnInOrderWithTheActionAndTheViewportOfTheGroup)
{
    Stage stage;
    DrawActionBase *seenAction = nullptr;
    Viewport *seenPort = nullptr;
    first->onDraw = [&](DrawActionBase *action, Viewport *port) {
        calls.push_back(1);
        seenAction = action;
        seenPort = port;
    };
    second->onDraw = [&](DrawActionBase *, Viewport *) { calls.push_back(2); };
    add(second.ptr);
    add(first.ptr);
    add(second.ptr);
    stage.add(group.ptr);
    stage.frame();
    EXPECT_EQ(calls, (std::vector<int>{2, 1, 2}));
    EXPECT_EQ(seenAction, stage.action.get());
    EXPECT_EQ(seenPort, stage.port.ptr.get());
}

TEST_F(ForegroundGroupTest, AnEmptyGroupDrawsNothing)
{
    LogCapture log;
    group->draw(nullptr, nullptr);
    EXPECT_EQ(log.count(), 0u);
}

TEST_F(ForegroundGroupTest, AGroupThatIsNotActiveSkipsAllItsMembers)
{
    add(first.ptr);
    group->setActive(false);
    group->draw(nullptr, nullptr);
    EXPECT_EQ(first->draws, 0);
    group->setActive(true);
    group->draw(nullptr, nullptr);
    EXPECT_EQ(first->draws, 1);
}

TEST_F(ForegroundGroupTest, AMemberThatIsNotActiveIsCalledAndSkipsItself)
{
    first->setActive(false);
    add(first.ptr);
    group->draw(nullptr, nullptr);
    EXPECT_EQ(first->draws, 1);
}

TEST_F(ForegroundGroupTest, TheSizeIsReadAnewBeforeEachMember)
{
    first->onDraw = [&](DrawActionBase *, Viewport *) {
        if(first->draws == 1)
            add(second.ptr);
        else
            group->editMFForegrounds()->resize(1);
    };
    add(first.ptr);
    group->draw(nullptr, nullptr);
    EXPECT_EQ(second->draws, 1) << "appended while the group was drawn";
    group->draw(nullptr, nullptr);
    EXPECT_EQ(second->draws, 1) << "gone while the group was drawn";
}

TEST_F(ForegroundGroupTest, ANullEntryIsToldAndTheOthersAreDrawn)
{
    add(NullFC);
    add(first.ptr);
    LogCapture log;
    group->draw(nullptr, nullptr);
    EXPECT_EQ(first->draws, 1);
    EXPECT_EQ(log.text(LOG_WARNING), "ForegroundGroup::draw: entry 0 is null\n");
    EXPECT_EQ(log.count(), 1u);
}

TEST_F(ForegroundGroupTest, AGroupBelowItselfIsDrawnOnce)
{
    const Held<ForegroundGroupPtr> inner;
    add(inner.ptr);
    add(first.ptr);
    inner->editMFForegrounds()->push_back(group.ptr);
    endEditCP(inner.ptr);
    LogCapture log;
    group->draw(nullptr, nullptr);
    EXPECT_EQ(first->draws, 1);
    EXPECT_EQ(log.text(), "ForegroundGroup::draw: the group is a member of itself\n");
    // Groups that hold each other keep each other alive.
    inner->editMFForegrounds()->clear();
    endEditCP(inner.ptr);
}

TEST_F(ForegroundGroupTest, AReferenceIsHeldOnEachMember)
{
    add(first.ptr);
    add(first.ptr);
    EXPECT_EQ(first.ptr.getRefCount(), 3);
    {
        const Held<FieldContainerPtr> copy(group->shallowCopy());
        EXPECT_EQ(first.ptr.getRefCount(), 5);
    }
    EXPECT_EQ(first.ptr.getRefCount(), 3);
    group->editMFForegrounds()->clear();
    endEditCP(group.ptr, ForegroundGroup::ForegroundsFieldMask);
    EXPECT_EQ(first.ptr.getRefCount(), 1);
}

TEST_F(ForegroundGroupTest, BinaryDataBringsTheMembersAcross)
{
    add(first.ptr);
    add(second.ptr);
    MemoryDataHandler memory;
    const BitVector mask = ForegroundGroup::ForegroundsFieldMask;
    group->copyToBin(memory, mask);
    EXPECT_EQ(memory.getData().size(), 4u + 2u * 4u);
    EXPECT_EQ(group->getBinSize(mask), memory.getData().size());
    const Held<ForegroundGroupPtr> other;
    other->copyFromBin(memory, mask);
    EXPECT_EQ(memory.remaining(), 0u);
    ASSERT_EQ(other->getMFForegrounds()->size(), 2u);
    EXPECT_TRUE(other->getForegrounds(1) == second.ptr);
    other->changed(mask, ChangedOrigin::Abstract);
    EXPECT_EQ(second.ptr.getRefCount(), 3);
}
