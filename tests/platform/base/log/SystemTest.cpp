/// \file
/// Shared libraries and clocks.

#include <OpenSG/OSGSharedLibrary.h>
#include <OpenSG/OSGTime.h>

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

using namespace osg;

TEST(SharedLibrary, OpensGivesSymbolsAndCloses)
{
    SharedLibrary library;
    EXPECT_FALSE(library.isOpen());
    EXPECT_EQ(library.getName(), nullptr);
    EXPECT_EQ(library.getSymbol("cos"), nullptr);
    EXPECT_FALSE(library.close());

    ASSERT_TRUE(library.open("libm.so.6"));
    EXPECT_TRUE(library.isOpen());
    EXPECT_STREQ(library.getName(), "libm.so.6");
    using Function = double (*)(double);
    const Function cosine = reinterpret_cast<Function>(library.getSymbol("cos"));
    ASSERT_NE(cosine, nullptr);
    EXPECT_EQ(cosine(0.0), 1.0);
    EXPECT_EQ(library.getSymbol("no_such_symbol_anywhere"), nullptr);
    EXPECT_EQ(library.getSymbol(nullptr), nullptr);

    EXPECT_TRUE(library.close());
    EXPECT_FALSE(library.isOpen());
    EXPECT_EQ(library.getSymbol("cos"), nullptr);
    EXPECT_FALSE(library.close());
    EXPECT_STREQ(library.getName(), "libm.so.6");
    EXPECT_TRUE(library.open(library.getName()));
}

TEST(SharedLibrary, LibraryThatIsNotThereStaysClosedAndKeepsItsName)
{
    SharedLibrary library("libno-such-library.so");
    EXPECT_FALSE(library.isOpen());
    EXPECT_STREQ(library.getName(), "libno-such-library.so");
    ASSERT_TRUE(library.open("libm.so.6"));
    EXPECT_FALSE(library.open("libno-such-library.so"));
    EXPECT_FALSE(library.isOpen());
}

TEST(SharedLibrary, NoNameStandsForTheProgram)
{
    SharedLibrary library;
    EXPECT_TRUE(library.open(nullptr));
    EXPECT_EQ(library.getName(), nullptr);
    EXPECT_NE(library.getSymbol("malloc"), nullptr);
}

TEST(Clock, GoesByTheSecondAndTheMillisecond)
{
    const Time start = getSystemTime();
    const UInt32 startMs = getSystemTimeMs();
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    const UInt32 milliseconds = getSystemTimeMs() - startMs;
    const Time seconds = getSystemTime() - start;
    EXPECT_GE(milliseconds, 29u);
    EXPECT_GE(seconds, 0.030);
    // The second clock was read first and last, so the other can't have counted more, but for a rounded
    // millisecond.
    EXPECT_LE(milliseconds, seconds * 1000.0 + 1.0);
}
