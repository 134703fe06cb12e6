#include <gtest/gtest.h>

#include "OSGGltfCleaner.h"
#include "OSGMtlCleaner.h"
#include "OSGSceneFileChecks.h"
#include "SceneFiles.h"

using namespace osg;
using namespace assimp_test;

namespace
{

std::string plyFault(const std::string &bytes)
{
    return findPlyFault(reinterpret_cast<const UInt8 *>(bytes.data()), bytes.size());
}

std::string stlFault(const std::string &bytes)
{
    return findStlFault(reinterpret_cast<const UInt8 *>(bytes.data()), bytes.size());
}

std::string gltfFault(const std::string &text)
{
    std::vector<UInt8> bytes(text.begin(), text.end());
    std::vector<std::string> textures;
    return cleanGltf(bytes, textures);
}

TEST(StlCheckTest, TheCountMustFitTheSize)
{
    EXPECT_EQ(stlFault(binaryStl()), "");
    EXPECT_EQ(stlFault(asciiStl()), "");
    EXPECT_EQ(stlFault(binaryStl() + "x"),
              "the STL header promises 12 triangles, the file holds 12 and a part of one");
    EXPECT_EQ(stlFault("short"), "is no STL file");
    std::string many = binaryStl();
    many.replace(80, 4, "\xff\xff\xff\xff");
    EXPECT_EQ(stlFault(many), "the STL header promises 4294967295 triangles, the file holds 12");
}

TEST(StlCheckTest, TextThatWasCutIsFound)
{
    const std::string whole = asciiStl();
    const std::size_t last = whole.rfind("endsolid");
    for(std::size_t size = 0; size < last + 8; ++size)
        EXPECT_NE(stlFault(whole.substr(0, size)), "") << size;
    EXPECT_EQ(stlFault(whole.substr(0, last)), "the STL text has no \"endsolid\" at its end");
    EXPECT_EQ(stlFault(replaced(whole, "endsolid", "ENDSOLID")), "");
}

TEST(PlyCheckTest, TextIsFollowedWordByWord)
{
    const std::string whole = asciiPly();
    for(std::size_t size = 0; size + 2 < whole.size(); ++size)
        EXPECT_NE(plyFault(whole.substr(0, size)), "") << size;
    EXPECT_EQ(plyFault(replaced(whole, "\n3 0 2 3", "\n44 0 2 3")),
              "the PLY header promises 12 of \"face\", the file ends before");
    EXPECT_EQ(plyFault(replaced(whole, "\n3 0 2 3", "\n4294967295 0 2 3")),
              "the PLY header promises 12 of \"face\", the file ends before");
    EXPECT_EQ(plyFault(replaced(whole, "\n3 0 2 3", "\n-3 0 2 3")),
              "the PLY header promises 12 of \"face\", the file ends before");
}

TEST(PlyCheckTest, ProperFilesPass)
{
    EXPECT_EQ(plyFault(asciiPly()), "");
    EXPECT_EQ(plyFault(binaryPly(false)), "");
    EXPECT_EQ(plyFault(binaryPly(true)), "");
}

TEST(PlyCheckTest, EachTruncationOfABinaryFileIsFound)
{
    for(const bool bigEndian : {false, true})
    {
        const std::string whole = binaryPly(bigEndian);
        for(std::size_t size = 0; size < whole.size(); ++size)
            EXPECT_NE(plyFault(whole.substr(0, size)), "") << size;
    }
}

TEST(PlyCheckTest, HeadersThatPromiseWhatIsNotThereAreRefused)
{
    EXPECT_EQ(plyFault("plx\n"), "is no PLY file");
    EXPECT_EQ(plyFault("ply\nformat ascii 1.0\n"), "the PLY header has no end");
    EXPECT_EQ(plyFault(replaced(asciiPly(), "ascii", "octal")), "the PLY header names no known format");
    EXPECT_EQ(plyFault(replaced(asciiPly(), "property float x", "property quark x")),
              "the PLY header has the unknown type \"quark\"");
    EXPECT_EQ(plyFault(replaced(asciiPly(), "list uchar", "list float")),
              "the PLY header counts a list in the type \"float\"");
    EXPECT_EQ(plyFault(replaced(asciiPly(), "vertex 8", "vertex -8")),
              "the PLY header has an element without a proper count");
    EXPECT_EQ(plyFault(replaced(asciiPly(), "element vertex 8\n", "")),
              "the PLY header has a property ahead of all elements");
    EXPECT_EQ(plyFault("ply\nformat binary_little_endian 1.0\nelement vertex 4000000000\nend_header\n"),
              "the PLY header has no properties for \"vertex\"");
    EXPECT_EQ(plyFault(replaced(binaryPly(false), "face 12", "face 13")),
              "the PLY header promises 13 of \"face\", the file ends before");
    EXPECT_EQ(plyFault(replaced(binaryPly(false), "list uchar", "list char")), "");
}

TEST(GltfCleanerTest, WhatIsLeftIsWhatIsRead)
{
    const std::string text = embeddedGltf();
    std::vector<UInt8> bytes(text.begin(), text.end());
    std::vector<std::string> textures;
    ASSERT_EQ(cleanGltf(bytes, textures), "");
    EXPECT_EQ(textures, std::vector<std::string>{"rust.png"});
    const std::string cleaned(bytes.begin(), bytes.end());
    EXPECT_EQ(cleaned.find("Texture"), std::string::npos);
    EXPECT_EQ(cleaned.find("images"), std::string::npos);
    EXPECT_NE(cleaned.find("baseColorFactor"), std::string::npos);
    const std::vector<UInt8> once = bytes;
    ASSERT_EQ(cleanGltf(bytes, textures), "");
    EXPECT_EQ(bytes, once) << "what is clean stays";
}

TEST(GltfCleanerTest, EachFaultIsToldWithItsPlace)
{
    const std::string good = embeddedGltf();
    const struct
    {
        const char *from, *to, *fault;
    } cases[] = {
        {"\"2.0\"", "\"1.0\"", "is not glTF 2, but \"1.0\""},
        {"\"scene\": 0", "\"scene\": 1", "shows scene 1 of 1"},
        {"{\"nodes\": [0]}", "", "has no scene"},
        {"{\"nodes\": [0]}", "{\"nodes\": [3]}", "scene 0 has a root that is no node, or twice"},
        {"{\"nodes\": [0]}", "{\"nodes\": [0, 0]}", "scene 0 has a root that is no node, or twice"},
        {"\"children\": [2]", "\"children\": [3]", "node 1 has a child that is no node"},
        {"\"children\": [2]", "\"children\": [-1]", "node 1 has a child that is no node"},
        {"\"children\": [2]", "\"children\": [0]", "nodes are below themselves"},
        {"\"children\": [2]", "\"children\": [2, 2]", "node 2 is below two nodes"},
        {"\"mesh\": 0", "\"mesh\": 1", "node 1 uses mesh 1 of 1"},
        {"\"material\": 0", "\"material\": 7", "mesh 0 uses material 7 of 1"},
        {"\"indices\": 1", "\"indices\": 2", "mesh 0 uses indices 2 of 2"},
        {"\"indices\": 1", "\"indices\": 0", "mesh 0 has indices of a type that is not read"},
        {"\"POSITION\": 0", "\"POSITION\": 1", "mesh 0 has \"POSITION\" of a type that is not read"},
        {"\"POSITION\": 0", "\"NORMAL\": 0", "mesh 0 has not as many \"NORMAL\" as positions"},
        {"\"POSITION\": 0", "\"TANGENT\": 0", "mesh 0 has no positions"},
        {"\"material\": 0", "\"mode\": 9",
         "mesh 0 has a primitive without enough vertices, or of no known mode"},
        {"\"count\": 8", "\"count\": 9", "accessor 0 is not within its bufferView"},
        {"\"count\": 8", "\"count\": 0", "accessor 0 is not within its bufferView"},
        {"\"count\": 8", "\"count\": 1e9", "accessor 0 has no proper \"count\""},
        {"\"count\": 36", "\"count\": 4294967295", "accessor 1 is not within its bufferView"},
        {"5126", "5130", "accessor 0 has no known type"},
        {"\"bufferView\": 0", "\"bufferView\": 2", "accessor 0 uses bufferView 2 of 2"},
        {"\"byteLength\": 72", "\"byteLength\": 73", "bufferView 1 is not within its buffer"},
        {"\"byteLength\": 96", "\"byteLength\": 96, \"byteStride\": 8",
         "accessor 0 is not within its bufferView"},
        {"\"byteLength\": 96", "\"byteLength\": 96, \"byteStride\": 4000000000",
         "bufferView 0 has a stride of 4000000000"},
        {"\"byteLength\": 168", "\"byteLength\": 169",
         "buffer 0 is longer than its data, or these are not in base64"},
        {"0.25, 0.5, 0.75, 0.5", "0.25, 0.5", "material 0 has no proper \"baseColorFactor\""},
        {"\"scale\": [2, 2, 2]", "\"scale\": [2, 2, \"2\"]", "node 2 has no proper \"scale\""},
        {"\"scene\": 0", "\"extensionsRequired\": [\"KHR_draco_mesh_compression\"]",
         "needs the extension \"KHR_draco_mesh_compression\", which is not read"},
        {"\"nodes\": [\n", "\"nodes\": [\n]", "the JSON is damaged"},
    };
    ASSERT_EQ(gltfFault(good), "");
    for(const auto &each : cases)
        EXPECT_EQ(gltfFault(replaced(good, each.from, each.to)), each.fault) << each.to;
    EXPECT_EQ(gltfFault("[]"), "the JSON is no object");
    EXPECT_EQ(gltfFault(std::string(1000000, '[')), "the JSON is nested deeper than 64");
}

TEST(GltfCleanerTest, TheChunksOfABinaryFileMustBeWhole)
{
    const std::string good = cubeGlb();
    ASSERT_EQ(gltfFault(good), "");
    for(std::size_t size = 0; size < good.size(); ++size)
        EXPECT_NE(gltfFault(good.substr(0, size)), "") << size;
    EXPECT_EQ(gltfFault(good.substr(0, 12)), "the file ends within its header");
    std::string old = good;
    old[4] = 1;
    EXPECT_EQ(gltfFault(old), "is not glTF 2, but version 1");
}

TEST(GltfCleanerTest, ChainsOfNodesEndAtTheLimit)
{
    const auto chain = [](int count)
    {
        std::string nodes;
        for(int i = 0; i < count; ++i)
            nodes += (i ? ", {" : "{") +
                     (i + 1 < count ? "\"children\": [" + std::to_string(i + 1) + "]" : std::string()) + "}";
        return "{\"asset\": {\"version\": \"2.0\"}, \"scenes\": [{\"nodes\": [0]}], \"nodes\": [" + nodes +
               "]}";
    };
    EXPECT_EQ(gltfFault(chain(500)), "");
    EXPECT_EQ(gltfFault(chain(501)), "nodes are nested deeper than 500");
}

TEST(MtlCleanerTest, WhatIsLeftIsWhatIsRead)
{
    const auto clean = [](const std::string &text, std::vector<std::string> &textures)
    { return cleanMtl(std::vector<UInt8>(text.begin(), text.end()), textures); };
    std::vector<std::string> textures;
    EXPECT_EQ(
        clean("# one\nKd 1 1 1\nnewmtl a b\r\n  Kd 1 0.5 0\r\nKs 0.25\nKe 1 nan 1\nKa x\nillum 2\nTr 0.25\n"
              "map_Kd -s 1 1 1 a.png\nbump b.png\nnewmtl\nKd 1 0 0\n",
              textures),
        "newmtl a b\nKd 1 0.5 0\nKs 0.25 0.25 0.25\nKe 1 1 1\nd 0.75\n");
    EXPECT_EQ(textures, (std::vector<std::string>{"a.png", "b.png"}));
    EXPECT_EQ(clean("", textures), "");
}

} // namespace
