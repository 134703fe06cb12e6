#include "PermutationScene.h"

#include <OpenSG/OSGMemoryDataHandler.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGShaderParameterBool.h>
#include <OpenSG/OSGShaderParameterInt.h>
#include <OpenSG/OSGShaderParameterReal.h>
#include <OpenSG/OSGShaderParameterString.h>
#include <OpenSG/OSGShearedStereoCameraDecorator.h>
#include <OpenSG/OSGTestDecorator.h>
#include <OpenSG/OSGViewport.h>

using namespace osg;
using namespace shader_test;

TEST_F(PermutationTest, AnEyeIsFoundBehindOtherDecoratorsAndOnlyWithAViewport)
{
    const Held<ViewportPtr> port;
    const Held<PerspectiveCameraPtr> camera;
    const Held<ShearedStereoCameraDecoratorPtr> stereo;
    const Held<TestDecoratorPtr> inner;
    const Held<TestDecoratorPtr> outer;
    inner->setDecoratee(stereo.ptr);
    outer->setDecoratee(inner.ptr);
    const auto eye = [&](Camera *seen, Viewport *through) {
        action.setCamera(seen);
        action.setViewport(through);
        const std::string text = key();
        const std::size_t at = text.find("OSG_STEREO_LEFT_EYE ") + 20;
        return text.substr(at, text.find('\n', at) - at);
    };
    Viewport *const view = port.ptr.getCPtr();
    stereo->setLeftEye(true);
    EXPECT_EQ(eye(outer.ptr.getCPtr(), view), "1");
    EXPECT_EQ(eye(stereo.ptr.getCPtr(), view), "1");
    stereo->setLeftEye(false);
    EXPECT_EQ(eye(outer.ptr.getCPtr(), view), "0");
    EXPECT_EQ(eye(outer.ptr.getCPtr(), nullptr), "-1");
    EXPECT_EQ(eye(nullptr, view), "-1");
    EXPECT_EQ(eye(camera.ptr.getCPtr(), view), "-1");
    inner->setDecoratee(camera.ptr);
    EXPECT_EQ(eye(outer.ptr.getCPtr(), view), "-1");
    inner->setDecoratee(NullFC);
    EXPECT_EQ(eye(outer.ptr.getCPtr(), view), "-1");
    action.setCamera(nullptr);
    action.setViewport(nullptr);
}

TEST_F(PermutationTest, FogIsToldByItsModeAndOnlyWhileItIsOn)
{
    setFog(1);
    EXPECT_NE(key().find("OSG_FOG 1\n"), std::string::npos);
    glFogi(GL_FOG_MODE, GL_EXP);
    EXPECT_NE(key().find("OSG_FOG 2\n"), std::string::npos);
    glFogi(GL_FOG_MODE, GL_EXP2);
    EXPECT_NE(key().find("OSG_FOG 3\n"), std::string::npos);
    glDisable(GL_FOG);
    EXPECT_NE(key().find("OSG_FOG 0\n"), std::string::npos) << "the mode alone is not fog";
}

TEST_F(PermutationTest, ProgramsStandBehindPrefixAndDefines)
{
    chunk->setVertexProgram("void main() { gl_Position = gl_Vertex; }\n");
    chunk->setVertexProgramPrefix("#version 110\n// vertex");
    chunk->setFragmentProgramPrefix("#version 120\n// fragment");
    chunk->setGeometryProgramPrefix("#version 150\n");
    chunk->setCgFrontEnd(true);
    endEditCP(chunk.ptr);
    action.setLights(5);
    EXPECT_EQ(drawn(), (Pixel{5, 2, 0, 255}));
    const std::string header = "\n" + key() + "\n";
    const SHLChunkPtr permutation = find(key());
    ASSERT_TRUE(permutation != NullFC);
    EXPECT_EQ(permutation->getVertexProgram(),
              "#version 110\n// vertex" + header + "void main() { gl_Position = gl_Vertex; }\n");
    EXPECT_EQ(permutation->getFragmentProgram(), "#version 120\n// fragment" + header + tellTale);
    EXPECT_EQ(permutation->getGeometryProgram(), "") << "whatever its prefix says";
    EXPECT_TRUE(permutation->getCgFrontEnd());
    EXPECT_EQ(permutation.getRefCount(), 0) << "no reference but the one of create";
    chunk->setCgFrontEnd(false);
    endEditCP(chunk.ptr);
}

TEST_F(PermutationTest, EachProgramHasItsOwnPrefix)
{
    chunk->setVertexProgram("vertex text");
    chunk->setFragmentProgram("");
    chunk->setGeometryProgram("geometry text");
    chunk->setVertexProgramPrefix("vertex prefix");
    chunk->setFragmentProgramPrefix("fragment prefix");
    chunk->setGeometryProgramPrefix("geometry prefix");
    const SHLChunkPtr made = (chunk.ptr.getCPtr()->*(&Inner::createPermutation))("KEY");
    EXPECT_EQ(made->getVertexProgram(), "vertex prefix\nKEY\nvertex text");
    EXPECT_EQ(made->getFragmentProgram(), "");
    EXPECT_EQ(made->getGeometryProgram(), "geometry prefix\nKEY\ngeometry text");
    EXPECT_TRUE(find("KEY") == made);
    EXPECT_TRUE(find("KE") == NullFC);
}

TEST_F(PermutationTest, AParameterOfUnknownTypeIsWarnedOfAtEachActivation)
{
    const ShaderParameterRealPtr other = ShaderParameterReal::create();
    other->setName("R");
    addRefCP(other);
    chunk->editMFPermutationParameters()->push_back(other);
    endEditCP(chunk.ptr, PermutationSHLChunk::PermutationParametersFieldMask);
    for(int i = 0; i < 3; ++i)
    {
        LogCapture log;
        EXPECT_EQ(drawn()[3], 255);
        EXPECT_EQ(log.count(LOG_WARNING), 1u);
    }
    EXPECT_EQ(chunk->getNumPermutations(), 1u);
}

TEST_F(PermutationTest, PermutationParametersStandBehindEachOther)
{
    EXPECT_EQ(parameterText(), "");
    EXPECT_TRUE(chunk->setPermutationParameter("A", "1"));
    EXPECT_TRUE(chunk->setPermutationParameter("B", "2"));
    EXPECT_EQ(parameterText(), "#define A 1#define B 2") << "no line end follows a value";
    EXPECT_TRUE(chunk->setPermutationParameter("A", "1\n"));
    EXPECT_EQ(parameterText(), "#define A 1\n#define B 2");

    const ShaderParameterBoolPtr flag = ShaderParameterBool::create();
    const ShaderParameterIntPtr number = ShaderParameterInt::create();
    const ShaderParameterRealPtr other = ShaderParameterReal::create();
    flag->setName("F");
    flag->setValue(true);
    number->setName("N");
    number->setValue(-17);
    other->setName("R");
    chunk->clearPermutationParameters();
    for(const ShaderParameterPtr &parameter :
        {ShaderParameterPtr(flag), ShaderParameterPtr(number), ShaderParameterPtr(other)})
    {
        addRefCP(parameter);
        chunk->editMFPermutationParameters()->push_back(parameter);
    }
    endEditCP(chunk.ptr, PermutationSHLChunk::PermutationParametersFieldMask);
    LogCapture log;
    EXPECT_EQ(parameterText(), "#define F 1#define N -17#define R <UnknownType>");
    EXPECT_EQ(log.text(LOG_WARNING),
              "PermutationSHLChunk::appendPermutationParameters :PermutationParameter R has unknown type!\n");
    EXPECT_EQ(log.count(), 1u);
    flag->setValue(false);
    EXPECT_EQ(parameterText().substr(0, 11), "#define F 0");
    log.clear();
    EXPECT_FALSE(chunk->setPermutationParameter("N", "3"));
    EXPECT_EQ(log.text(LOG_WARNING), "ShaderParameterAccess::setParameter : Parameter 'N' has wrong type!\n");
    EXPECT_TRUE(chunk->subPermutationParameter("N"));
    EXPECT_TRUE(chunk->subPermutationParameter("R"));
    EXPECT_EQ(parameterText(), "#define F 0");
    chunk->clearPermutationParameters();
    EXPECT_EQ(parameterText(), "");
}

TEST_F(PermutationTest, ParametersAreSetAndAskedByName)
{
    std::string value = "as it was";
    EXPECT_FALSE(chunk->setPermutationParameter(nullptr, "1"));
    EXPECT_FALSE(chunk->getPermutationParameter(nullptr, value));
    EXPECT_FALSE(chunk->subPermutationParameter(nullptr));
    LogCapture log;
    EXPECT_FALSE(chunk->getPermutationParameter("MODE", value));
    EXPECT_EQ(log.text(LOG_WARNING),
              "ShaderParameterAccess::getParameter : Parameter 'MODE' doesn't exist!\n");
    EXPECT_FALSE(chunk->subPermutationParameter("MODE"));
    EXPECT_EQ(value, "as it was");
    EXPECT_TRUE(chunk->setPermutationParameter("MODE", "7"));
    EXPECT_TRUE(chunk->getPermutationParameter("MODE", value));
    EXPECT_EQ(value, "7");
    ASSERT_EQ(chunk->getPermutationParameters().size(), 1u);
    const ShaderParameterPtr parameter = chunk->getPermutationParameters(0);
    EXPECT_STREQ(parameter->getTypeName(), "ShaderParameterString");
    EXPECT_EQ(parameter.getRefCount(), 1);
    const Held<ShaderParameterPtr> held(parameter);
    {
        const Held<FieldContainerPtr> copy(chunk->shallowCopy());
        EXPECT_EQ(parameter.getRefCount(), 3) << "a copy shares it";
    }
    EXPECT_EQ(parameter.getRefCount(), 2);
    EXPECT_TRUE(chunk->subPermutationParameter("MODE"));
    EXPECT_EQ(parameter.getRefCount(), 1);
    EXPECT_EQ(chunk->getPermutationParameters().size(), 0u);

    const ShaderParameterIntPtr number = ShaderParameterInt::create();
    number->setName("MODE");
    addRefCP(number);
    chunk->editMFPermutationParameters()->push_back(number);
    endEditCP(chunk.ptr, PermutationSHLChunk::PermutationParametersFieldMask);
    log.clear();
    EXPECT_FALSE(chunk->getPermutationParameter("MODE", value));
    EXPECT_EQ(log.text(LOG_WARNING),
              "ShaderParameterAccess::getParameter : Parameter 'MODE' has wrong type!\n");
}

TEST_F(PermutationTest, AParameterChoosesTheProgramAndEmptiesNothing)
{
    chunk->setFragmentProgram("void main()\n{\n    gl_FragColor = vec4(float(SHADE) / 255.0);\n}\n");
    endEditCP(chunk.ptr);
    for(const int shade : {10, 20, 10, 30})
    {
        chunk->setPermutationParameter("SHADE", std::to_string(shade));
        endEditCP(chunk.ptr, PermutationSHLChunk::PermutationParametersFieldMask);
        EXPECT_EQ(drawn()[0], shade);
    }
    EXPECT_EQ(chunk->getNumPermutations(), 3u);
    EXPECT_EQ(chunk->getNumStateTexts(), 1u);
}

TEST(PermutationChunk, FieldsAreThoseOfTheTable)
{
    const PermutationSHLChunkPtr chunk = PermutationSHLChunkPtr::dcast(
        FieldContainerFactory::the()->createFieldContainer("PermutationSHLChunk"));
    ASSERT_TRUE(chunk != NullFC);
    const Held<PermutationSHLChunkPtr> held(chunk);
    const FieldContainerType &type = PermutationSHLChunk::getClassType();
    EXPECT_STREQ(type.getParent()->getCName(), "SHLChunk");
    EXPECT_EQ(type.getNumFieldDescs(), SHLChunk::getClassType().getNumFieldDescs() + 5);
    const std::pair<const char *, const char *> fields[] = {{"vertexProgramPrefix", "SFString"},
                                                            {"fragmentProgramPrefix", "SFString"},
                                                            {"geometryProgramPrefix", "SFString"},
                                                            {"permutationParameters", "MFShaderParameterPtr"},
                                                            {"isTransparent", "SFBool"}};
    for(UInt32 i = 0; i < 5; ++i)
    {
        const FieldDescription *const field = type.getFieldDescription(15 + i);
        ASSERT_NE(field, nullptr);
        EXPECT_STREQ(field->getCName(), fields[i].first);
        EXPECT_STREQ(field->getTypeName(), fields[i].second);
        EXPECT_EQ(field->getFieldMask(), BitVector(1) << (15 + i));
        EXPECT_FALSE(field->isInternal());
    }
    EXPECT_EQ(UInt32(PermutationSHLChunk::NextFieldId), 20u);
    EXPECT_EQ(chunk->getVertexProgramPrefix() + chunk->getFragmentProgramPrefix() +
                  chunk->getGeometryProgramPrefix(),
              "");
    EXPECT_EQ(chunk->getPermutationParameters().size(), 0u);
    EXPECT_FALSE(chunk->getIsTransparent());
    LogCapture log;
    chunk->dump();
    EXPECT_EQ(log.text(LOG_LOG), "Dump PermutationSHLChunk NI\n");
    EXPECT_EQ(log.count(), 1u);
}

TEST(PermutationChunk, BinaryDataBringsTheValuesAcross)
{
    const Held<PermutationSHLChunkPtr> source;
    const Held<PermutationSHLChunkPtr> target;
    source->setVertexProgramPrefix("v");
    source->setGeometryProgramPrefix("geometry");
    source->setIsTransparent(true);
    const BitVector mask = PermutationSHLChunk::VertexProgramPrefixFieldMask |
                           PermutationSHLChunk::GeometryProgramPrefixFieldMask |
                           PermutationSHLChunk::IsTransparentFieldMask;
    MemoryDataHandler memory;
    source->copyToBin(memory, mask);
    EXPECT_EQ(source->getBinSize(mask), memory.getData().size());
    target->copyFromBin(memory, mask);
    EXPECT_EQ(memory.remaining(), 0u);
    EXPECT_EQ(target->getVertexProgramPrefix(), "v");
    EXPECT_EQ(target->getFragmentProgramPrefix(), "");
    EXPECT_EQ(target->getGeometryProgramPrefix(), "geometry");
    EXPECT_TRUE(target->getIsTransparent());
}
