/// \file
/// The statuses of GL objects, on tables without windows.

#include <OpenSG/OSGGLObjects.h>
#include <OpenSG/OSGWindow.h>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace
{

using osg::GLObjectTable;
using osg::UInt32;
using osg::Window;

/// Statuses that a functor got, with the ids.
struct Calls
{
    std::vector<std::pair<UInt32, UInt32>> list;

    osg::GLObjectFunctor functor()
    {
        return [this](Window *, UInt32 idstatus) { list.emplace_back(idstatus >> 3, idstatus & 7); };
    }
    std::vector<UInt32> takeStatuses()
    {
        std::vector<UInt32> statuses;
        for(const auto &call : list)
            statuses.push_back(call.second);
        list.clear();
        return statuses;
    }
};

using Statuses = std::vector<UInt32>;

std::vector<UInt32> staticCalls;

void noteStatically(Window *, UInt32 idstatus)
{
    staticCalls.push_back(idstatus & 7);
}

TEST(GLObjects, HaveTheNumbersThatFunctorsAreWrittenFor)
{
    EXPECT_EQ(int(Window::notused), 1);
    EXPECT_EQ(int(Window::initialize), 2);
    EXPECT_EQ(int(Window::reinitialize), 3);
    EXPECT_EQ(int(Window::initialized), 4);
    EXPECT_EQ(int(Window::needrefresh), 5);
    EXPECT_EQ(int(Window::destroy), 6);
    EXPECT_EQ(int(Window::finaldestroy), 7);
    EXPECT_EQ(Window::packIdStatus(9, Window::needrefresh), 9u << 3 | 5u);
    UInt32 id = 0;
    Window::GLObjectStatusE status = Window::notused;
    Window::unPackIdStatus(9u << 3 | 3u, id, status);
    EXPECT_EQ(id, 9u);
    EXPECT_EQ(status, Window::reinitialize);
}

TEST(GLObjects, AreInitialisedOnceAndThenOnlyOnDemand)
{
    Calls calls;
    GLObjectTable table;
    const UInt32 id = GLObjectTable::registerObject(calls.functor(), 1, nullptr);
    ASSERT_NE(id, 0u);
    EXPECT_TRUE(table.validate(nullptr, id));
    ASSERT_EQ(calls.list.size(), 1u);
    EXPECT_EQ(calls.list[0], std::make_pair(id, UInt32(Window::initialize)));
    calls.list.clear();
    EXPECT_TRUE(table.validate(nullptr, id));
    EXPECT_EQ(calls.takeStatuses(), Statuses());

    GLObjectTable::refresh(id, 1);
    GLObjectTable::refresh(id, 1);
    table.validate(nullptr, id);
    table.validate(nullptr, id);
    EXPECT_EQ(calls.takeStatuses(), Statuses({Window::needrefresh}));

    GLObjectTable::refresh(id, 1);
    GLObjectTable::reinitialize(id, 1);
    table.validate(nullptr, id);
    table.validate(nullptr, id);
    EXPECT_EQ(calls.takeStatuses(), Statuses({Window::reinitialize}));
    GLObjectTable::destroy(id, 1);
    table.destroyEnded(nullptr);
}

TEST(GLObjects, HaveANameAndAStateInEachWindow)
{
    Calls calls;
    GLObjectTable first;
    GLObjectTable second;
    const UInt32 id = GLObjectTable::registerObject(calls.functor(), 1, nullptr);
    first.validate(nullptr, id);
    first.setName(id, 17);
    second.validate(nullptr, id);
    EXPECT_EQ(calls.takeStatuses(), Statuses({Window::initialize, Window::initialize}));
    EXPECT_EQ(first.getName(id), 17u);
    EXPECT_EQ(second.getName(id), 0u);
    EXPECT_EQ(first.getName(id + 1000), 0u);

    GLObjectTable::refresh(id, 1);
    first.validate(nullptr, id);
    EXPECT_EQ(calls.takeStatuses(), Statuses({Window::needrefresh}));
    second.validate(nullptr, id);
    EXPECT_EQ(calls.takeStatuses(), Statuses({Window::needrefresh}));

    GLObjectTable::destroy(id, 1);
    first.destroyEnded(nullptr);
    EXPECT_EQ(calls.takeStatuses(), Statuses({Window::destroy}));
    EXPECT_EQ(first.getName(id), 0u);
    second.destroyEnded(nullptr);
    EXPECT_EQ(calls.takeStatuses(), Statuses({Window::destroy, Window::finaldestroy}));
    second.destroyEnded(nullptr);
    EXPECT_EQ(calls.takeStatuses(), Statuses());
}

TEST(GLObjects, AreCalledByTheIdOfEachOfARow)
{
    Calls calls;
    GLObjectTable table;
    const UInt32 id = GLObjectTable::registerObject(calls.functor(), 3, nullptr);
    table.validate(nullptr, id + 2);
    ASSERT_EQ(calls.list.size(), 1u);
    EXPECT_EQ(calls.list[0].first, id + 2);
    calls.list.clear();
    GLObjectTable::refresh(id, 3);
    table.validate(nullptr, id);
    EXPECT_EQ(calls.takeStatuses(), Statuses({Window::initialize}));
    table.validate(nullptr, id + 2);
    EXPECT_EQ(calls.takeStatuses(), Statuses({Window::needrefresh}));
    GLObjectTable::destroy(id, 3);
    table.destroyEnded(nullptr);
    EXPECT_EQ(calls.takeStatuses(),
              Statuses({Window::destroy, Window::finaldestroy, Window::destroy, Window::finaldestroy}))
        << "the one in the middle was never made";
}

TEST(GLObjects, AskAgainForWhatChangesWhileTheFunctorRuns)
{
    GLObjectTable table;
    int calls = 0;
    UInt32 id = 0;
    id = GLObjectTable::registerObject(
        [&](Window *, UInt32) {
            if(++calls == 1)
                GLObjectTable::refresh(id, 1);
        },
        1, nullptr);
    table.validate(nullptr, id);
    table.validate(nullptr, id);
    table.validate(nullptr, id);
    EXPECT_EQ(calls, 2);
    GLObjectTable::destroy(id, 1);
    table.destroyEnded(nullptr);
}

TEST(GLObjects, MayValidateOthersFromTheirFunctor)
{
    GLObjectTable table;
    Calls inner;
    const UInt32 innerId = GLObjectTable::registerObject(inner.functor(), 1, nullptr);
    const UInt32 outerId = GLObjectTable::registerObject(
        [&](Window *win, UInt32 idstatus) {
            if((idstatus & 7) == Window::initialize)
                table.validate(win, innerId);
        },
        1, nullptr);
    table.validate(nullptr, outerId);
    EXPECT_EQ(inner.takeStatuses(), Statuses({Window::initialize}));
    GLObjectTable::destroy(innerId, 1);
    GLObjectTable::destroy(outerId, 1);
    table.destroyEnded(nullptr);
}

TEST(GLObjects, PassOverIdsThatAreNotRegistered)
{
    GLObjectTable table;
    EXPECT_FALSE(table.validate(nullptr, 0));
    EXPECT_FALSE(table.validate(nullptr, 0x7FFFFFFF));
    GLObjectTable::refresh(0x7FFFFFFF, 1);
    GLObjectTable::reinitialize(0, 1);
    GLObjectTable::destroy(0x7FFFFFFF, 2);
}

TEST(GLObjects, AreDestroyedThroughTheDestroyerWhenTheOwnerIsGone)
{
    staticCalls.clear();
    Calls calls;
    GLObjectTable table;
    const UInt32 id = GLObjectTable::registerObject(calls.functor(), 1, &noteStatically);
    table.validate(nullptr, id);
    calls.list.clear();
    GLObjectTable::destroy(id, 1);
    GLObjectTable::destroy(id, 1);
    EXPECT_FALSE(table.validate(nullptr, id)) << "it has ended, though its GL object is still there";
    table.destroyEnded(nullptr);
    EXPECT_EQ(staticCalls, Statuses({Window::destroy, Window::finaldestroy}));
    EXPECT_EQ(calls.takeStatuses(), Statuses());
}

TEST(GLObjects, LeaveNothingBehindWhenTheWindowGoesFirst)
{
    const std::size_t before = GLObjectTable::getNumRegistered();
    Calls calls;
    auto table = std::make_unique<GLObjectTable>();
    const UInt32 ended = GLObjectTable::registerObject(calls.functor(), 1, nullptr);
    const UInt32 alive = GLObjectTable::registerObject(calls.functor(), 1, nullptr);
    table->validate(nullptr, ended);
    table->validate(nullptr, alive);
    GLObjectTable::destroy(ended, 1);
    EXPECT_EQ(GLObjectTable::getNumRegistered(), before + 2) << "the window still has it";
    table.reset();
    EXPECT_EQ(GLObjectTable::getNumRegistered(), before + 1);
    GLObjectTable::destroy(alive, 1);
    EXPECT_EQ(GLObjectTable::getNumRegistered(), before);
}

TEST(GLObjects, AreToldOfAClosingWindowWhileTheirOwnersLive)
{
    Calls calls;
    GLObjectTable table;
    const UInt32 id = GLObjectTable::registerObject(calls.functor(), 1, nullptr);
    EXPECT_TRUE(table.isEmpty());
    table.validate(nullptr, id);
    EXPECT_FALSE(table.isEmpty());
    calls.list.clear();
    table.destroyAll(nullptr);
    EXPECT_EQ(calls.takeStatuses(), Statuses({Window::destroy}));
    EXPECT_TRUE(table.isEmpty());
    GLObjectTable::destroy(id, 1);
}

TEST(GLObjects, AreNotGivenANewIdAtOnce)
{
    const UInt32 id = GLObjectTable::registerObject(nullptr, 1, nullptr);
    GLObjectTable::destroy(id, 1);
    const UInt32 other = GLObjectTable::registerObject(nullptr, 1, nullptr);
    EXPECT_NE(id, other);
    GLObjectTable::destroy(other, 1);
}

TEST(GLObjects, DoNotUseUpIds)
{
    UInt32 highest = 0;
    for(int i = 0; i < 10000; ++i)
    {
        const UInt32 id = GLObjectTable::registerObject(nullptr, 1, nullptr);
        highest = std::max(highest, id);
        GLObjectTable::destroy(id, 1);
    }
    EXPECT_LT(highest, 3000u);
}

TEST(GLObjects, MayBeRegisteredAndEndedByOtherThreadsMeanwhile)
{
    const std::size_t before = GLObjectTable::getNumRegistered();
    GLObjectTable table;
    std::atomic<int> calls{0};
    std::atomic<UInt32> shared{0};
    std::atomic<bool> done{false};
    std::thread maker([&] {
        for(int i = 0; i < 2000; ++i)
        {
            const UInt32 id = GLObjectTable::registerObject([&](Window *, UInt32) { ++calls; }, 1, nullptr);
            shared = id;
            GLObjectTable::refresh(id, 1);
            if(i % 7 == 0)
                std::this_thread::yield();
            GLObjectTable::destroy(id, 1);
        }
        done = true;
    });
    while(!done)
    {
        table.validate(nullptr, shared);
        table.destroyEnded(nullptr);
    }
    maker.join();
    table.destroyEnded(nullptr);
    EXPECT_EQ(GLObjectTable::getNumRegistered(), before);
}

} // namespace
