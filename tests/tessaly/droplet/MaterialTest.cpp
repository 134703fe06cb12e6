/// \file
/// What the simulation adds to the host's material, its uniforms and texts.

#include "DropletScene.h"

#include <OpenSG/OSGBlendChunk.h>
#include <OpenSG/OSGDepthChunk.h>
#include <OpenSG/OSGMaterialChunk.h>
#include <OpenSG/OSGPolygonChunk.h>

#include "droplet/DropletText.h"

OSG_USING_NAMESPACE
using namespace droplet_test;

namespace
{

template <class PtrT>
PtrT chunkOf(const ChunkMaterialPtr &material, UInt32 index)
{
    return PtrT::dcast(material->getChunk(index));
}

} // namespace

TEST(DropletMaterial, GetsOnlyTheMapInMode0)
{
    Stage stage;
    const Held<ChunkMaterialPtr> material;
    const Held<NodePtr> object(makeObject(material));
    DropletFlow flow(object, material, 16, 16, 0, NullFC);
    EXPECT_EQ(chunkTypes(material), std::vector<std::string>{"TextureChunk"});
    EXPECT_EQ(chunkOf<TextureChunkPtr>(material, 0), flow.getSurfaceMap(0));
    EXPECT_EQ(material->getSlots(0), -2);
    EXPECT_TRUE(flow.getRenderShader() == NullFC);
}

TEST(DropletMaterial, ShowsTheHostsTextureInMode0)
{
    Stage stage;
    const Held<ChunkMaterialPtr> material;
    const Held<TextureChunkPtr> given;
    const Held<ImagePtr> image;
    image->set(6408, 24, 12);
    endEditCP(image.ptr);
    given->setImage(image);
    given->setMinFilter(GL_NEAREST);
    given->setInternalFormat(GL_RGBA16F);
    endEditCP(given.ptr);
    const Held<NodePtr> object(makeObject(material));
    {
        DropletFlow flow(object, material, 16, 16, 0, given);
        EXPECT_EQ(flow.getSurfaceMap(0), given.ptr);
        EXPECT_NE(flow.getSurfaceMap(1), given.ptr);
        EXPECT_EQ(chunkOf<TextureChunkPtr>(material, 0), given.ptr);
        EXPECT_TRUE(flow.getRenderShader() == NullFC);
        EXPECT_EQ(given->getMinFilter(), GLenum(GL_NEAREST));
        flow.bakeSurfaceMaps(0.0f);
        flow.tick(nullptr, 0.0, 0);
        stage.bind(given);
        GLint filters[2] = {};
        glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, &filters[0]);
        glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, &filters[1]);
        EXPECT_EQ(filters[0], GL_NEAREST);
        EXPECT_EQ(filters[1], GLint(given->getMagFilter()));
        glBindTexture(GL_TEXTURE_2D, 0);
        // The whole of the texture is drawn to, whatever its size: 1 / 0.01 * 0.1, damped by the friction.
        const Map map = stage.read(given);
        ASSERT_EQ(map.width, 24);
        for(const auto &cell : map.cells)
            ASSERT_NEAR(cell[1], -10.0 * std::exp(-10.0), 1e-5);
    }
    EXPECT_EQ(material->getChunks().size(), 0u);
}

TEST(DropletMaterial, GetsTheDisplayInTheOtherModes)
{
    Stage stage;
    for(const Int32 mode : {1, 2, 7})
    {
        SCOPED_TRACE(mode);
        const Held<ChunkMaterialPtr> material;
        const Held<NodePtr> object(makeObject(material));
        DropletFlow flow(object, material, 16, 32, mode, NullFC);
        EXPECT_EQ(chunkTypes(material),
                  (std::vector<std::string>{"SHLChunk", "TextureChunk", "MaterialChunk", "PolygonChunk",
                                            "BlendChunk", "DepthChunk"}));
        EXPECT_EQ(material->getSlots().getValues(), (std::vector<Int32>{-2, 1, -2, -2, -2, -2}));
        EXPECT_EQ(chunkOf<SHLChunkPtr>(material, 0), flow.getRenderShader());
        EXPECT_EQ(chunkOf<TextureChunkPtr>(material, 1), flow.getSurfaceMap(0));
        const auto terms = chunkOf<MaterialChunkPtr>(material, 2);
        EXPECT_EQ(terms->getAmbient(), Color4f(0.05f, 0.05f, 0.05f, 1));
        EXPECT_EQ(terms->getEmission(), Color4f(0.05f, 0.05f, 0.05f, 1));
        EXPECT_EQ(terms->getSpecular(), Color4f(0.2f, 0.2f, 0.2f, 1));
        EXPECT_EQ(terms->getShininess(), 80.0f);
        EXPECT_EQ(chunkOf<PolygonChunkPtr>(material, 3)->getCullFace(), GLenum(GL_BACK));
        EXPECT_EQ(chunkOf<BlendChunkPtr>(material, 4)->getSrcFactor(), GLenum(GL_SRC_ALPHA));
        EXPECT_EQ(chunkOf<BlendChunkPtr>(material, 4)->getDestFactor(), GLenum(GL_ONE_MINUS_SRC_ALPHA));
        const auto depth = chunkOf<DepthChunkPtr>(material, 5);
        EXPECT_TRUE(depth->getEnable());
        EXPECT_FALSE(depth->getReadOnly());
        EXPECT_EQ(depth->getFunc(), GLenum(GL_LEQUAL));
        EXPECT_EQ(depth->getNear(), -1.0f);
        EXPECT_EQ(depth->getFar(), -1.0f);

        const SHLChunkPtr shader = flow.getRenderShader();
        EXPECT_EQ(uniform<Int32>(shader, "surfaceMap"), 1);
        if(mode > 1)
        {
            EXPECT_EQ(uniform<Int32>(shader, "diffuseMap"), 0);
        }
        EXPECT_EQ(uniform<Vec2f>(shader, "offset"), Vec2f(1 / 16.0f, 1 / 32.0f));
        EXPECT_EQ(uniform<Vec4f>(shader, "fluidColor"), Vec4f(0, 0.3f, 1, 1));
        EXPECT_EQ(shader->getVertexProgram(), tessaly::displayVertexText);
        EXPECT_EQ(shader->getFragmentProgram(),
                  mode == 1 ? tessaly::fluidFragmentText : tessaly::texturedFragmentText);
        flow.setFluidColor(Color4f(0.1f, 0.2f, 0.3f, 0.4f));
        EXPECT_EQ(uniform<Vec4f>(shader, "fluidColor"), Vec4f(0.1f, 0.2f, 0.3f, 0.4f));
    }
}

TEST(DropletMaterial, StaysAsItIsInAModeBelow0)
{
    Stage stage;
    const Held<ChunkMaterialPtr> material;
    const Held<NodePtr> object(makeObject(material));
    DropletFlow flow(object, material, 16, 16, -1, NullFC);
    EXPECT_EQ(material->getChunks().size(), 0u);
    EXPECT_TRUE(flow.getRenderShader() == NullFC);
}

TEST(DropletMaterial, LosesTheChunksOfADeletedSimulationAndKeepsItsOwn)
{
    Stage stage;
    const Held<ChunkMaterialPtr> material;
    material->addChunk(BlendChunk::create());
    const Held<TextureChunkPtr> own;
    material->addChunk(own, State::AutoSlot);
    endEditCP(material.ptr);
    const Held<NodePtr> object(makeObject(material));
    for(const Int32 mode : {0, 1, 2})
    {
        {
            DropletFlow flow(object, material, 16, 16, mode, NullFC);
            EXPECT_EQ(material->getChunks().size(), mode == 0 ? 3u : 8u);
        }
        EXPECT_EQ(chunkTypes(material), (std::vector<std::string>{"BlendChunk", "TextureChunk"}));
        EXPECT_EQ(material->getSlots().size(), 2u);
    }
}

TEST(DropletUniforms, AreThoseOfTheDefaultsAndOfTheSetters)
{
    Stage stage;
    const Held<NodePtr> object(makeObject());
    DropletFlow flow(object, NullFC, 16, 32, 0, NullFC);
    const SHLChunkPtr force = flow.getForceShader(), advection = flow.getAdvectionShader();
    EXPECT_EQ(uniform<Int32>(force, "surfaceMap"), 0);
    EXPECT_EQ(uniform<Int32>(force, "normalMap"), 1);
    EXPECT_EQ(uniform<Int32>(force, "tangentMap"), 2);
    EXPECT_EQ(uniform<Vec3f>(force, "force"), Vec3f(0, -1, 0));
    EXPECT_EQ(uniform<Real32>(force, "timeStep"), 0.1f);
    EXPECT_EQ(uniform<Real32>(force, "density"), 1.0f);
    EXPECT_EQ(uniform<Real32>(force, "viscosity"), 1.0f);
    EXPECT_EQ(uniform<Real32>(force, "frictionN"), 3.0f);
    EXPECT_EQ(uniform<Real32>(force, "frictionSigma"), 0.1f);
    EXPECT_EQ(uniform<Matrix>(force, "invViewMatrix"), Matrix());
    EXPECT_EQ(uniform<Int32>(advection, "surfaceMap"), 0);
    EXPECT_EQ(uniform<Vec2f>(advection, "offset"), Vec2f(1 / 16.0f, 1 / 32.0f));
    EXPECT_EQ(uniform<Real32>(advection, "timeStep"), 0.1f);
    EXPECT_EQ(flow.getTimer()->interval, Real64(0.01f));
    EXPECT_FALSE(flow.getTimer()->enabled);
    EXPECT_EQ(flow.getTimer()->target, &flow);

    flow.setSimulationParameters(2, 3, 4, 5, 6, 7);
    flow.setForce(Vec3f(8, 9, 10));
    EXPECT_EQ(flow.getTimer()->interval, 2.0);
    EXPECT_EQ(uniform<Real32>(force, "timeStep"), 3.0f);
    EXPECT_EQ(uniform<Real32>(advection, "timeStep"), 3.0f);
    EXPECT_EQ(uniform<Real32>(force, "density"), 4.0f);
    EXPECT_EQ(uniform<Real32>(force, "viscosity"), 5.0f);
    EXPECT_EQ(uniform<Real32>(force, "frictionN"), 6.0f);
    EXPECT_EQ(uniform<Real32>(force, "frictionSigma"), 7.0f);
    EXPECT_EQ(uniform<Vec3f>(force, "force"), Vec3f(8, 9, 10));
}

TEST(DropletTexts, HoldTheLinesThatArePromised)
{
    const auto expectIn = [](const char *text, std::initializer_list<const char *> lines) {
        for(const char *const line : lines)
            EXPECT_NE(std::string(text).find(line), std::string::npos) << line;
    };
    expectIn(tessaly::flowVertexText,
             {"vec2 Position = sign(gl_Vertex.xy);", "gl_Position = vec4(Position.xy, 0.0, 1.0);",
              "texCoord = Position.xy * 0.5 + 0.5;"});
    expectIn(tessaly::forceFragmentText,
             {"float attenuation(float x)", "exp(-pow(1.0 - x, frictionN) / frictionSigma) * viscosity,",
              "vec3 acceleration = (invViewMatrix * vec4(force, 0.0)).xyz /",
              "(density * max(0.01, surface.z));",
              "vec2 a = vec2(dot(tangent, acceleration), dot(biTangent, acceleration));",
              "vec2 velocity = (surface.xy + a * timeStep) * attenuation(surface.z);"});
    expectIn(tessaly::advectionFragmentText,
             {"vec2 scale()", "vec4 surface", "c *= step(offset.x, texCoord.x) * step(offset.y, texCoord.y);",
              "gl_FragColor = vec4(surface.x, surface.y, clamp(c, 0.0, 1.0), 0.0);"});
    for(const char *const text : {tessaly::normalVertexText, tessaly::tangentVertexText})
        expectIn(text, {"gl_Position = vec4((gl_MultiTexCoord0.xy), 0.0, 1.0) * 2.0 - 1.0;",
                        "texCoord = gl_MultiTexCoord0.xy"});
    expectIn(tessaly::normalVertexText, {"Normal = gl_Normal; // Pass normals in object coordinates"});
    expectIn(tessaly::tangentVertexText,
             {"Tangent = gl_MultiTexCoord1.xyz; // Pass tangents in object coordinates"});
    for(const char *const text : {tessaly::normalFragmentText, tessaly::tangentFragmentText})
        expectIn(text, {"vec3 v = normalize(texture2D(noiseMap, texCoord).xyz * 2.0 - 1.0);",
                        "mat3 rotationMatrix = mat3("});
    expectIn(tessaly::normalFragmentText, {"vec4(normalize(rotationMatrix * Normal) * 0.5 + 0.5, 1.0)"});
    expectIn(tessaly::tangentFragmentText, {"vec4(normalize(rotationMatrix * Tangent) * 0.5 + 0.5, 1.0)"});
    expectIn(tessaly::displayVertexText,
             {"gl_ModelViewMatrixInverse * vec4(0.0,0.0,0.0,1.0)", "gl_LightSource[0].position.xyz",
              "gl_MultiTexCoord0.xy", "gl_MultiTexCoord1.xyz"});
    for(const char *const text : {tessaly::fluidFragmentText, tessaly::texturedFragmentText})
        expectIn(text, {"vec3 nNormal = normalize(vec3(val - valU, val - valV, 0.5));"});
    expectIn(
        tessaly::fluidFragmentText,
        {"float NDotL = max(0.2, 0.1 + dot(nNormal, nLightDir));",
         "float NDotH = max(0.2, dot(normalize(nLightDir + nViewDir), nNormal));",
         "float volume = clamp(val, 0.0, 1.0);", "float lrp = 0.1 * pow(1.0 - dot(nViewDir, nNormal), 5.0);",
         "float wetnessScale = smoothstep(0.0, 0.05, volume);", "vec3 totalDiffuse = fluidColor.rgb * NDotL;",
         "float specularScale = wetnessScale * pow(NDotH, 30.0);",
         "vec3 totalSpecular = fluidColor.rgb * lrp + vec3(specularScale);",
         "vec3 color = min(totalDiffuse + totalSpecular, 1.0);",
         "(pow(volume, 0.5) + specularScale) * fluidColor.a"});
    expectIn(tessaly::texturedFragmentText,
             {"float NDotL = max(0.2, dot(nNormal, nLightDir));",
              "float NDotH = max(dot(normalize(nLightDir + nViewDir), nNormal), 0.2);",
              "vec4 color = mix(texture2D(diffuseMap, texCoord),",
              "fluidColor, pow(volume, 0.5) * fluidColor.a);"});
}
