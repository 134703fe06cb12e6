#ifndef TESTS_PLATFORM_FORMATS_ASSIMP_SCENEFILES_H
#define TESTS_PLATFORM_FORMATS_ASSIMP_SCENEFILES_H

/// \file
/// Scene files written byte by byte, in a folder that goes with the test.

#include <OpenSG/OSGBaseTypes.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

namespace assimp_test
{

/// A folder of its own for each test.
class Folder
{
  public:
    Folder()
    {
        std::string name = ::testing::TempDir() + "scenefiles" + std::string(6, 'X');
        _path = ::mkdtemp(&name[0]);
    }
    ~Folder()
    {
        for(const std::string &file : _files)
            std::remove(file.c_str());
        ::rmdir(_path.c_str());
    }
    Folder(const Folder &) = delete;
    Folder &operator=(const Folder &) = delete;

    /// Writes a file and gives its path.
    std::string write(const std::string &name, const std::string &bytes)
    {
        const std::string path = _path + "/" + name;
        std::ofstream(path, std::ios::binary) << bytes;
        _files.push_back(path);
        return path;
    }

  private:
    std::string _path;
    std::vector<std::string> _files;
};

template <class ValueT>
void append(std::string &bytes, ValueT value)
{
    char raw[sizeof(value)];
    std::memcpy(raw, &value, sizeof(value));
    bytes.append(raw, sizeof(value));
}

inline std::string base64(const std::string &bytes)
{
    static const char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for(std::size_t i = 0; i < bytes.size(); i += 3)
    {
        unsigned word = 0;
        for(std::size_t j = 0; j < 3; ++j)
            word = word << 8 | (i + j < bytes.size() ? static_cast<unsigned char>(bytes[i + j]) : 0u);
        for(std::size_t j = 0; j < 4; ++j)
            text += j <= bytes.size() - i ? digits[word >> (18 - 6 * j) & 63] : '=';
    }
    return text;
}

/// The corners of the cube from 0 to 1, x fastest, and its sides counter-clockwise seen from outside.
constexpr float CubeCorners[8][3] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0},
                                     {0, 0, 1}, {1, 0, 1}, {0, 1, 1}, {1, 1, 1}};
constexpr osg::UInt16 CubeTriangles[12][3] = {{0, 2, 3}, {0, 3, 1}, {4, 5, 7}, {4, 7, 6},
                                              {0, 1, 5}, {0, 5, 4}, {2, 6, 7}, {2, 7, 3},
                                              {0, 4, 6}, {0, 6, 2}, {1, 3, 7}, {1, 7, 5}};

inline std::string asciiStl()
{
    std::string text = "solid cube\n";
    for(const auto &triangle : CubeTriangles)
    {
        text += "facet normal 0 0 0\nouter loop\n";
        for(const osg::UInt16 c : triangle)
            text += "vertex " + std::to_string(CubeCorners[c][0]) + " " + std::to_string(CubeCorners[c][1]) +
                    " " + std::to_string(CubeCorners[c][2]) + "\n";
        text += "endloop\nendfacet\n";
    }
    return text + "endsolid cube\n";
}

inline std::string binaryStl()
{
    std::string bytes(80, ' ');
    append(bytes, osg::UInt32(12));
    for(const auto &triangle : CubeTriangles)
    {
        for(int i = 0; i < 3; ++i)
            append(bytes, 0.f);
        for(const osg::UInt16 c : triangle)
            for(const float v : CubeCorners[c])
                append(bytes, v);
        append(bytes, osg::UInt16(0));
    }
    return bytes;
}

inline std::string asciiPly()
{
    std::string text =
        "ply\nformat ascii 1.0\nelement vertex 8\nproperty float x\nproperty float y\nproperty float z\n"
        "element face 12\nproperty list uchar int vertex_indices\nend_header\n";
    for(const auto &corner : CubeCorners)
        text += std::to_string(corner[0]) + " " + std::to_string(corner[1]) + " " +
                std::to_string(corner[2]) + "\n";
    for(const auto &triangle : CubeTriangles)
        text += "3 " + std::to_string(triangle[0]) + " " + std::to_string(triangle[1]) + " " +
                std::to_string(triangle[2]) + "\n";
    return text;
}

/// With colours: red is x, green y, blue z.
inline std::string binaryPly(bool bigEndian)
{
    std::string bytes = std::string("ply\nformat ") +
                        (bigEndian ? "binary_big_endian" : "binary_little_endian") +
                        " 1.0\ncomment eight corners\nelement vertex 8\nproperty float x\nproperty float y\n"
                        "property float z\nproperty uchar red\nproperty uchar green\nproperty uchar blue\n"
                        "element face 12\nproperty list uchar int vertex_indices\nend_header\n";
    const auto add = [&bytes, bigEndian](auto value)
    {
        std::string raw;
        append(raw, value);
        bytes += bigEndian ? std::string(raw.rbegin(), raw.rend()) : raw;
    };
    for(const auto &corner : CubeCorners)
    {
        for(const float v : corner)
            add(v);
        for(const float v : corner)
            add(osg::UInt8(v * 255));
    }
    for(const auto &triangle : CubeTriangles)
    {
        add(osg::UInt8(3));
        for(const osg::UInt16 c : triangle)
            add(osg::Int32(c));
    }
    return bytes;
}

/// Six quads; those in z are of one material, the others of another.
inline std::string cubeObj(const std::string &library)
{
    std::string text = "mtllib " + library + "\no cube\n";
    for(const auto &corner : CubeCorners)
        text += "v " + std::to_string(corner[0]) + " " + std::to_string(corner[1]) + " " +
                std::to_string(corner[2]) + "\n";
    return text +
           "usemtl cover\nf 1 3 4 2\nf 5 6 8 7\nusemtl side\nf 1 2 6 5\nf 3 7 8 4\nf 1 5 7 3\nf 2 4 8 6\n";
}

inline std::string cubeMtl()
{
    return "newmtl cover\nKa 0.1 0.2 0.3\nKd 1 0.5 0\nKs 0.25 0.25 0.25\nNs 32\nd 0.5\n"
           "newmtl side\nKd 0 0 1\nKe 0 0.125 0\nmap_Kd bricks.png\n";
}

/// Positions (96 bytes) and 16-bit indices (72 bytes) of the cube.
inline std::string cubeBuffer()
{
    std::string bytes;
    for(const auto &corner : CubeCorners)
        for(const float v : corner)
            append(bytes, v);
    for(const auto &triangle : CubeTriangles)
        for(const osg::UInt16 c : triangle)
            append(bytes, c);
    return bytes;
}

/// Three nodes in a row, each with a matrix or its parts; the last two show the cube. `uri` is the buffer's.
inline std::string cubeGltf(const std::string &uri)
{
    const std::string buffer = uri.empty() ? "" : "\"uri\": \"" + uri + "\", ";
    return R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}],
 "nodes": [
  {"name": "turned", "children": [1], "matrix": [0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 10, 0, 0, 1]},
  {"name": "moved", "children": [2], "translation": [1, 2, 3], "mesh": 0},
  {"name": "scaled", "scale": [2, 2, 2], "mesh": 0}],
 "meshes": [{"name": "cube", "primitives": [
  {"attributes": {"POSITION": 0}, "indices": 1, "material": 0}]}],
 "materials": [{"name": "steel", "emissiveFactor": [0, 0, 0.5], "alphaMode": "BLEND",
  "pbrMetallicRoughness": {"baseColorFactor": [0.25, 0.5, 0.75, 0.5], "baseColorTexture": {"index": 0}}}],
 "textures": [{"source": 0}], "images": [{"uri": "rust.png"}],
 "accessors": [
  {"bufferView": 0, "componentType": 5126, "count": 8, "type": "VEC3", "min": [0, 0, 0], "max": [1, 1, 1]},
  {"bufferView": 1, "componentType": 5123, "count": 36, "type": "SCALAR"}],
 "bufferViews": [{"buffer": 0, "byteLength": 96}, {"buffer": 0, "byteOffset": 96, "byteLength": 72}],
 "buffers": [{)" +
           buffer + R"("byteLength": 168}]})";
}

inline std::string embeddedGltf()
{
    return cubeGltf("data:application/octet-stream;base64," + base64(cubeBuffer()));
}

inline std::string cubeGlb()
{
    std::string json = cubeGltf(""), bytes;
    json.resize((json.size() + 3) / 4 * 4, ' ');
    const std::string data = cubeBuffer();
    bytes = "glTF";
    append(bytes, osg::UInt32(2));
    append(bytes, osg::UInt32(28 + json.size() + data.size()));
    append(bytes, osg::UInt32(json.size()));
    bytes += "JSON" + json;
    append(bytes, osg::UInt32(data.size()));
    bytes += std::string("BIN\0", 4) + data;
    return bytes;
}

/// `text` with the first `from` in it replaced; the test fails where there is none.
inline std::string replaced(std::string text, const std::string &from, const std::string &to)
{
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

} // namespace assimp_test

#endif
