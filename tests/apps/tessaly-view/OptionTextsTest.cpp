/// \file
/// What is written of options is read as the same options.

#include "OptionTexts.h"
#include "Options.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <unistd.h>
#include <string>
#include <vector>

namespace
{

using namespace viewer;

/// Reads a state as the program does, with further arguments.
CommandLine read(const std::string &state, std::vector<std::string> more = {})
{
    std::string name = testing::TempDir() + "tessaly-state-XXXXXX";
    const int file = mkstemp(name.data());
    EXPECT_GE(file, 0);
    close(file);
    std::ofstream(name) << state;
    std::vector<std::string> words{"tessaly-view", "--load-state", name};
    words.insert(words.end(), more.begin(), more.end());
    std::vector<const char *> arguments;
    for (const std::string &word : words)
    {
        arguments.push_back(word.c_str());
    }
    const CommandLine line = parseCommandLine(static_cast<int>(arguments.size()), arguments.data());
    std::remove(name.c_str());
    return line;
}

/// Options of which none has its default.
Options unusual()
{
    Options o;
    o.input = "my scan's \xc3\xa4.nii.gz";
    o.width = 640;
    o.height = 481;
    o.camera = {Vec3{1.0 / 3.0, -2.5e-7, 300.0}, Vec3{0.1, 0.2, 0.3}, Vec3{0, 1, 0}, 33.3, -12.25, 7.0, 1.5};
    o.shading = Shading::Dvr;
    o.material = {{0.1, 0.2, 0.3}, {0.4, 0.5, 0.6}, {0.7, 0.8, 0.9}, 0.7};
    o.preset = "mri";
    o.points = TransferPoints{{{0.0f, 0.0f}, {1.0f / 3.0f, 0.7f}, {1.0f, 1.0f}},
                              {{0.0f, 0.1f, 0.2f, 0.3f}, {1.0f, 1.0f, 0.5f, 0.0f}}};
    o.step = 0.0071;
    o.ray = Ray::Interleaved;
    o.geometry = BoundingGeometry::Box;
    o.traversal = Traversal::Block;
    o.normals = Normals::Sobel;
    o.preIntegrated = true;
    o.gradientModulation = {true, 0.3, 2.0, 1.75};
    o.opaque = {true, "mesh, with \"quotes\".obj", {1, 2, 3}, {-0.5, 0.25, 0.125}, {0.9, 0.8, 0.7}};
    o.background = {0.25, 0.5, 0.75};
    o.swapped = true;
    o.maxMemory = 512.5;
    return o;
}

void expectSame(const Options &a, const Options &b)
{
    EXPECT_EQ(a.input, b.input);
    EXPECT_EQ(a.width, b.width);
    EXPECT_EQ(a.height, b.height);
    EXPECT_TRUE(a.camera == b.camera);
    EXPECT_EQ(a.shading, b.shading);
    EXPECT_TRUE(a.material == b.material);
    EXPECT_EQ(a.preset, b.preset);
    EXPECT_EQ(a.transferFunction, b.transferFunction);
    EXPECT_TRUE(a.points == b.points);
    EXPECT_EQ(a.step, b.step);
    EXPECT_EQ(a.ray, b.ray);
    EXPECT_EQ(a.geometry, b.geometry);
    EXPECT_EQ(a.traversal, b.traversal);
    EXPECT_EQ(a.normals, b.normals);
    EXPECT_EQ(a.preIntegrated, b.preIntegrated);
    EXPECT_TRUE(a.gradientModulation == b.gradientModulation);
    EXPECT_TRUE(a.opaque == b.opaque);
    EXPECT_EQ(a.background, b.background);
    EXPECT_EQ(a.swapped, b.swapped);
    EXPECT_EQ(a.maxMemory, b.maxMemory);
}

TEST(State, WhatIsWrittenIsReadAsTheSameOptionsToTheLastBit)
{
    const Options written = unusual();
    const CommandLine line = read(stateText(written));
    ASSERT_TRUE(line.run) << line.text;
    expectSame(line.options, written);
}

TEST(State, DefaultsAreWrittenAndReadToo)
{
    const CommandLine line = read(stateText(Options()));
    ASSERT_TRUE(line.run) << line.text;
    expectSame(line.options, Options());
}

TEST(State, ATransferFunctionFileIsNamedWhereThereAreNoPoints)
{
    Options written = unusual();
    written.points.reset();
    written.transferFunction = "bone.txt";
    const CommandLine line = read(stateText(written));
    ASSERT_TRUE(line.run) << line.text;
    expectSame(line.options, written);
}

TEST(State, TheCommandLineGoesAheadOfTheFile)
{
    Options written;
    written.input = "a.nii";
    written.step = 0.01;
    const CommandLine line = read(stateText(written), {"--step", "0.02", "--shading", "mip"});
    ASSERT_TRUE(line.run) << line.text;
    EXPECT_EQ(line.options.step, 0.02);
    EXPECT_EQ(line.options.shading, Shading::Mip);
    EXPECT_EQ(line.options.input, "a.nii");
}

TEST(State, EveryOptionThatAPictureDependsOnIsInTheText)
{
    const std::string text = stateText(unusual());
    const char *arguments[] = {"tessaly-view", "--help"};
    const std::string help = parseCommandLine(2, arguments).text;
    // Where the picture goes, what is printed, and what is said in another way.
    const std::vector<std::string> others{"help",
                                          "version",
                                          "output",
                                          "turntable",
                                          "list-presets",
                                          "no-panel",
                                          "save-state",
                                          "save-transfer-function",
                                          "load-state",
                                          "info",
                                          "quiet",
                                          "verbose",
                                          "transfer-function"};
    std::size_t found = 0;
    for (std::size_t at = help.find("--"); at != std::string::npos; at = help.find("--", at + 2))
    {
        const std::size_t end = help.find_first_not_of("abcdefghijklmnopqrstuvwxyz-", at);
        const std::string name = help.substr(at + 2, end - at - 2);
        if (std::find(others.begin(), others.end(), name) == others.end() && !name.empty())
        {
            EXPECT_NE(("\n" + text).find("\n" + name + "="), std::string::npos) << name;
            ++found;
        }
    }
    EXPECT_GE(found, 30u) << "the help was searched";
}

TEST(State, ATextWithBothKindsOfQuotesIsLeftOutInSoManyWords)
{
    Options written;
    written.input = "it's \"both\".nii";
    EXPECT_EQ(stateText(written).rfind("# scan: a text with both kinds of quotes can't be kept\n", 0), 0u);
    EXPECT_TRUE(read(stateText(written)).run);
}

TEST(State, WrongFilesAreWrongCommandLines)
{
    const auto wrong = [](const std::string &text)
    {
        const CommandLine line = read(text);
        EXPECT_FALSE(line.run);
        EXPECT_EQ(line.exitStatus, 2);
        EXPECT_EQ(line.text.find('\n'), std::string::npos);
        return line.text;
    };
    EXPECT_EQ(wrong("step=\"much\"\n"), "--step: 'much' is not a number");
    EXPECT_EQ(wrong("shading=\"phong\"\n"), "--shading: 'phong' is not one of dvr|lit|mip|xray");
    EXPECT_NE(wrong("colour=3\n").find("colour"), std::string::npos);
    const char *arguments[] = {"tessaly-view", "--load-state", "/nowhere/state.ini"};
    const CommandLine missing = parseCommandLine(3, arguments);
    EXPECT_EQ(missing.exitStatus, 2);
    EXPECT_NE(missing.text.find("/nowhere/state.ini"), std::string::npos) << missing.text;
}

TEST(PointTexts, GroupsArePointsAndWhateverElseIsTold)
{
    std::vector<OpacityPoint> opacity;
    EXPECT_EQ(opacityPointsFrom("0,0,0.5,1", opacity), "");
    EXPECT_EQ(opacity, (std::vector<OpacityPoint>{{0.0f, 0.0f}, {0.5f, 1.0f}}));
    EXPECT_EQ(opacityPointsText(opacity), "0,0,0.5,1");
    EXPECT_EQ(opacityPointsFrom("0,0,0.5", opacity), "not groups of 2 numbers with commas in between");
    EXPECT_EQ(opacityPointsFrom("0,x", opacity), "not groups of 2 numbers with commas in between");
    EXPECT_EQ(opacityPointsFrom("0,1.5", opacity), "1.5 is out of range, each number must be 0 to 1");
    EXPECT_EQ(opacityPointsFrom("0.5,0,0.25,1", opacity), "position 0.25 comes behind 0.5");
    std::vector<ColorPoint> color;
    EXPECT_EQ(colorPointsFrom("0.25,1,0.5,0", color), "");
    EXPECT_EQ(color, (std::vector<ColorPoint>{{0.25f, 1.0f, 0.5f, 0.0f}}));
    EXPECT_EQ(colorPointsText(color), "0.25,1,0.5,0");
    EXPECT_EQ(colorPointsFrom("0.25,1,0.5", color), "not groups of 4 numbers with commas in between");
}

} // namespace
