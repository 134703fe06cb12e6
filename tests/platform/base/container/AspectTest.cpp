#include <gtest/gtest.h>

#include <OpenSG/OSGTestThing.h>

OSG_USING_NAMESPACE

namespace
{

struct Shared
{
    TestThingPtr root;
    Int32 seenBefore = 0;
    Int32 seenAfter = 0;
    Int32 seenNew = 0;
    std::size_t syncs = 0;
    int rounds = 0;
};

void draw(void *argument)
{
    Shared &shared = *static_cast<Shared *>(argument);
    Barrier *barrier = Barrier::get("aspect");
    shared.seenBefore = shared.root->getNumber();
    for(int round = 0; round < shared.rounds; ++round)
    {
        barrier->enter(2);
        ThreadManager::getAppThread()->getChangeList()->applyToCurrent();
        barrier->enter(2);
        // The application edits its own copies while these are read.
        Int32 sum = 0;
        for(TestThingPtr thing = shared.root; thing != NullFC; thing = thing->getNeighbour())
            sum += thing->getNumber();
        shared.seenAfter = sum;
        if(shared.root->getNeighbour() != NullFC)
            shared.seenNew = shared.root->getNeighbour()->getNumber();
    }
    for(const TestThing::Change &change : shared.root->changes)
        if(change.origin == ChangedOrigin::Sync)
            ++shared.syncs;
}

TEST(AspectTest, EditsReachAnotherAspectOnlyThroughTheChangeList)
{
    osgInit(0, nullptr);
    const int alive = TestThing::alive;
    const int rounds = 50;
    Shared shared;
    shared.rounds = rounds;
    shared.root = TestThing::create();
    addRefCP(shared.root);
    Thread::getCurrentChangeList()->clearAll();
    shared.root->setNumber(1);
    endEditCP(shared.root, TestThing::NumberFieldMask);

    Thread *drawer = Thread::get("drawer");
    ASSERT_TRUE(drawer->runFunction(&draw, 1, &shared));
    EXPECT_FALSE(drawer->runFunction(&draw, 1, &shared));
    Barrier *barrier = Barrier::get("aspect");
    for(int round = 0; round < rounds; ++round)
    {
        barrier->enter(2);
        barrier->enter(2);
        Thread::getCurrentChangeList()->clearAll();
        // The old neighbour ends here, while the drawer may still stand on it.
        TestThingPtr next = TestThing::create();
        next->setNumber(100 * (round + 1));
        endEditCP(next, TestThing::NumberFieldMask);
        shared.root->setNeighbour(next);
        shared.root->setNumber(round + 2);
        endEditCP(shared.root, TestThing::NumberFieldMask | TestThing::NeighbourFieldMask);
    }
    Thread::join(drawer);
    EXPECT_EQ(shared.seenBefore, -7) << "the copy of aspect 1 is as the prototype made it";
    EXPECT_EQ(shared.seenNew, 100 * (rounds - 1));
    EXPECT_EQ(shared.seenAfter, rounds + 100 * (rounds - 1));
    EXPECT_EQ(shared.syncs, std::size_t(rounds));
    subRefCP(shared.root);
    Thread::getCurrentChangeList()->clearAll();
    EXPECT_EQ(TestThing::alive, alive);
}

struct Resurrection
{
    TestThingPtr thing;
    int aliveAfterClear = 0;
};

void takeReference(void *argument)
{
    Resurrection &shared = *static_cast<Resurrection *>(argument);
    Barrier *const barrier = Barrier::get("resurrection");
    barrier->enter(2); // the application has taken the last reference away
    addRefCP(shared.thing);
    barrier->enter(2);
    barrier->enter(2); // and has cleared its list
    shared.aliveAfterClear = shared.thing->getNumber();
    subRefCP(shared.thing);
    Thread::getCurrentChangeList()->clearAll();
}

TEST(AspectTest, AContainerLivesOnIfAnotherAspectTakesAReferenceBeforeTheListIsCleared)
{
    osgInit(0, nullptr);
    const int alive = TestThing::alive;
    const int destroyed = TestThing::destroyed;
    Resurrection shared;
    shared.thing = TestThing::create();
    addRefCP(shared.thing);
    Thread *const other = Thread::get("other");
    ASSERT_TRUE(other->runFunction(&takeReference, 1, &shared));
    Barrier *const barrier = Barrier::get("resurrection");
    subRefCP(shared.thing);
    EXPECT_EQ(TestThing::destroyed, destroyed) << "not before the list is cleared";
    barrier->enter(2);
    barrier->enter(2);
    Thread::getCurrentChangeList()->clearAll();
    EXPECT_EQ(TestThing::destroyed, destroyed);
    barrier->enter(2);
    Thread::join(other);
    EXPECT_EQ(shared.aliveAfterClear, -7);
    EXPECT_EQ(TestThing::destroyed, destroyed + 1);
    EXPECT_GT(TestThing::alive, alive) << "ended, but the memory stays until its list is cleared once more";
    other->getChangeList()->clearAll();
    EXPECT_EQ(TestThing::alive, alive);
}

TEST(AspectTest, WhatAContainerChangesAsItEndsReachesTheOtherAspects)
{
    osgInit(0, nullptr);
    struct Shared
    {
        TestThingPtr mark;
        Int32 seen[2] = {0, 0};
    } shared;
    shared.mark = TestThing::create();
    addRefCP(shared.mark);
    const TestThingPtr ending = TestThing::create();
    addRefCP(ending);
    ending->markAtEnd = shared.mark;
    Thread::getCurrentChangeList()->clearAll();
    Thread *const other = Thread::get("witness");
    ASSERT_TRUE(other->runFunction(
        [](void *argument) {
            Shared &at = *static_cast<Shared *>(argument);
            for(Int32 &seen : at.seen)
            {
                Barrier::get("witness")->enter(2);
                ThreadManager::getAppThread()->getChangeList()->applyToCurrent();
                seen = at.mark->getNumber();
                Barrier::get("witness")->enter(2);
            }
        },
        1, &shared));
    subRefCP(ending);
    for(int round = 0; round < 2; ++round)
    {
        Barrier::get("witness")->enter(2);
        Barrier::get("witness")->enter(2);
        Thread::getCurrentChangeList()->clearAll();
    }
    Thread::join(other);
    EXPECT_EQ(shared.seen[0], -7);
    EXPECT_EQ(shared.seen[1], 99);
    subRefCP(shared.mark);
}

TEST(AspectTest, AnAspectBeyondTheNumberIsRefused)
{
    osgInit(0, nullptr);
    EXPECT_FALSE(Thread::get("beyond")->runFunction(&draw, ThreadManager::getNumAspects(), nullptr));
}

} // namespace
