/// \file
/// What is attached to containers, names in particular.

#include "platform/system/geometry/GeometryFixture.h"

#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGName.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGSimpleAttachments.h>

#include <gtest/gtest.h>

OSG_USING_NAMESPACE
using geometry_test::HeldNode;

namespace
{

class AttachmentTest : public ::testing::Test
{
  protected:
    void SetUp() override { osgInit(0, nullptr); }
};

TEST_F(AttachmentTest, ANameIsGivenChangedAndTakenAway)
{
    HeldNode node(Node::create());
    EXPECT_EQ(getName(node.ptr), nullptr);
    setName(node.ptr, "left");
    EXPECT_STREQ(getName(node.ptr), "left");
    setName(node.ptr, "right");
    EXPECT_STREQ(getName(node.ptr), "right");
    EXPECT_EQ(node->getAttachments().size(), 1u);
    setName(node.ptr, "");
    EXPECT_EQ(getName(node.ptr), nullptr);
    EXPECT_EQ(node->getAttachments().size(), 0u);
    setName(NullFC, "nobody");
    EXPECT_EQ(getName(NullFC), nullptr);
}

TEST_F(AttachmentTest, ANewNameForACloneLeavesTheNameOfTheOriginal)
{
    HeldNode node(Node::create());
    setName(node.ptr, "first");
    HeldNode clone(cloneTree(node.ptr));
    EXPECT_STREQ(getName(clone.ptr), "first");
    setName(clone.ptr, "second");
    EXPECT_STREQ(getName(node.ptr), "first");
    EXPECT_STREQ(getName(clone.ptr), "second");
}

TEST_F(AttachmentTest, AnAttachmentIsReferencedAndKnowsWhatItIsAttachedTo)
{
    const NamePtr name = Name::create();
    addRefCP(name);
    {
        HeldNode node(Node::create());
        node->addAttachment(name);
        EXPECT_EQ(name.getRefCount(), 2);
        EXPECT_EQ(name->findParent(node.ptr), 0);
        node->addAttachment(name);
        EXPECT_EQ(name.getRefCount(), 2) << "the same again";
        node->addAttachment(name, 1);
        EXPECT_EQ(name.getRefCount(), 3) << "under another binding";
        node->subAttachment(name, 1);
        EXPECT_EQ(name.getRefCount(), 2);
        EXPECT_TRUE(node->findAttachment(Name::getClassType().getGroupId()) == name);
        EXPECT_TRUE(node->findAttachment(Name::getClassType().getGroupId(), 1) == NullFC);

        const NamePtr other = Name::create();
        node->addAttachment(other);
        EXPECT_EQ(name.getRefCount(), 1) << "replaced by one of its kind";
        EXPECT_EQ(name->getParents().size(), 0u);
        node->subAttachment(name);
        EXPECT_TRUE(node->findAttachment(Name::getClassType().getGroupId()) == other);
        node->addAttachment(name);
    }
    EXPECT_EQ(name.getRefCount(), 1);
    EXPECT_EQ(name->getParents().size(), 0u);
    subRefCP(name);
}

TEST_F(AttachmentTest, ACopiedContainerSharesWhatIsAttached)
{
    const GroupPtr group = Group::create();
    addRefCP(group);
    setName(group, "shared");
    const GroupPtr copy = GroupPtr::dcast(group->shallowCopy());
    addRefCP(copy);
    const AttachmentPtr name = group->findAttachment(Name::getClassType().getGroupId());
    EXPECT_STREQ(getName(copy), "shared");
    EXPECT_EQ(name.getRefCount(), 2);
    EXPECT_EQ(name->getParents().size(), 2u);
    subRefCP(copy);
    EXPECT_EQ(name.getRefCount(), 1);
    subRefCP(group);
}

struct Parents
{
    NamePtr name;
    std::vector<UInt32> seen;
};

// Counts, on another aspect, whom a change of the attachment would be passed on to.
void countParents(void *argument)
{
    Parents &shared = *static_cast<Parents *>(argument);
    Barrier *const barrier = Barrier::get("attachments");
    for(int round = 0; round < 6; ++round)
    {
        barrier->enter(2);
        ThreadManager::getAppThread()->getChangeList()->applyToCurrent();
        shared.seen.push_back(shared.name->getParents().size());
        barrier->enter(2);
    }
}

TEST_F(AttachmentTest, AnotherAspectSeesWhatItIsAttachedToAndWhatIsGone)
{
    Parents shared;
    shared.name = Name::create();
    addRefCP(shared.name);
    Thread *const thread = Thread::get("attachmentReader");
    ASSERT_TRUE(thread->runFunction(&countParents, 1, &shared));
    Barrier *const barrier = Barrier::get("attachments");
    const auto synchronise = [barrier] {
        barrier->enter(2);
        barrier->enter(2);
        Thread::getCurrentChangeList()->clearAll();
    };
    const GroupPtr first = Group::create();
    addRefCP(first);
    first->addAttachment(shared.name);
    endEditCP(first);
    synchronise(); // attached
    const GroupPtr copy = GroupPtr::dcast(first->shallowCopy());
    addRefCP(copy);
    synchronise(); // also to the copy
    copy->addAttachment(Name::create());
    endEditCP(copy);
    synchronise(); // replaced there
    subRefCP(first);
    synchronise(); // it ends when the list is cleared behind this
    synchronise(); // the first one is gone
    copy->addAttachment(shared.name);
    copy->subAttachment(shared.name);
    synchronise();
    Thread::join(thread);
    EXPECT_EQ(shared.seen, (std::vector<UInt32>{1, 2, 1, 1, 0, 0}));
    subRefCP(copy);
    subRefCP(shared.name);
    Thread::getCurrentChangeList()->clearAll();
}

} // namespace
