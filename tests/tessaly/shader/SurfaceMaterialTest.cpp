#include "support/Held.h"

#include <OpenSG/OSGBlendChunk.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGMemoryDataHandler.h>
#include <Tessaly/OSGCommonSurfaceShaderMaterial.h>

#include <gtest/gtest.h>

using namespace osg;

namespace
{

typedef CommonSurfaceShaderMaterial Material55;

struct Row
{
    UInt32 id;
    const char *name;
    const char *type;
    const char *value; ///< the default as text
};

const Row rows[] = {
    {6, "emissiveFactor", "SFVec3f", "0 0 0"},
    {7, "emissiveTextureId", "SFInt32", "-1"},
    {8, "emissiveTextureCoordinatesId", "SFInt32", "0"},
    {9, "emissiveTextureChannelMask", "SFString", "\"rgb\""},
    {10, "ambientFactor", "SFVec3f", "0.2 0.2 0.2"},
    {11, "ambientTextureId", "SFInt32", "-1"},
    {12, "ambientTextureCoordinatesId", "SFInt32", "0"},
    {13, "ambientTextureChannelMask", "SFString", "\"rgb\""},
    {14, "diffuseFactor", "SFVec3f", "0.8 0.8 0.8"},
    {15, "diffuseTextureId", "SFInt32", "-1"},
    {16, "diffuseTextureCoordinatesId", "SFInt32", "0"},
    {17, "diffuseTextureChannelMask", "SFString", "\"rgb\""},
    {18, "specularFactor", "SFVec3f", "0 0 0"},
    {19, "specularTextureId", "SFInt32", "-1"},
    {20, "specularTextureCoordinatesId", "SFInt32", "0"},
    {21, "specularTextureChannelMask", "SFString", "\"rgb\""},
    {22, "shininessFactor", "SFReal32", "0.1"},
    {23, "shininessTextureId", "SFInt32", "-1"},
    {24, "shininessTextureCoordinatesId", "SFInt32", "0"},
    {25, "shininessTextureChannelMask", "SFString", "\"a\""},
    {26, "alphaFactor", "SFReal32", "1"},
    {27, "alphaTextureId", "SFInt32", "-1"},
    {28, "alphaTextureCoordinatesId", "SFInt32", "0"},
    {29, "alphaTextureChannelMask", "SFString", "\"a\""},
    {30, "normalFormat", "SFInt32", "0"},
    {31, "normalSpace", "SFInt32", "0"},
    {32, "normalScale", "SFVec3f", "2 2 2"},
    {33, "normalBias", "SFVec3f", "-1 -1 -1"},
    {34, "normalTextureId", "SFInt32", "-1"},
    {35, "normalTextureCoordinatesId", "SFInt32", "0"},
    {36, "normalTextureChannelMask", "SFString", "\"rgb\""},
    {37, "reflectionFactor", "SFVec3f", "0 0 0"},
    {38, "reflectionTextureId", "SFInt32", "-1"},
    {39, "reflectionTextureCoordinatesId", "SFInt32", "0"},
    {40, "reflectionTextureChannelMask", "SFString", "\"rgb\""},
    {41, "transmissionFactor", "SFVec3f", "0 0 0"},
    {42, "transmissionTextureId", "SFInt32", "-1"},
    {43, "transmissionTextureCoordinatesId", "SFInt32", "0"},
    {44, "transmissionTextureChannelMask", "SFString", "\"rgb\""},
    {45, "environmentFactor", "SFVec3f", "1 1 1"},
    {46, "environmentTextureId", "SFInt32", "-1"},
    {47, "environmentTextureCoordinatesId", "SFInt32", "0"},
    {48, "environmentTextureChannelMask", "SFString", "\"rgb\""},
    {49, "relativeIndexOfRefraction", "SFVec3f", "1 0 0"},
    {50, "fresnelBlend", "SFReal32", "0"},
    {51, "textureTransformEnabled", "MFInt32", ""},
    {52, "emissiveTextureCoordinateTransform", "SFMatrix", "1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1"},
    {53, "ambientTextureCoordinateTransform", "SFMatrix", "1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1"},
    {54, "diffuseTextureCoordinateTransform", "SFMatrix", "1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1"},
    {55, "specularTextureCoordinateTransform", "SFMatrix", "1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1"},
    {56, "shininessTextureCoordinateTransform", "SFMatrix", "1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1"},
    {57, "alphaTextureCoordinateTransform", "SFMatrix", "1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1"},
    {58, "normalTextureCoordinateTransform", "SFMatrix", "1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1"},
    {59, "reflectionTextureCoordinateTransform", "SFMatrix", "1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1"},
    {60, "transmissionTextureCoordinateTransform", "SFMatrix", "1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1"},
};

/// Another value than the default, as text and as bytes in binary data.
struct Other
{
    std::string text;
    UInt32 bytes;
};

Other otherOf(const Row &row)
{
    const std::string type = row.type;
    const std::string number = std::to_string(row.id);
    if(type == "SFVec3f")
        return {number + " -0.5 7.25", 12};
    if(type == "SFInt32")
        return {"-" + number, 4};
    if(type == "SFReal32")
        return {number + ".5", 4};
    if(type == "SFString")
        return {"\"mask" + number + "\"", 0};
    if(type == "MFInt32")
        return {"1, 0, 1", 4 + 3 * 4};
    return {number + " 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15", 64};
}

std::string textOf(const CommonSurfaceShaderMaterialPtr &material, UInt32 id)
{
    std::string text;
    material->getField(id)->getValueByStr(text);
    return text;
}

typedef test::Held<CommonSurfaceShaderMaterialPtr> Held;

/// Gives every field its other value.
void fill(const CommonSurfaceShaderMaterialPtr &material)
{
    for(const Row &row : rows)
    {
        if(row.id == Material55::TextureTransformEnabledFieldId)
            material->editMFTextureTransformEnabled()->setValues({1, 0, 1});
        else
            material->getField(row.id)->pushValueByStr(otherOf(row).text.c_str());
    }
}

} // namespace

TEST(SurfaceMaterial, HasTheFiftyFiveFieldsOfItsTable)
{
    const FieldContainerPtr made =
        FieldContainerFactory::the()->createFieldContainer("CommonSurfaceShaderMaterial");
    const CommonSurfaceShaderMaterialPtr material = CommonSurfaceShaderMaterialPtr::dcast(made);
    ASSERT_TRUE(material != NullFC);
    addRefCP(material);
    const FieldContainerType &type = CommonSurfaceShaderMaterial::getClassType();
    EXPECT_STREQ(type.getParent()->getCName(), "ChunkMaterial");
    EXPECT_EQ(type.getNumFieldDescs(), ChunkMaterial::getClassType().getNumFieldDescs() + 55);
    EXPECT_EQ(std::size(rows), 55u);
    UInt32 id = 6;
    for(const Row &row : rows)
    {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.id, id);
        const FieldDescription *const field = type.getFieldDescription(row.id);
        ASSERT_NE(field, nullptr);
        EXPECT_STREQ(field->getCName(), row.name);
        EXPECT_STREQ(field->getTypeName(), row.type);
        EXPECT_EQ(field->getFieldMask(), BitVector(1) << row.id);
        EXPECT_FALSE(field->isInternal());
        EXPECT_EQ(textOf(material, row.id), row.value);
        ++id;
    }
    EXPECT_EQ(UInt32(CommonSurfaceShaderMaterial::NextFieldId), 61u);
    EXPECT_EQ(BitVector(Material55::EmissiveFactorFieldMask), BitVector(64));
    EXPECT_EQ(BitVector(Material55::TransmissionTextureCoordinateTransformFieldMask), BitVector(1) << 60);
    EXPECT_EQ(material->getTextureTransformEnabled().size(), 0u);
    EXPECT_EQ(material->getRelativeIndexOfRefraction(), Vec3f(1, 0, 0));
    subRefCP(material);
}

TEST(SurfaceMaterial, EveryFieldGoesThroughTextAndBinaryData)
{
    const Held source;
    fill(source.ptr);
    UInt32 total = 0;
    for(const Row &row : rows)
    {
        SCOPED_TRACE(row.name);
        const Other other = otherOf(row);
        EXPECT_EQ(textOf(source.ptr, row.id), other.text);

        // Alone.
        const Held target;
        const BitVector mask = BitVector(1) << row.id;
        MemoryDataHandler memory;
        source->copyToBin(memory, mask);
        EXPECT_EQ(source->getBinSize(mask), memory.getData().size());
        if(other.bytes != 0)
        {
            EXPECT_EQ(memory.getData().size(), other.bytes);
        }
        total += UInt32(memory.getData().size());
        target->copyFromBin(memory, mask);
        EXPECT_EQ(memory.remaining(), 0u);
        for(const Row &each : rows)
            EXPECT_EQ(textOf(target.ptr, each.id), each.id == row.id ? other.text : each.value);
    }

    // All together, one behind the other.
    const BitVector all = ((BitVector(1) << 61) - 1) & ~((BitVector(1) << 6) - 1);
    const Held target;
    MemoryDataHandler memory;
    source->copyToBin(memory, all);
    EXPECT_EQ(memory.getData().size(), total);
    target->copyFromBin(memory, all);
    EXPECT_EQ(memory.remaining(), 0u);
    for(const Row &row : rows)
        EXPECT_EQ(textOf(target.ptr, row.id), textOf(source.ptr, row.id));
}

TEST(SurfaceMaterial, TheLastBitAloneEmitsTheLastMatrixAlone)
{
    const Held material;
    Matrix matrix;
    matrix.setTranslate(1, 2, 3);
    material->setTransmissionTextureCoordinateTransform(matrix);
    material->setReflectionTextureCoordinateTransform(matrix);
    MemoryDataHandler memory;
    material->copyToBin(memory, BitVector(1) << 60);
    EXPECT_EQ(memory.getData().size(), 64u);
    const Held target;
    target->copyFromBin(memory, BitVector(1) << 60);
    EXPECT_EQ(target->getTransmissionTextureCoordinateTransform(), matrix);
    EXPECT_EQ(target->getReflectionTextureCoordinateTransform(), Matrix());
    EXPECT_EQ(material->getBinSize(0), 0u);
}

TEST(SurfaceMaterial, ACopyHasTheSameValues)
{
    const Held source;
    fill(source.ptr);
    const CommonSurfaceShaderMaterialPtr copy = CommonSurfaceShaderMaterialPtr::dcast(source->shallowCopy());
    addRefCP(copy);
    for(const Row &row : rows)
        EXPECT_EQ(textOf(copy, row.id), otherOf(row).text);
    subRefCP(copy);
}

TEST(SurfaceMaterial, ItsFieldsTouchNoChunk)
{
    const Held material;
    const BlendChunkPtr chunk = BlendChunk::create();
    material->addChunk(chunk);
    endEditCP(material.ptr, ChunkMaterial::ChunksFieldMask);
    const StatePtr state = material->getState();
    for(const Row &row : rows)
    {
        beginEditCP(material.ptr, BitVector(1) << row.id);
        endEditCP(material.ptr, BitVector(1) << row.id);
        ASSERT_EQ(material->getMFChunks()->size(), 1u);
        EXPECT_TRUE(material->getChunk(0) == chunk);
        EXPECT_TRUE(material->getState() == state);
    }
}

TEST(SurfaceMaterial, AccessorsOfTheEditSetReachTheSameFields)
{
    const Held material;
    EXPECT_EQ(material->editSFAlphaFactor(), material->getSFAlphaFactor());
    material->editAlphaFactor() = 0.5f;
    EXPECT_EQ(material->getAlphaFactor(), 0.5f);
    material->editMFTextureTransformEnabled()->push_back(7);
    EXPECT_EQ(material->getTextureTransformEnabled(0), 7);
    material->editTextureTransformEnabled(0) = 8;
    EXPECT_EQ(material->getTextureTransformEnabled()[0], 8);
}

TEST(SurfaceMaterial, DumpWritesOneLine)
{
    const Held material;
    LogCapture log;
    material->dump();
    EXPECT_EQ(log.text(LOG_LOG), "Dump CommonSurfaceShaderMaterial NI\n");
    EXPECT_EQ(log.count(), 1u);
}
