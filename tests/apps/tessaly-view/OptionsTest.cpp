/// \file
/// Every wrong command line has one line that says what is wrong, to the letter.

#include "Options.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

using namespace viewer;

CommandLine parse(std::vector<std::string> words)
{
    words.insert(words.begin(), "tessaly-view");
    std::vector<const char *> arguments;
    for (const std::string &word : words)
    {
        arguments.push_back(word.c_str());
    }
    return parseCommandLine(static_cast<int>(arguments.size()), arguments.data());
}

/// The options of a right command line that begins with a volume and a picture.
Options options(const std::vector<std::string> &more)
{
    std::vector<std::string> words{"scan.nii.gz", "--output", "brain.png"};
    words.insert(words.end(), more.begin(), more.end());
    const CommandLine line = parse(words);
    EXPECT_TRUE(line.run) << line.text;
    return line.options;
}

TEST(Options, AVolumeAndAPictureAreEnoughAndTheRestHasDefaults)
{
    const Options o = options({});
    EXPECT_EQ(o.input, "scan.nii.gz");
    EXPECT_EQ(o.output, "brain.png");
    EXPECT_EQ(o.width, 1024);
    EXPECT_EQ(o.height, 768);
    EXPECT_EQ(o.shading, Shading::Lit);
    EXPECT_EQ(o.ray, Ray::Simple);
    EXPECT_EQ(o.geometry, BoundingGeometry::Boundary);
    EXPECT_EQ(o.traversal, Traversal::Simple);
    EXPECT_EQ(o.normals, Normals::Central);
    EXPECT_EQ(o.step, 0.005);
    EXPECT_EQ(o.transferFunction, "");
    EXPECT_FALSE(o.camera.position || o.camera.focalPoint || o.camera.viewUp);
    EXPECT_EQ(o.camera.viewAngle, 30.0);
    EXPECT_FALSE(o.preIntegrated || o.gradientModulation.enabled || o.opaque.enabled || o.swapped || o.info ||
                 o.quiet || o.verbose);
}

TEST(Options, AllOptionsArrive)
{
    const Options o = options({"--size",
                               "64,48",
                               "--camera-position",
                               "-1,.5,3e2",
                               "--camera-focal-point=1,2,3",
                               "--camera-view-up",
                               "0,1,0",
                               "--camera-view-angle",
                               "45",
                               "--azimuth",
                               "-30",
                               "--elevation",
                               "+20",
                               "--zoom",
                               "1.5",
                               "--shading",
                               "dvr",
                               "--transfer-function",
                               "tf.txt",
                               "--step",
                               "0.002",
                               "--ray",
                               "interleaved",
                               "--geometry",
                               "box",
                               "--traversal",
                               "block",
                               "--normals",
                               "sobel",
                               "--pre-integrated",
                               "--gradient-modulation",
                               "--retained-opacity",
                               "0.25",
                               "--boundary-opacity",
                               "2",
                               "--opacity-factor",
                               "3",
                               "--background",
                               "0.1,0.2,0.3",
                               "--opaque",
                               "--opaque-size",
                               "1,2,3",
                               "--opaque-center",
                               "-0.5,0,0.5",
                               "--opaque-color",
                               "1,0,0.5",
                               "--swapped",
                               "--quiet"});
    EXPECT_EQ(o.width, 64);
    EXPECT_EQ(o.height, 48);
    EXPECT_EQ(o.camera.position, (Vec3{-1, 0.5, 300}));
    EXPECT_EQ(o.camera.focalPoint, (Vec3{1, 2, 3}));
    EXPECT_EQ(o.camera.viewUp, (Vec3{0, 1, 0}));
    EXPECT_EQ(o.camera.viewAngle, 45.0);
    EXPECT_EQ(o.camera.azimuth, -30.0);
    EXPECT_EQ(o.camera.elevation, 20.0);
    EXPECT_EQ(o.camera.zoom, 1.5);
    EXPECT_EQ(o.shading, Shading::Dvr);
    EXPECT_EQ(o.transferFunction, "tf.txt");
    EXPECT_EQ(o.step, 0.002);
    EXPECT_EQ(o.ray, Ray::Interleaved);
    EXPECT_EQ(o.geometry, BoundingGeometry::Box);
    EXPECT_EQ(o.traversal, Traversal::Block);
    EXPECT_EQ(o.normals, Normals::Sobel);
    EXPECT_TRUE(o.preIntegrated);
    EXPECT_TRUE(o.gradientModulation.enabled);
    EXPECT_EQ(o.gradientModulation.retained, 0.25);
    EXPECT_EQ(o.gradientModulation.boundary, 2.0);
    EXPECT_EQ(o.gradientModulation.factor, 3.0);
    EXPECT_EQ(o.background, (Vec3{0.1, 0.2, 0.3}));
    EXPECT_TRUE(o.opaque.enabled);
    EXPECT_EQ(o.opaque.size, (Vec3{1, 2, 3}));
    EXPECT_EQ(o.opaque.center, (Vec3{-0.5, 0, 0.5}));
    EXPECT_EQ(o.opaque.color, (Vec3{1, 0, 0.5}));
    EXPECT_TRUE(o.swapped);
    EXPECT_TRUE(o.quiet);
}

TEST(Options, EveryNameOfAChoiceIsKnown)
{
    EXPECT_EQ(options({"--shading", "dvr"}).shading, Shading::Dvr);
    EXPECT_EQ(options({"--shading", "lit"}).shading, Shading::Lit);
    EXPECT_EQ(options({"--shading", "mip"}).shading, Shading::Mip);
    EXPECT_EQ(options({"--shading", "xray"}).shading, Shading::Xray);
    EXPECT_EQ(options({"--ray", "simple"}).ray, Ray::Simple);
    EXPECT_EQ(options({"--geometry", "boundary"}).geometry, BoundingGeometry::Boundary);
    EXPECT_EQ(options({"--traversal", "simple"}).traversal, Traversal::Simple);
    EXPECT_EQ(options({"--normals", "pre"}).normals, Normals::Precomputed);
    EXPECT_EQ(options({"--normals", "central"}).normals, Normals::Central);
}

TEST(Options, WhatIsSaidLastCounts)
{
    EXPECT_EQ(options({"--step", "0.01", "--step", "0.02"}).step, 0.02);
    EXPECT_EQ(options({"--shading", "mip", "--shading", "dvr"}).shading, Shading::Dvr);
}

TEST(Options, WithoutAPictureThereIsAWindowEvenWithoutAVolume)
{
    const CommandLine line = parse({});
    EXPECT_TRUE(line.run) << line.text;
    EXPECT_EQ(line.options.input, "");
    EXPECT_EQ(line.options.output, "");
    EXPECT_TRUE(line.options.panel);
    EXPECT_FALSE(parse({"--no-panel"}).options.panel);
}

TEST(Options, APresetBringsItsShadingUnlessAnotherIsSaid)
{
    EXPECT_EQ(options({"--preset", "mri-vessels"}).shading, Shading::Mip);
    EXPECT_EQ(options({"--preset", "mri-vessels", "--shading", "lit"}).shading, Shading::Lit);
    EXPECT_EQ(options({"--preset", "mri-vessels"}).preset, "mri-vessels");
}

TEST(Options, ThePresetsAreListedWithoutAnyOtherWord)
{
    const CommandLine line = parse({"--list-presets"});
    EXPECT_FALSE(line.run);
    EXPECT_EQ(line.exitStatus, 0);
    EXPECT_EQ(line.text, presetList());
}

TEST(Options, InfoNeedsNoPicture)
{
    const CommandLine line = parse({"scan.nii", "--info"});
    EXPECT_TRUE(line.run);
    EXPECT_TRUE(line.options.info);
}

TEST(Options, VersionAndHelpEndWithSuccessOnStandardOutput)
{
    const CommandLine version = parse({"--version"});
    EXPECT_FALSE(version.run);
    EXPECT_EQ(version.exitStatus, 0);
    EXPECT_EQ(version.text.rfind("tessaly-view ", 0), 0u);

    const CommandLine help = parse({"--help"});
    EXPECT_FALSE(help.run);
    EXPECT_EQ(help.exitStatus, 0);
    for (const char *option : {"--output",
                               "--size",
                               "--camera-position",
                               "--camera-focal-point",
                               "--camera-view-up",
                               "--camera-view-angle",
                               "--azimuth",
                               "--elevation",
                               "--zoom",
                               "--shading",
                               "--transfer-function",
                               "--step",
                               "--ray",
                               "--geometry",
                               "--traversal",
                               "--normals",
                               "--pre-integrated",
                               "--gradient-modulation",
                               "--background",
                               "--opaque",
                               "--info",
                               "--quiet",
                               "--verbose",
                               "--version",
                               "--swapped",
                               "--turntable",
                               "--preset",
                               "--list-presets",
                               "--opacity-points",
                               "--color-points",
                               "--emissive",
                               "--diffuse",
                               "--specular",
                               "--shininess",
                               "--opaque-file",
                               "--max-memory",
                               "--no-panel",
                               "--save-state",
                               "--save-transfer-function",
                               "--load-state"})
    {
        EXPECT_NE(help.text.find(option), std::string::npos) << option;
    }
}

struct Wrong
{
    std::vector<std::string> words;
    const char *line;
};

TEST(Options, WhateverIsWrongIsToldInOneLineToTheLetter)
{
    const std::vector<Wrong> table = {
        {{"-o", "x.png"}, "scan is required"},
        {{"--info"}, "scan is required"},
        {{"a.nii", "--turntable", "3"}, "--turntable needs --output"},
        {{"a.nii", "-o", "x.png", "--turntable", "0"},
         "--turntable: 0 is out of range, it must be 1 to 9999"},
        {{"a.nii", "-o", "x.png", "--turntable", "2.5"}, "--turntable: 2.5 is not a whole number"},
        {{"a.nii", "-o", "x.png", "--preset", "ct"}, "--preset: 'ct' is none, see --list-presets"},
        {{"a.nii", "-o", "x.png", "--opacity-points", "0,0,1,1"},
         "--opacity-points and --color-points go together"},
        {{"a.nii", "-o", "x.png", "--opacity-points", "0,0,1", "--color-points", "0,0,0,0"},
         "--opacity-points: not groups of 2 numbers with commas in between"},
        {{"a.nii", "-o", "x.png", "--opacity-points", "0,0", "--color-points", "0,0,0,2"},
         "--color-points: 2 is out of range, each number must be 0 to 1"},
        {{"a.nii", "-o", "x.png", "--shininess", "1.5"},
         "--shininess: 1.5 is out of range, it must be 0 to 1"},
        {{"a.nii", "-o", "x.png", "--diffuse", "red"}, "--diffuse: 'red' is not r,g,b"},
        {{"a.nii", "-o", "x.png", "--max-memory", "-1"},
         "--max-memory: -1 is out of range, it must be 0 to 1e9 MiB"},
        {{"a.nii", "-o", "x.png", "--opaque-file", "a.ply"}, "--opaque-file requires --opaque"},
        {{"a.nii", "b.nii", "-o", "x.png"}, "The following argument was not expected: b.nii"},
        {{"a.nii", "-o", "x.png", "--colour", "3"}, "The following arguments were not expected: 3 --colour"},
        {{"", "-o", "x.png"}, "scan: is empty"},
        {{"a.nii", "-o", ""}, "--output: is empty"},
        {{"a.nii", "-o"}, "--output: 1 required FILE missing"},
        {{"a.nii", "-o", "x.png", "--size"}, "--size: 1 required W,H missing"},
        {{"a.nii", "-o", "x.png", "--size", "12"}, "--size: '12' is not W,H in whole pixels"},
        {{"a.nii", "-o", "x.png", "--size", "1,2,3"}, "--size: '1,2,3' is not W,H in whole pixels"},
        {{"a.nii", "-o", "x.png", "--size", "1.5,2"}, "--size: '1.5,2' is not W,H in whole pixels"},
        {{"a.nii", "-o", "x.png", "--size", "10x20"}, "--size: '10x20' is not W,H in whole pixels"},
        {{"a.nii", "-o", "x.png", "--size", "0,20"},
         "--size: 0,20 is out of range, each side must be 1 to 8192 pixels"},
        {{"a.nii", "-o", "x.png", "--size", "20,-1"},
         "--size: 20,-1 is out of range, each side must be 1 to 8192 pixels"},
        {{"a.nii", "-o", "x.png", "--size", "20,8193"},
         "--size: 20,8193 is out of range, each side must be 1 to 8192 pixels"},
        {{"a.nii", "-o", "x.png", "--camera-position", "1,2"}, "--camera-position: '1,2' is not x,y,z"},
        {{"a.nii", "-o", "x.png", "--camera-position", "1,2,inf"},
         "--camera-position: '1,2,inf' is not x,y,z"},
        {{"a.nii", "-o", "x.png", "--camera-position", "1,2,1e30"},
         "--camera-position: 1,2,1e30 is out of range, each number must be -1e9 to 1e9"},
        {{"a.nii", "-o", "x.png", "--camera-focal-point", "a,b,c"},
         "--camera-focal-point: 'a,b,c' is not x,y,z"},
        {{"a.nii", "-o", "x.png", "--camera-view-up", "1;2;3"}, "--camera-view-up: '1;2;3' is not x,y,z"},
        {{"a.nii", "-o", "x.png", "--camera-view-up", "0,0,0"},
         "the camera's view-up direction has no length"},
        {{"a.nii", "-o", "x.png", "--camera-position", "5,0,0", "--camera-view-up", "-1,0,0"},
         "the camera's view-up direction lies along its line of sight"},
        {{"a.nii", "-o", "x.png", "--camera-position", "0,0,0"},
         "the camera position is the focal point, there is no direction to look in"},
        {{"a.nii", "-o", "x.png", "--camera-position", "1,2,3", "--camera-focal-point", "1,2,3"},
         "the camera position is the focal point, there is no direction to look in"},
        {{"a.nii", "-o", "x.png", "--camera-view-angle", "0"},
         "--camera-view-angle: 0 is out of range, it must be 0.01 to 179 degrees"},
        {{"a.nii", "-o", "x.png", "--camera-view-angle", "180"},
         "--camera-view-angle: 180 is out of range, it must be 0.01 to 179 degrees"},
        {{"a.nii", "-o", "x.png", "--azimuth", "left"}, "--azimuth: 'left' is not a number"},
        {{"a.nii", "-o", "x.png", "--azimuth", "1e7"},
         "--azimuth: 1e7 is out of range, it must be -1e6 to 1e6 degrees"},
        {{"a.nii", "-o", "x.png", "--azimuth", ""}, "--azimuth: is empty"},
        {{"a.nii", "-o", "x.png", "--elevation", "1,2"}, "--elevation: '1,2' is not a number"},
        {{"a.nii", "-o", "x.png", "--zoom", "0"}, "--zoom: 0 is out of range, it must be 0.001 to 1000"},
        {{"a.nii", "-o", "x.png", "--shading", "phong"}, "--shading: 'phong' is not one of dvr|lit|mip|xray"},
        {{"a.nii", "-o", "x.png", "--ray", "2"}, "--ray: '2' is not one of interleaved|simple"},
        {{"a.nii", "-o", "x.png", "--geometry", "Box"}, "--geometry: 'Box' is not one of boundary|box"},
        {{"a.nii", "-o", "x.png", "--traversal", "x"}, "--traversal: 'x' is not one of block|simple"},
        {{"a.nii", "-o", "x.png", "--normals", "x"}, "--normals: 'x' is not one of central|pre|sobel"},
        {{"a.nii", "-o", "x.png", "--transfer-function", ""}, "--transfer-function: is empty"},
        {{"a.nii", "-o", "x.png", "--step", "0"}, "--step: 0 is out of range, it must be 0.0001 to 1"},
        {{"a.nii", "-o", "x.png", "--step", "-0.004"},
         "--step: -0.004 is out of range, it must be 0.0001 to 1"},
        {{"a.nii", "-o", "x.png", "--step", "1.1"}, "--step: 1.1 is out of range, it must be 0.0001 to 1"},
        {{"a.nii", "-o", "x.png", "--step", "nan"}, "--step: 'nan' is not a number"},
        {{"a.nii", "-o", "x.png", "--step", "0.004m"}, "--step: '0.004m' is not a number"},
        {{"a.nii", "-o", "x.png", "--retained-opacity", "1"},
         "--retained-opacity requires --gradient-modulation"},
        {{"a.nii", "-o", "x.png", "--gradient-modulation", "--retained-opacity", "-1"},
         "--retained-opacity: -1 is out of range, it must be 0 to 1e6"},
        {{"a.nii", "-o", "x.png", "--gradient-modulation", "--boundary-opacity", "x"},
         "--boundary-opacity: 'x' is not a number"},
        {{"a.nii", "-o", "x.png", "--gradient-modulation", "--opacity-factor", "1e9"},
         "--opacity-factor: 1e9 is out of range, it must be 0 to 1e6"},
        {{"a.nii", "-o", "x.png", "--gradient-modulation", "--shading", "mip"},
         "--gradient-modulation works with --shading dvr and lit only"},
        {{"a.nii", "-o", "x.png", "--pre-integrated", "--shading", "xray"},
         "--pre-integrated works with --shading dvr and lit only"},
        {{"a.nii", "-o", "x.png", "--background", "white"}, "--background: 'white' is not r,g,b"},
        {{"a.nii", "-o", "x.png", "--background", "0,0,255"},
         "--background: 0,0,255 is out of range, each number must be 0 to 1"},
        {{"a.nii", "-o", "x.png", "--opaque-size", "1,1,1"}, "--opaque-size requires --opaque"},
        {{"a.nii", "-o", "x.png", "--opaque", "--opaque-size", "1,0,1"},
         "--opaque-size: 1,0,1 is out of range, each number must be above 0, and at most 100"},
        {{"a.nii", "-o", "x.png", "--opaque", "--opaque-center", "0,0,101"},
         "--opaque-center: 0,0,101 is out of range, each number must be -100 to 100"},
        {{"a.nii", "-o", "x.png", "--opaque", "--opaque-color", "0,0"}, "--opaque-color: '0,0' is not r,g,b"},
        {{"a.nii", "-o", "x.png", "--quiet", "--verbose"}, "--quiet excludes --verbose"},
        {{"a.nii", "--info", "--quiet"}, "--info excludes --quiet"},
    };
    for (const Wrong &wrong : table)
    {
        const CommandLine line = parse(wrong.words);
        EXPECT_FALSE(line.run) << wrong.line;
        EXPECT_EQ(line.exitStatus, 2) << wrong.line;
        EXPECT_EQ(line.text, wrong.line);
    }
}

} // namespace
