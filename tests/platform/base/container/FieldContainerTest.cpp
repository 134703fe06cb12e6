#include <gtest/gtest.h>

#include <OpenSG/OSGTestThing.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGMemoryDataHandler.h>

OSG_USING_NAMESPACE

int TestThing::alive = 0;
int TestThing::created = 0;
int TestThing::destroyed = 0;
int TestThing::initialised = 0;

namespace
{

struct FieldContainerTest : public testing::Test
{
    static void SetUpTestSuite() { osgInit(0, nullptr); }

    void SetUp() override { getCurrentChangeList()->clearAll(); }

    static ChangeList *getCurrentChangeList() { return Thread::getCurrentChangeList(); }
};

TEST_F(FieldContainerTest, MasksAreOneShiftedByTheId)
{
    EXPECT_EQ(FieldContainer::NextFieldId, 1);
    EXPECT_EQ(TestThing::FlagFieldId, 1);
    EXPECT_EQ(TestThing::FlagFieldMask, BitVector(2));
    EXPECT_EQ(TestThing::ValuesFieldMask, BitVector(128));
    EXPECT_EQ(TestThing::NextFieldId, 8);
}

TEST_F(FieldContainerTest, CreateByNameHasTheDefaultsOfTheTable)
{
    TestThingPtr thing = TestThingPtr::dcast(FieldContainerFactory::the()->createFieldContainer("TestThing"));
    ASSERT_TRUE(thing != NullFC);
    EXPECT_TRUE(thing->getFlag());
    EXPECT_EQ(thing->getNumber(), -7);
    EXPECT_EQ(thing->getSize(), Vec3f(1, 2.5f, 3));
    EXPECT_EQ(thing->getLabel(), "a \"b\"");
    EXPECT_TRUE(thing->getNeighbour() == NullFC);
    EXPECT_TRUE(thing->getOthers().empty());
    addRefCP(thing);
    subRefCP(thing);
}

TEST_F(FieldContainerTest, TheTypeKnowsItsFields)
{
    FieldContainerType &type = TestThing::getClassType();
    EXPECT_EQ(TestThing::initialised, 1);
    EXPECT_EQ(type.getNumFieldDescs(), 7u);
    const FieldDescription *neighbour = type.findFieldDescription("neighbour");
    ASSERT_NE(neighbour, nullptr);
    EXPECT_TRUE(neighbour->isInternal());
    EXPECT_EQ(neighbour->getFieldId(), 5u);
    EXPECT_STREQ(neighbour->getTypeName(), "SFTestThingPtr");
    EXPECT_EQ(neighbour->getType().getCardinality(), 0);
    EXPECT_STREQ(neighbour->getType().getContentType().getCName(), "TestThingPtr");
    EXPECT_EQ(type.findFieldDescription("others")->getType().getCardinality(), 1);
    EXPECT_FALSE(type.findFieldDescription("flag")->isInternal());
    EXPECT_EQ(type.findFieldDescription("nothing"), nullptr);
    EXPECT_EQ(FieldContainerFactory::the()->createFieldContainer("NoSuchClass"), NullFC);
}

TEST_F(FieldContainerTest, AChangedPrototypeChangesLaterObjects)
{
    TestThingPtr prototype = TestThingPtr::dcast(TestThing::getClassType().getPrototype());
    prototype->setNumber(12);
    TestThingPtr copy = TestThing::create();
    TestThingPtr fresh = TestThing::createEmpty();
    prototype->setNumber(-7);
    EXPECT_EQ(copy->getNumber(), 12);
    EXPECT_EQ(fresh->getNumber(), -7);
    subRefCP(copy);
    subRefCP(fresh);
}

TEST_F(FieldContainerTest, TheHeadHoldsCountAndIdAndTheAspectsFollow)
{
    TestThingPtr thing = TestThing::create();
    const char *copy = reinterpret_cast<const char *>(thing.getAspectCPtr(0));
    std::int32_t count;
    std::uint32_t id;
    std::memcpy(&count, copy - 8, 4);
    std::memcpy(&id, copy - 4, 4);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(id, thing.getFieldContainerId());
    EXPECT_EQ(reinterpret_cast<const char *>(thing.getAspectCPtr(1)) - copy, std::ptrdiff_t(sizeof(TestThing)));
    EXPECT_EQ(thing.getContainerSize(), sizeof(TestThing));
    EXPECT_EQ(thing->getContainerSize(), sizeof(TestThing));
    addRefCP(thing);
    std::memcpy(&count, copy - 8, 4);
    EXPECT_EQ(count, 1);
    subRefCP(thing);
}

TEST_F(FieldContainerTest, AContainerEndsWithItsLastReference)
{
    const int before = TestThing::alive;
    const int destroyed = TestThing::destroyed;
    TestThingPtr thing = TestThing::create();
    const UInt32 id = thing.getFieldContainerId();
    EXPECT_EQ(TestThing::alive, before + int(ThreadManager::getNumAspects()));
    addRefCP(thing);
    addRefCP(thing);
    subRefCP(thing);
    EXPECT_TRUE(FieldContainerFactory::the()->getContainer(id) == thing);
    subRefCP(thing);
    EXPECT_EQ(TestThing::alive, before);
    EXPECT_EQ(TestThing::destroyed, destroyed + 1);
    EXPECT_TRUE(FieldContainerFactory::the()->getContainer(id) == NullFC);
}

TEST_F(FieldContainerTest, AChainOfContainersEndsWithItsHead)
{
    const int before = TestThing::alive;
    TestThingPtr first = TestThing::create();
    first->setNeighbour(TestThing::create());
    first->getNeighbour()->setNeighbour(TestThing::create());
    addRefCP(first);
    subRefCP(first);
    EXPECT_EQ(TestThing::alive, before);
}

TEST_F(FieldContainerTest, EndEditCallsChangedWithFieldsAndOrigin)
{
    TestThingPtr thing = TestThing::create();
    beginEditCP(thing, TestThing::NumberFieldMask);
    thing->setNumber(3);
    EXPECT_TRUE(thing->changes.empty());
    endEditCP(thing, TestThing::NumberFieldMask);
    ASSERT_EQ(thing->changes.size(), 1u);
    EXPECT_EQ(thing->changes[0].whichField, TestThing::NumberFieldMask);
    EXPECT_EQ(thing->changes[0].origin, ChangedOrigin::External);
    {
        CPEdit(thing, TestThing::FlagFieldMask);
        thing->setFlag(false);
    }
    EXPECT_EQ(thing->changes.back().whichField, TestThing::FlagFieldMask);
    endEditCP(thing);
    EXPECT_EQ(thing->changes.back().whichField, FieldBits::AllFields);
    subRefCP(thing);
}

TEST_F(FieldContainerTest, TheOriginBitsHaveTheirValues)
{
    EXPECT_EQ(ChangedOrigin::Abstract, 8u);
    EXPECT_EQ(ChangedOrigin::AbstrCheckValid, 0x400u);
    EXPECT_EQ(ChangedOrigin::AbstrIncRefCount, 0x800u);
}

TEST_F(FieldContainerTest, TheChangeListRecordsEachKindOnce)
{
    TestThingPtr old = TestThing::create();
    addRefCP(old);
    getCurrentChangeList()->clearAll();
    EXPECT_TRUE(getCurrentChangeList()->isEmpty());

    TestThingPtr thing = TestThing::create();
    addRefCP(thing);
    endEditCP(thing, TestThing::NumberFieldMask);
    endEditCP(old, TestThing::FlagFieldMask);
    endEditCP(thing, TestThing::FlagFieldMask);
    const UInt32 id = thing.getFieldContainerId();
    const UInt32 oldId = old.getFieldContainerId();
    ChangeList &list = *getCurrentChangeList();
    EXPECT_EQ(list.getCreated(), ChangeList::IdStore{id});
    EXPECT_EQ(list.getAddRefd(), ChangeList::IdStore{id});
    EXPECT_EQ(list.getChanged(), (ChangeList::ChangedStore{
                                     {id, TestThing::NumberFieldMask | TestThing::FlagFieldMask},
                                     {oldId, TestThing::FlagFieldMask}}));
    subRefCP(thing);
    EXPECT_TRUE(list.getCreated().empty()) << "created and destroyed in one list leaves no trace";
    EXPECT_TRUE(list.getDestroyed().empty());
    subRefCP(old);
    EXPECT_EQ(list.getDestroyed(), ChangeList::IdStore{oldId});
    EXPECT_TRUE(list.getChanged().empty());
    list.clearAll();
    EXPECT_TRUE(list.isEmpty());
}

TEST_F(FieldContainerTest, BinaryHoldsTheSelectedFieldsInIdOrderAndNothingElse)
{
    TestThingPtr thing = TestThing::create();
    TestThingPtr other = TestThing::create();
    addRefCP(other);
    thing->setNumber(0x01020304);
    thing->getOthers().push_back(other);
    thing->getOthers().push_back(NullFC);
    thing->getValues().push_back(1.5f);

    EXPECT_EQ(thing->getBinSize(0), 0u);
    MemoryDataHandler nothing;
    thing->copyToBin(nothing, 0);
    EXPECT_EQ(nothing.getData().size(), 0u);

    const BitVector fields = TestThing::NumberFieldMask | TestThing::OthersFieldMask | TestThing::ValuesFieldMask;
    EXPECT_EQ(thing->getBinSize(fields), 4u + (4u + 8u) + (4u + 4u));
    MemoryDataHandler memory;
    thing->copyToBin(memory, fields);
    EXPECT_EQ(memory.getData().size(), thing->getBinSize(fields));

    TestThingPtr copy = TestThing::create();
    MemoryDataHandler reader(memory.getData());
    copy->copyFromBin(reader, fields);
    EXPECT_EQ(copy->getNumber(), 0x01020304);
    ASSERT_EQ(copy->getOthers().size(), 2u);
    EXPECT_TRUE(copy->getOthers(0) == other);
    EXPECT_TRUE(copy->getOthers(1) == NullFC);
    EXPECT_EQ(copy->getValues()[0], 1.5f);
    subRefCP(copy);
    subRefCP(thing);
    subRefCP(other);
}

TEST_F(FieldContainerTest, PointersHaveNoTextForm)
{
    LogCapture log;
    MField<TestThingPtr> many;
    many.pushValueByStr("anything");
    many.pushValueByStr("");
    ASSERT_EQ(many.size(), 2u);
    EXPECT_TRUE(many[0] == NullFC);
    ASSERT_EQ(log.messages().size(), 2u);
    EXPECT_EQ(log.messages()[0].text, "Error From String Conversion not available for \n");
    EXPECT_EQ(log.messages()[0].level, LOG_LOG);
    EXPECT_EQ(log.messages()[0].file, "OSGField");

    TestThingPtr thing = TestThing::create();
    SField<TestThingPtr> one(thing);
    one.pushValueByStr("x");
    EXPECT_TRUE(one.getValue() == thing);
    std::string out = "kept";
    one.getValueByStr(out, 1);
    EXPECT_EQ(out, "kept");
    EXPECT_EQ(log.messages().size(), 3u);
    one.getValueByStr(out);
    EXPECT_EQ(out, "kept");
    EXPECT_EQ(log.messages().back().text, "Error To String Conversion not available for \n");
    out.clear();
    many.getValueByStr(out);
    EXPECT_EQ(out, ", ");
    subRefCP(thing);
}

TEST_F(FieldContainerTest, FieldTypesAreFoundByName)
{
    EXPECT_NE(FieldFactory::the().getFieldType("SFTestThingPtr"), nullptr);
    EXPECT_NE(FieldFactory::the().getFieldType("MFTestThingPtr"), nullptr);
    EXPECT_NE(FieldFactory::the().getFieldType("SFVec3f"), nullptr);
    EXPECT_NE(TypeFactory::the()->findType("TestThingPtr"), nullptr);
    EXPECT_EQ(FieldFactory::the().getFieldType("SFNothing"), nullptr);
}

} // namespace
