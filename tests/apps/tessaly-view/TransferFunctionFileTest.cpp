/// \file
/// Transfer-function files, right and wrong.

#include "TransferFunctionFile.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <random>
#include <unistd.h>

namespace
{

using namespace viewer;

const char *const good = "2\n0 0\n1 0.5\n2\n0 0.1 0.2 0.3\n1 1 1 1\n";

TEST(TransferFunctionFile, PointsKeepTheOrderOfTheFile)
{
    const TransferFunctionText read = parseTransferFunction(good, "tf");
    EXPECT_EQ(read.error, "");
    EXPECT_EQ(read.warning, "");
    ASSERT_EQ(read.points.opacity.size(), 2u);
    EXPECT_EQ(read.points.opacity[1].position, 1.0f);
    EXPECT_EQ(read.points.opacity[1].opacity, 0.5f);
    ASSERT_EQ(read.points.color.size(), 2u);
    EXPECT_EQ(read.points.color[0].red, 0.1f);
    EXPECT_EQ(read.points.color[0].green, 0.2f);
    EXPECT_EQ(read.points.color[0].blue, 0.3f);
}

TEST(TransferFunctionFile, AnyWhiteSpaceSeparates)
{
    const TransferFunctionText read = parseTransferFunction("1\t1 1e-1\r\n1\v1 +.5 5E-1 0", "tf");
    EXPECT_EQ(read.error, "");
    ASSERT_EQ(read.points.opacity.size(), 1u);
    EXPECT_EQ(read.points.opacity[0].opacity, 0.1f);
    EXPECT_EQ(read.points.color[0].red, 0.5f);
    EXPECT_EQ(read.points.color[0].green, 0.5f);
}

TEST(TransferFunctionFile, OpacitiesThatEndBelowOneAreReadWithAWarning)
{
    const TransferFunctionText read = parseTransferFunction("2 0 0 0.5 1 1 0 1 1 1", "tf");
    EXPECT_EQ(read.error, "");
    EXPECT_EQ(read.warning,
              "tf: the opacity points end below position 1, so the last opacity holds for all values");
    EXPECT_EQ(read.points.opacity.size(), 2u);
}

TEST(TransferFunctionFile, WhateverIsWrongIsToldWithItsLine)
{
    const std::vector<std::pair<const char *, const char *>> table = {
        {"", "tf:1: the file ends where the number of opacity points should be"},
        {"two", "tf:1: 'two' is not a number of opacity points"},
        {"2.5", "tf:1: '2.5' is not a number of opacity points"},
        {"nan", "tf:1: 'nan' is not a number of opacity points"},
        {"0", "tf:1: '0' opacity points, there must be 1 to 65536"},
        {"-3", "tf:1: '-3' opacity points, there must be 1 to 65536"},
        {"4000000000", "tf:1: '4000000000' opacity points, there must be 1 to 65536"},
        {"70000", "tf:1: '70000' opacity points, there must be 1 to 65536"},
        {"2\n0 0\n", "tf:3: the file ends where the position of opacity point 2 should be"},
        {"2\n0 0\n1", "tf:3: the file ends where the opacity of opacity point 2 should be"},
        {"1\n0 x\n", "tf:2: the opacity of opacity point 1 is 'x', not a number"},
        {"1\n0 1.5\n", "tf:2: the opacity of opacity point 1 is '1.5', it must lie in 0 to 1"},
        {"1\n-1 0\n", "tf:2: the position of opacity point 1 is '-1', it must lie in 0 to 1"},
        {"2\n0.5 0\n0.25 1\n",
         "tf:3: the position of opacity point 2 is below that of the point ahead of it"},
        {"1\n1 1\n", "tf:3: the file ends where the number of colour points should be"},
        {"1\n1 1\n0\n", "tf:3: '0' colour points, there must be 1 to 65536"},
        {"1\n1 1\n1\n0 0 0", "tf:4: the file ends where the blue of colour point 1 should be"},
        {"1\n1 1\n1\n0 0 0 0\n\n7", "tf:6: '7' stands behind the last colour point"},
        {"1\n1 1\n1\n0 0 \001\002 0", "tf:4: the green of colour point 1 is '\?\?', not a number"},
    };
    for (const auto &wrong : table)
    {
        EXPECT_EQ(parseTransferFunction(wrong.first, "tf").error, wrong.second);
    }
}

TEST(TransferFunctionFile, ALongWordIsCutInTheMessage)
{
    EXPECT_EQ(parseTransferFunction(std::string(1000, 'a'), "tf").error,
              "tf:1: '" + std::string(40, 'a') + "...' is not a number of opacity points");
}

TEST(TransferFunctionFile, EveryCutOfAGoodFileIsRefusedOrWhole)
{
    const std::string text = good;
    for (std::size_t length = 0; length + 2 < text.size(); ++length)
    {
        EXPECT_NE(parseTransferFunction(text.substr(0, length), "tf").error, "") << length;
    }
    EXPECT_EQ(parseTransferFunction(text.substr(0, text.size() - 1), "tf").error, "");
}

TEST(TransferFunctionFile, RandomBytesNeverGivePointsWithoutLists)
{
    constexpr unsigned seed = 99;
    RecordProperty("seed", static_cast<int>(seed));
    std::mt19937 random(seed);
    const std::string letters = "0123456789 .\n-+e\tx";
    for (int i = 0; i < 2000; ++i)
    {
        std::string text(random() % 40, ' ');
        for (char &c : text)
        {
            c = letters[random() % letters.size()];
        }
        const TransferFunctionText read = parseTransferFunction(text, "tf");
        if (read.error.empty())
        {
            EXPECT_FALSE(read.points.opacity.empty() || read.points.color.empty())
                << "seed " << seed << ": " << text;
        }
    }
}

TEST(TransferFunctionFile, FilesThatCannotBeReadAreTold)
{
    EXPECT_EQ(readTransferFunction("no/such/file").error, "no/such/file: No such file or directory");
    EXPECT_EQ(readTransferFunction("/").error, "/: is not a file");
}

TEST(TransferFunctionFile, AFileIsReadAsItsText)
{
    const std::string name = testing::TempDir() + "tessaly-tf-" + std::to_string(getpid()) + ".txt";
    std::ofstream(name) << "1\n1 2\n";
    EXPECT_EQ(readTransferFunction(name).error,
              name + ":2: the opacity of opacity point 1 is '2', it must lie in 0 to 1");
    std::ofstream(name) << good;
    EXPECT_EQ(readTransferFunction(name).points.color.size(), 2u);
    std::remove(name.c_str());
}

} // namespace
