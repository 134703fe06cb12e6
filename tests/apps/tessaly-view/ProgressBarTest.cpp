/// \file
/// The bar's text on a terminal of the test's own.

#include "ProgressBar.h"

#include <gtest/gtest.h>

#include <sstream>

namespace
{

using namespace viewer;

TEST(ProgressBar, LinesTellShareAndWork)
{
    EXPECT_EQ(ProgressBar::line(0.0, "reading"), "[..............................]   0 % reading");
    EXPECT_EQ(ProgressBar::line(0.5, "drawing"), "[###############...............]  50 % drawing");
    EXPECT_EQ(ProgressBar::line(1.0, "writing"), "[##############################] 100 % writing");
    EXPECT_EQ(ProgressBar::line(7.0, ""), "[##############################] 100 % ");
    EXPECT_EQ(ProgressBar::line(-1.0, ""), "[..............................]   0 % ");
}

TEST(ProgressBar, WhatTakesNoLongerThanABlinkShowsNothing)
{
    std::ostringstream terminal;
    double now = 0.0;
    {
        ProgressBar bar(terminal, true, [&] { return now; });
        bar.show(0.1, "reading");
        now += ProgressBar::blink;
        bar.show(0.9, "writing");
    }
    EXPECT_EQ(terminal.str(), "");
}

TEST(ProgressBar, LongerWorkIsShownInPlaceAndTakenAwayInTheEnd)
{
    std::ostringstream terminal;
    double now = 0.0;
    {
        ProgressBar bar(terminal, true, [&] { return now; });
        now = 1.0;
        bar.show(0.5, "drawing");
        bar.show(1.0, "writing");
    }
    EXPECT_EQ(terminal.str(), "\r\033[K[###############...............]  50 % drawing"
                              "\r\033[K[##############################] 100 % writing"
                              "\r\033[K");
}

TEST(ProgressBar, ClearingTwiceWritesOnce)
{
    std::ostringstream terminal;
    double now = 0.0;
    ProgressBar bar(terminal, true, [&] { return now; });
    now = 1.0;
    bar.show(0.0, "x");
    terminal.str("");
    bar.clear();
    bar.clear();
    EXPECT_EQ(terminal.str(), "\r\033[K");
}

TEST(ProgressBar, OffATerminalNothingIsEverWritten)
{
    std::ostringstream file;
    double now = 0.0;
    {
        ProgressBar bar(file, false, [&] { return now; });
        now = 100.0;
        bar.show(0.5, "drawing");
    }
    EXPECT_EQ(file.str(), "");
}

} // namespace
