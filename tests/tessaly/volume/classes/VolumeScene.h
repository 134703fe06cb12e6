#ifndef TESTS_VOLUMESCENE_H
#define TESTS_VOLUMESCENE_H

/// \file
/// Containers, voxels and output for the tests of the volume classes.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGTextureChunk.h>

/// A pointer with one reference on its container.
template <class PtrT>
class Held
{
  public:
    explicit Held(const PtrT &container) : _container(container) { osg::addRefCP(_container); }
    ~Held() { osg::subRefCP(_container); }
    Held(const Held &) = delete;
    Held &operator=(const Held &) = delete;

    const PtrT &get() const { return _container; }
    auto operator->() const { return _container.getCPtr(); }
    operator const PtrT &() const { return _container; }

  private:
    PtrT _container;
};

/// Everything that is written to standard output while the function runs.
template <class FunctionT>
std::string standardOutput(FunctionT function)
{
    std::fflush(stdout);
    ::testing::internal::CaptureStdout();
    function();
    std::fflush(stdout);
    return ::testing::internal::GetCapturedStdout();
}

/// An image of voxels of type VoxelT, each value given by a function of x, y, z.
template <class VoxelT, class FunctionT>
osg::ImagePtr makeVoxels(int width, int height, int depth, FunctionT value, osg::UInt32 format = 6409)
{
    const osg::ImagePtr image = osg::Image::create();
    image->set(format, width, height, depth, 1, 1, 0.0, nullptr,
               sizeof(VoxelT) == 1   ? 5121
               : sizeof(VoxelT) == 2 ? 5123
                                     : 5125,
               true, 1);
    osg::UInt8 *data = image->getData();
    for(int z = 0; z < depth; ++z)
        for(int y = 0; y < height; ++y)
            for(int x = 0; x < width; ++x, data += sizeof(VoxelT))
            {
                const VoxelT voxel = VoxelT(value(x, y, z));
                std::memcpy(data, &voxel, sizeof(voxel));
            }
    osg::endEditCP(image);
    return image;
}

inline osg::TextureChunkPtr makeTexture(const osg::ImagePtr &image)
{
    const osg::TextureChunkPtr texture = osg::TextureChunk::create();
    texture->setImage(image);
    osg::endEditCP(texture);
    return texture;
}

/// A voxel texture whose voxels all have one value.
template <class VoxelT>
osg::TextureChunkPtr makeVolume(int width, int height, int depth, VoxelT value)
{
    return makeTexture(makeVoxels<VoxelT>(width, height, depth, [value](int, int, int) { return value; }));
}

template <class ValueT>
ValueT valueAt(const osg::ImagePtr &image, std::size_t index)
{
    ValueT value;
    std::memcpy(&value, image->getData() + index * sizeof(ValueT), sizeof(ValueT));
    return value;
}

/// The value of a uniform; a failure if it is not set.
template <class ValueT>
ValueT uniform(const osg::SHLChunkPtr &shader, const char *name)
{
    ValueT value{};
    EXPECT_TRUE(shader->getUniformParameter(name, value)) << name;
    return value;
}

inline bool hasUniform(const osg::SHLChunkPtr &shader, const std::string &name)
{
    for(osg::UInt32 i = 0; i < shader->getParameters().size(); ++i)
        if(shader->getParameters(i)->getName() == name)
            return true;
    return false;
}

/// The five settings of sampling, and the internal format.
inline void expectSettings(const osg::TextureChunkPtr &texture, osg::UInt32 wrap, osg::UInt32 filter,
                           osg::UInt32 format)
{
    EXPECT_EQ(texture->getWrapS(), wrap);
    EXPECT_EQ(texture->getWrapT(), wrap);
    EXPECT_EQ(texture->getWrapR(), wrap);
    EXPECT_EQ(texture->getMinFilter(), filter);
    EXPECT_EQ(texture->getMagFilter(), filter);
    EXPECT_EQ(texture->getInternalFormat(), format);
}

/// The type names of a material's chunks, in order.
inline std::vector<std::string> chunkTypes(const osg::ChunkMaterialPtr &material)
{
    std::vector<std::string> types;
    for(osg::UInt32 i = 0; i < material->getChunks().size(); ++i)
        types.push_back(material->getChunks(i)->getTypeName());
    return types;
}

#endif
