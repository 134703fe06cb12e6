#include <OpenSG/OSGGeoIndicesUI32.h>
#include <OpenSG/OSGGeoPLengthsUI32.h>
#include <OpenSG/OSGGeoPositions3f.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGNode.h>

#include "VolumeScene.h"
#include "volume/BitVolume.h"
#include "volume/BlockSkippingTraversal.h"
#include "volume/BlockVolume.h"
#include "volume/BoundaryGeometry.h"
#include "volume/BoxGeometry.h"
#include "volume/DVRShading.h"
#include "volume/DVRShadingAndLighting.h"
#include "volume/InterleavedRay.h"
#include "volume/MIPShading.h"
#include "volume/NormalText.h"
#include "volume/OnlineCentralDiffNormal.h"
#include "volume/OnlineSobelNormal.h"
#include "volume/PreCentralDiffNormal.h"
#include "volume/RayText.h"
#include "volume/ShadingText.h"
#include "volume/SimpleRay.h"
#include "volume/SimpleTraversal.h"
#include "volume/TraversalText.h"
#include "volume/VolumeData.h"
#include "volume/XRayShading.h"

using namespace osg;

namespace
{

/// What a strategy sets its parameters on.
struct Target
{
    Held<ChunkMaterialPtr> material{ChunkMaterial::create()};
    Held<SHLChunkPtr> shader{SHLChunk::create()};
    UInt32 unit = 3;
};

template <class StrategyT>
void expectNoParameters(const char *text)
{
    StrategyT strategy;
    EXPECT_EQ(strategy.getShaderCode(), text);
    Target target;
    strategy.setVolumeData(nullptr);
    strategy.setShaderParameters(target.material, target.shader, target.unit, nullptr);
    EXPECT_EQ(target.unit, 3u);
    EXPECT_TRUE(target.material->getChunks().empty());
    EXPECT_TRUE(target.shader->getParameters().empty());
}

/// A volume of bytes with its blocks, where the blocks of the list are seen.
struct Blocks
{
    Held<TextureChunkPtr> texture;
    VolumeData data;

    /// `bit` gives the byte of each block.
    template <class FunctionT>
    Blocks(int width, int height, int depth, FunctionT bit)
        : texture(makeVolume<UInt8>(8 * width, 8 * height, 8 * depth, 1))
    {
        LogCapture log;
        standardOutput([&] { data.setVolume(texture, false); });
        data.setBlockVolume(new BlockVolume);
        data.getBlockVolume()->calcBlockVolumen(data, 8);
        data.setBitVolume(new BitVolume);
        const Held<ImagePtr> sums(makeVoxels<UInt32>(256, 1, 1, [](int, int, int) { return 0; }));
        data.getBitVolume()->calcBitVolumen(data.getBlockVolume()->getImage(), sums);
        setBits(width, height, depth, bit);
    }

    template <class FunctionT>
    void setBits(int width, int height, int depth, FunctionT bit)
    {
        UInt8 *bits = data.getBitVolume()->getTexture()->getImage()->getData();
        for(int z = 0; z < depth; ++z)
            for(int y = 0; y < height; ++y)
                for(int x = 0; x < width; ++x)
                    *bits++ = bit(x, y, z) ? 255 : 0;
    }
};

GeometryPtr geometryOf(const BVGeometry &shape) { return GeometryPtr::dcast(shape.getNode()->getCore()); }

UInt32 numIndices(const BVGeometry &shape)
{
    const GeometryPtr geometry = geometryOf(shape);
    const UInt32 indices = geometry->getIndices()->getSize();
    EXPECT_EQ(geometry->getLengths()->getSize(), 1u);
    EXPECT_EQ(geometry->getLengths()->getValue(0), indices);
    EXPECT_EQ(geometry->getTypes()->getSize(), 1u);
    EXPECT_EQ(geometry->getTypes()->getValue(0), 7u);
    return indices;
}

} // namespace

TEST(Strategies, TextsWithoutParameters)
{
    expectNoParameters<SimpleRay>(tessaly::simpleRayText);
    expectNoParameters<InterleavedRay>(tessaly::interleavedRayText);
    expectNoParameters<SimpleTraversal>(tessaly::simpleTraversalText);
    expectNoParameters<OnlineCentralDiffNormal>(tessaly::onlineCentralDiffNormalText);
    expectNoParameters<OnlineSobelNormal>(tessaly::onlineSobelNormalText);
    expectNoParameters<MIPShading>(tessaly::mipShadingText);
}

TEST(Strategies, XRaySetsItsFactor)
{
    XRayShading shading;
    Target target;
    EXPECT_EQ(shading.getShaderCode(), tessaly::xRayShadingText);
    shading.setShaderParameters(NullFC, target.shader, target.unit, nullptr);
    EXPECT_FALSE(hasUniform(target.shader, "xRayIntensityFactor"));
    shading.setShaderParameters(target.material, target.shader, target.unit, nullptr);
    EXPECT_EQ(uniform<Real32>(target.shader, "xRayIntensityFactor"), 2.0f);
    EXPECT_EQ(target.unit, 3u);
}

TEST(Strategies, DirectVolumeRendering)
{
    DVRShading shading;
    EXPECT_FALSE(shading.gradientModulation);
    EXPECT_EQ(shading.kgc, 0.5f);
    EXPECT_EQ(shading.kgs, 0.5f);
    EXPECT_EQ(shading.kge, 4.0f);
    EXPECT_EQ(shading.getShaderCode(), tessaly::dvrShadingText(false));
    EXPECT_EQ(shading.getShaderCode().find("gradMag"), std::string::npos);
    EXPECT_EQ(shading.getShaderCode().find("oldAlpha"), std::string::npos);
    shading.gradientModulation = true;
    EXPECT_EQ(shading.getShaderCode(), tessaly::dvrShadingText(true));
    shading.kgc = 1.0f;
    shading.kgs = 0.0f;
    Target target;
    shading.setShaderParameters(target.material, NullFC, target.unit, nullptr);
    shading.setShaderParameters(target.material, target.shader, target.unit, nullptr);
    EXPECT_EQ(uniform<Real32>(target.shader, "kgc"), 1.0f);
    EXPECT_EQ(uniform<Real32>(target.shader, "kgs"), 0.0f);
    EXPECT_EQ(uniform<Real32>(target.shader, "kge"), 4.0f);
    ASSERT_EQ(target.shader->getParameters().size(), 3u);
    EXPECT_EQ(target.shader->getParameters(0)->getName(), "kgs");
    EXPECT_EQ(target.shader->getParameters(1)->getName(), "kgc");
    EXPECT_EQ(target.shader->getParameters(2)->getName(), "kge");
    EXPECT_TRUE(target.material->getChunks().empty());
    EXPECT_EQ(target.unit, 3u);
}

TEST(Strategies, LightingBeginsWithAnExponentOf25WhateverTheMember)
{
    DVRShadingAndLighting shading;
    EXPECT_EQ(shading.exponent, 30.0f);
    EXPECT_EQ(shading.getShaderCode(), tessaly::dvrShadingAndLightingText(false));
    EXPECT_NE(shading.getShaderCode().find("getNormal(ray, current, previous); "), std::string::npos);
    Target target;
    shading.setShaderParameters(target.material, target.shader, target.unit, nullptr);
    EXPECT_EQ(uniform<Real32>(target.shader, "exponent"), 25.0f);
    EXPECT_EQ(uniform<Vec3f>(target.shader, "emissiveColor"), Vec3f(0.5f, 0.5f, 0.5f));
    EXPECT_EQ(uniform<Vec3f>(target.shader, "diffuseColor"), Vec3f(0.75f, 0.75f, 0.75f));
    EXPECT_EQ(uniform<Vec3f>(target.shader, "specularColor"), Vec3f(1.0f, 1.0f, 1.0f));
    EXPECT_EQ(target.shader->getParameters().size(), 7u);
}

TEST(Strategies, BlockSkippingBindsTheBitVolume)
{
    Blocks blocks(4, 2, 1, [](int, int, int) { return true; });
    BlockSkippingTraversal traversal;
    EXPECT_EQ(traversal.getShaderCode(), tessaly::blockSkippingTraversalText);
    Target target;
    traversal.setShaderParameters(target.material, NullFC, target.unit, &blocks.data);
    EXPECT_EQ(target.unit, 3u);
    traversal.setShaderParameters(target.material, target.shader, target.unit, &blocks.data);
    EXPECT_EQ(target.unit, 4u);
    EXPECT_EQ(uniform<Int32>(target.shader, "bitVolume"), 3);
    EXPECT_EQ(uniform<Vec3f>(target.shader, "bitVolumeSize"), Vec3f(4, 2, 1));
    EXPECT_EQ(uniform<Vec3f>(target.shader, "bitVolumeTexelSize"), Vec3f(0.25f, 0.5f, 1.0f));
    ASSERT_EQ(target.material->getChunks().size(), 1u);
    EXPECT_TRUE(target.material->getChunks(0) == blocks.data.getBitVolume()->getTexture());
    EXPECT_EQ(target.material->getSlots(0), -2);
}

TEST(BoxGeometry, IsTheUnitCube)
{
    BoxGeometry box;
    EXPECT_TRUE(box.getNode() == NullFC);
    ASSERT_TRUE(box.createGeometry(nullptr));
    EXPECT_EQ(numIndices(box), 24u);
    EXPECT_EQ(box.getNode().getRefCount(), 1);
    const GeometryPtr geometry = geometryOf(box);
    EXPECT_EQ(geometry->getPositions()->getSize(), 8u);
    EXPECT_EQ(geometry->getPositions()->getValue(0), Pnt3f(0, 0, 1));
    EXPECT_EQ(geometry->getPositions()->getValue(7), Pnt3f(1, 0, 0));
    EXPECT_TRUE(geometry->getNormals() == NullFC);
    EXPECT_TRUE(geometry->getTexCoords() == NullFC);
    EXPECT_TRUE(GeoIndicesUI32Ptr::dcast(geometry->getIndices()) != NullFC);
    const NodePtr node = box.getNode();
    EXPECT_TRUE(box.updateGeometry(nullptr));
    EXPECT_TRUE(box.getNode() == node);
    EXPECT_TRUE(node->getCore() == geometry);
}

TEST(BoundaryGeometry, AllBlocksSeenGiveTheOuterFaces)
{
    Blocks blocks(3, 2, 4, [](int, int, int) { return true; });
    BoundaryGeometry shape;
    ASSERT_TRUE(shape.createGeometry(&blocks.data));
    EXPECT_EQ(numIndices(shape), UInt32(4 * 2 * (3 * 2 + 2 * 4 + 3 * 4)));
    const GeometryPtr geometry = geometryOf(shape);
    EXPECT_TRUE(geometry->getVbo());
    ASSERT_EQ(geometry->getPositions()->getSize(), 4u * 3u * 5u);
    // Corner (2, 1, 3).
    EXPECT_EQ(geometry->getPositions()->getValue((3 * 3 + 1) * 4 + 2), Pnt3f(2.0f / 3.0f, 0.5f, 0.75f));
}

TEST(BoundaryGeometry, FollowsTheBlocksThatAreSeen)
{
    Blocks blocks(3, 3, 3, [](int, int, int) { return false; });
    BoundaryGeometry shape;
    ASSERT_TRUE(shape.createGeometry(&blocks.data));
    EXPECT_EQ(numIndices(shape), 0u);
    const GeoPositionsPtr positions = geometryOf(shape)->getPositions();
    for(int i = 0; i < 27; ++i)
    {
        blocks.setBits(3, 3, 3, [i](int x, int y, int z) { return (z * 3 + y) * 3 + x == i; });
        ASSERT_TRUE(shape.updateGeometry(&blocks.data));
        EXPECT_EQ(numIndices(shape), 24u);
    }
    blocks.setBits(3, 3, 3, [](int x, int y, int z) { return y == 1 && z == 1 && x < 2; });
    ASSERT_TRUE(shape.updateGeometry(&blocks.data));
    EXPECT_EQ(numIndices(shape), 4u * 10u);
    EXPECT_TRUE(geometryOf(shape)->getPositions() == positions);
}

TEST(BoundaryGeometry, ANodeWithoutGeometryIsNotUpdated)
{
    Blocks blocks(1, 1, 1, [](int, int, int) { return true; });
    BoundaryGeometry shape;
    EXPECT_FALSE(shape.updateGeometry(&blocks.data));
    shape.createGeometry(&blocks.data);
    shape.getNode()->setCore(Group::create());
    EXPECT_FALSE(shape.updateGeometry(&blocks.data));
}

TEST(PreCentralDiffNormal, ComputesNormalsOfTheVoxels)
{
    LogCapture log;
    const Held<TextureChunkPtr> texture(makeVolume<UInt8>(5, 5, 5, 200));
    VolumeData volume;
    PreCentralDiffNormal normals(NullFC);
    normals.setVolumeData(nullptr);
    normals.setVolumeData(&volume);
    EXPECT_TRUE(normals.getNormalTexture() == NullFC);
    standardOutput([&] { volume.setVolume(texture, false); });
    normals.setVolumeData(&volume);
    ASSERT_TRUE(normals.getNormalTexture() != NullFC);
    expectSettings(normals.getNormalTexture(), 33071, 9729, 32849);
    const ImagePtr image = normals.getNormalTexture()->getImage();
    EXPECT_EQ(image->getPixelFormat(), 6407u);
    // A constant volume has no gradient inside, and one out of the border.
    for(std::size_t channel = 0; channel < 3; ++channel)
        EXPECT_EQ(valueAt<UInt8>(image, 3 * ((2 * 5 + 2) * 5 + 2) + channel), 127);
    EXPECT_EQ(valueAt<UInt8>(image, 3 * ((2 * 5 + 2) * 5)), 0);
    EXPECT_EQ(valueAt<UInt8>(image, 3 * ((2 * 5 + 2) * 5 + 4)), 254);

    // Another volume of the same sides keeps the normals.
    const Held<TextureChunkPtr> other(makeVolume<UInt8>(5, 5, 5, 1));
    VolumeData second;
    standardOutput([&] { second.setVolume(other, false); });
    normals.setVolumeData(&second);
    EXPECT_TRUE(normals.getNormalTexture()->getImage() == image);
    const Held<TextureChunkPtr> larger(makeVolume<UInt8>(6, 5, 5, 1));
    VolumeData third;
    standardOutput([&] { third.setVolume(larger, false); });
    normals.setVolumeData(&third);
    EXPECT_EQ(normals.getNormalTexture()->getImage()->getWidth(), 6);
}

TEST(PreCentralDiffNormal, TakesOverTheReferenceOfAFinishedTexture)
{
    LogCapture log;
    const Held<TextureChunkPtr> finished(
        makeTexture(makeVoxels<UInt8>(4, 4, 4, [](int, int, int) { return 9; })));
    const Held<TextureChunkPtr> texture(makeVolume<UInt8>(4, 4, 4, 200));
    VolumeData volume;
    standardOutput([&] { volume.setVolume(texture, false); });
    addRefCP(finished);
    {
        PreCentralDiffNormal normals(finished);
        EXPECT_EQ(finished.get().getRefCount(), 2);
        const ImagePtr image = finished->getImage();
        normals.setVolumeData(&volume);
        EXPECT_TRUE(finished->getImage() == image);
        expectSettings(finished, 33071, 9729, 0);

        Target target;
        EXPECT_EQ(normals.getShaderCode(), tessaly::preCentralDiffNormalText);
        normals.setShaderParameters(target.material, NullFC, target.unit, &volume);
        normals.setShaderParameters(target.material, target.shader, target.unit, &volume);
        EXPECT_EQ(target.unit, 4u);
        EXPECT_EQ(uniform<Int32>(target.shader, "normalVolume"), 3);
        ASSERT_EQ(target.material->getChunks().size(), 1u);
        EXPECT_TRUE(target.material->getChunks(0) == finished.get());
    }
    EXPECT_EQ(finished.get().getRefCount(), 1);
}

TEST(PreCentralDiffNormal, SixteenBitsAreConvertedInACopy)
{
    const Held<ImagePtr> input(makeVoxels<UInt16>(3, 3, 3, [](int x, int, int) { return x * 257; }));
    const Held<ImagePtr> output(Image::create());
    PreCentralDiffNormal normals(NullFC);
    ImagePtr in = input;
    ImagePtr out = output;
    EXPECT_TRUE(normals.createPrecomputedNormals(in, out, "sxy"));
    EXPECT_EQ(input->getDataType(), 5123);
    EXPECT_EQ(valueAt<UInt16>(input, 2), 514);
    EXPECT_EQ(output->getPixelFormat(), 6407u);
    // The middle voxel is 1, with 0 ahead and 2 behind: its normal points to lower x.
    const std::size_t middle = 3 * ((1 * 3 + 1) * 3 + 1);
    EXPECT_EQ(valueAt<UInt8>(output, middle), 1);
    EXPECT_EQ(valueAt<UInt8>(output, middle + 1), 0);
    EXPECT_EQ(valueAt<UInt8>(output, middle + 2), 127);
}

TEST(PreCentralDiffNormal, BadFormatsLeaveTheOutput)
{
    const Held<ImagePtr> input(makeVoxels<UInt8>(2, 2, 2, [](int, int, int) { return 0; }));
    const Held<ImagePtr> output(Image::create());
    PreCentralDiffNormal normals(NullFC);
    ImagePtr in = input;
    ImagePtr out = output;
    LogCapture log;
    EXPECT_FALSE(normals.createPrecomputedNormals(in, out, "xyzst"));
    EXPECT_EQ(log.text(LOG_FATAL), "Invalid outputFormat length in createNormalVolume: 5\n");
    log.clear();
    EXPECT_FALSE(normals.createPrecomputedNormals(in, out, "xq"));
    EXPECT_EQ(log.count(), 0u);
    EXPECT_EQ(output->getWidth(), 0);
}
