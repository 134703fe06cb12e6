/// \file
/// What reaches the console.

#include "ConsoleLog.h"
#include "StdoutGuard.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>

namespace
{

using namespace viewer;

TEST(ConsoleLog, WarningsAreShownAndNoticesOnlyWhereAsked)
{
    const auto shown = [](Chatter chatter)
    {
        std::ostringstream out;
        int cleared = 0;
        {
            ConsoleLog log(out, chatter, [&] { ++cleared; });
            FLOG(("going on\n"));
            FFATAL(("it broke\n"));
            FWARNING(("it may break\n"));
            FNOTICE(("by the way\n"));
            FINFO(("details\n"));
        }
        return out.str() + std::to_string(cleared);
    };
    EXPECT_EQ(shown(Chatter::Quiet), "0");
    EXPECT_EQ(shown(Chatter::Normal),
              "tessaly-view: error: it broke\ntessaly-view: warning: it may break\n2");
    EXPECT_EQ(shown(Chatter::Verbose),
              "going on\ntessaly-view: error: it broke\ntessaly-view: warning: it may break\nby the way\n4");
}

TEST(ConsoleLog, WhatIsHeldBackIsDroppedOrReleased)
{
    std::ostringstream out;
    ConsoleLog log(out, Chatter::Normal, [] {});
    log.hold();
    FWARNING(("first\nline\n"));
    FWARNING(("second\n"));
    EXPECT_EQ(out.str(), "");
    EXPECT_EQ(log.drop(), "first line");
    EXPECT_EQ(out.str(), "");
    EXPECT_EQ(log.drop(), "");

    log.hold();
    FWARNING(("third\n"));
    log.release();
    EXPECT_EQ(out.str(), "tessaly-view: warning: third\n");
}

TEST(StdoutGuard, KeepsStandardOutputCleanAndGivesItBack)
{
    testing::internal::CaptureStdout();
    std::printf("before\n");
    {
        const StdoutGuard guard(StdoutGuard::To::Nowhere);
        std::printf("swallowed\n");
    }
    std::printf("after\n");
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "before\nafter\n");
}

} // namespace
