/// \file
/// Uniform parameters by name, without GL.

#include <cstring>

#include <gtest/gtest.h>

#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGShaderParameterBool.h>
#include <OpenSG/OSGShaderParameterMInt.h>
#include <OpenSG/OSGShaderParameterReal.h>
#include <OpenSG/OSGShaderParameterString.h>
#include <OpenSG/OSGShaderValue.h>

OSG_USING_NAMESPACE

namespace
{

class ShaderParameterTest : public ::testing::Test
{
  protected:
    static void SetUpTestSuite() { osgInit(0, nullptr); }
    void SetUp() override
    {
        shader = SHLChunk::create();
        addRefCP(shader);
    }
    void TearDown() override { subRefCP(shader); }

    template <class ValueT>
    void expectRoundTrip(const ValueT &value, UInt32 typeId)
    {
        ASSERT_TRUE(shader->setUniformParameter("u", value));
        ASSERT_EQ(1u, shader->getParameters().size());
        EXPECT_EQ(typeId, shader->getParameters(0)->getTypeId());
        ValueT read{};
        EXPECT_TRUE(shader->getUniformParameter("u", read));
        EXPECT_TRUE(read == value) << "of type " << typeId;
        EXPECT_TRUE(shader->subUniformParameter("u"));
        EXPECT_EQ(0u, shader->getParameters().size());
    }

    template <class FieldT, class ValueT>
    void expectArrayRoundTrip(const ValueT &first, const ValueT &second, UInt32 typeId)
    {
        FieldT values;
        values.push_back(first);
        values.push_back(second);
        expectRoundTrip(values, typeId);
    }

    SHLChunkPtr shader;
};

TEST_F(ShaderParameterTest, EveryKindOfValueIsReadBackAndHasItsTypeIdentifier)
{
    expectRoundTrip(true, 1);
    expectRoundTrip(Int32(-3), 2);
    expectRoundTrip(2.5f, 3);
    expectRoundTrip(Vec2f(1, 2), 7);
    expectRoundTrip(Vec3f(1, 2, 3), 8);
    expectRoundTrip(Vec4f(1, 2, 3, 4), 9);
    expectRoundTrip(Matrix(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16), 10);
    expectArrayRoundTrip<MFInt32>(Int32(1), Int32(2), 13);
    expectArrayRoundTrip<MFReal32>(1.f, 2.f, 14);
    expectArrayRoundTrip<MFVec2f>(Vec2f(1, 2), Vec2f(3, 4), 18);
    expectArrayRoundTrip<MFVec3f>(Vec3f(1, 2, 3), Vec3f(4, 5, 6), 19);
    expectArrayRoundTrip<MFVec4f>(Vec4f(1, 2, 3, 4), Vec4f(5, 6, 7, 8), 20);
    expectArrayRoundTrip<MFMatrix>(Matrix(), Matrix(2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2), 21);
    const ShaderParameterStringPtr text = ShaderParameterString::create();
    EXPECT_EQ(UInt32(ShaderParameter::SHPTypeString), text->getTypeId());
}

TEST_F(ShaderParameterTest, SettingAgainChangesTheParameterInPlace)
{
    shader->setUniformParameter("a", 1.f);
    shader->setUniformParameter("b", 2.f);
    const ShaderParameterPtr a = shader->getParameters(0);
    shader->setUniformParameter("a", 3.f);
    EXPECT_EQ(2u, shader->getParameters().size());
    EXPECT_EQ(a, shader->getParameters(0));
    EXPECT_EQ(1, a.getRefCount());
    Real32 value = 0.f;
    EXPECT_TRUE(shader->getUniformParameter("b", value));
    EXPECT_EQ(2.f, value);
}

TEST_F(ShaderParameterTest, AnotherTypeAndAnUnknownNameAreRefusedWithTheirWarnings)
{
    shader->setUniformParameter("size", 1.f);
    LogCapture log;
    EXPECT_FALSE(shader->setUniformParameter("size", Int32(1)));
    EXPECT_EQ("ShaderParameterAccess::setParameter : Parameter 'size' has wrong type!\n",
              log.text(LOG_WARNING));
    log.clear();
    Int32 number = 7;
    EXPECT_FALSE(shader->getUniformParameter("size", number));
    EXPECT_EQ("ShaderParameterAccess::getParameter : Parameter 'size' has wrong type!\n",
              log.text(LOG_WARNING));
    log.clear();
    EXPECT_FALSE(shader->getUniformParameter("none", number));
    EXPECT_EQ("ShaderParameterAccess::getParameter : Parameter 'none' doesn't exist!\n",
              log.text(LOG_WARNING));
    EXPECT_EQ(7, number);
    log.clear();
    EXPECT_FALSE(shader->setUniformParameter(nullptr, 1.f));
    EXPECT_FALSE(shader->getUniformParameter(nullptr, number));
    EXPECT_FALSE(shader->subUniformParameter(nullptr));
    EXPECT_FALSE(shader->subUniformParameter("none"));
    EXPECT_EQ(0u, log.count());
}

TEST_F(ShaderParameterTest, RemovingOneKeepsTheOthersFindable)
{
    shader->setUniformParameter("a", 1.f);
    shader->setUniformParameter("b", 2.f);
    shader->setUniformParameter("c", 3.f);
    const ShaderParameterPtr b = shader->getParameters(1);
    addRefCP(b);
    EXPECT_TRUE(shader->subUniformParameter("b"));
    EXPECT_EQ(1, b.getRefCount());
    subRefCP(b);
    Real32 value = 0.f;
    EXPECT_TRUE(shader->getUniformParameter("c", value));
    EXPECT_EQ(3.f, value);
    shader->clearUniformParameters();
    EXPECT_EQ(0u, shader->getParameters().size());
    EXPECT_TRUE(shader->setUniformParameter("b", Int32(1))) << "with another type now";
}

TEST_F(ShaderParameterTest, AFieldClearedDirectlyIsNoticed)
{
    shader->setUniformParameter("a", 1.f);
    const ShaderParameterPtr a = shader->getParameters(0);
    shader->getParameters().clear();
    EXPECT_TRUE(shader->setUniformParameter("a", 2.f));
    EXPECT_EQ(1u, shader->getParameters().size());
    subRefCP(a);
}

TEST_F(ShaderParameterTest, ParametersOfAnotherFieldAreReachedByAnAccess)
{
    MFShaderParameterPtr field;
    ShaderParameterAccess access(field);
    const std::string one = "1\n";
    EXPECT_TRUE(access.setParameter<ShaderParameterString>("SAMPLES", one));
    std::string read;
    EXPECT_TRUE(access.getParameter<ShaderParameterString>("SAMPLES", read));
    EXPECT_EQ(one, read);
    EXPECT_TRUE(access.subParameter("SAMPLES"));
    EXPECT_EQ(0u, field.size());
}

TEST_F(ShaderParameterTest, BytesAreWhatGLTakes)
{
    const ShaderParameterBoolPtr truth = ShaderParameterBool::create();
    truth->setValue(true);
    std::vector<UInt8> bytes;
    ASSERT_TRUE(shaderValueBytes(truth.get(), bytes));
    Int32 one = 0;
    ASSERT_EQ(sizeof(one), bytes.size());
    std::memcpy(&one, bytes.data(), sizeof(one));
    EXPECT_EQ(1, one);

    const ShaderParameterMIntPtr none = ShaderParameterMInt::create();
    EXPECT_FALSE(shaderValueBytes(none.get(), bytes)) << "an empty array";
    const ShaderParameterStringPtr text = ShaderParameterString::create();
    EXPECT_FALSE(shaderValueBytes(text.get(), bytes)) << "no uniform is a text";
    const ShaderParameterRealPtr liar = ShaderParameterReal::create();
    liar->setTypeId(ShaderParameter::SHPTypeMatrix);
    EXPECT_FALSE(shaderValueBytes(liar.get(), bytes)) << "a wrong type identifier";
}

} // namespace
