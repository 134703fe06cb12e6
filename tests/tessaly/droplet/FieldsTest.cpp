/// \file
/// The field table of the viewport, and its way through the factory, the log and binary data.

#include "DropletScene.h"

#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGMemoryDataHandler.h>
#include <Tessaly/OSGDropletFlowViewport.h>

OSG_USING_NAMESPACE
using namespace droplet_test;

namespace
{

struct Row
{
    const char *name;
    const char *type;
    std::string value; ///< as text; "" for fields without a text form
};

// Time is a name of Real64.
const std::vector<Row> rows = {{"enabled", "SFBool", "true"},
                               {"matMode", "SFInt32", "0"},
                               {"textures", "MFTextureChunkPtr", ""},
                               {"material", "SFChunkMaterialPtr", ""},
                               {"dirty", "SFBool", "true"},
                               {"time", "SFReal64", "0"},
                               {"timeStep", "SFReal64", "0.4"},
                               {"timeDelay", "SFReal64", "0.01"},
                               {"surfaceMapSize", "SFVec2f", ""},
                               {"noiseMapSize", "SFVec2f", ""},
                               {"perturbAngle", "SFReal32", ""},
                               {"frictionN", "SFReal32", ""},
                               {"frictionSigma", "SFReal32", ""},
                               {"fluidDensity", "SFReal32", ""},
                               {"fluidViscosity", "SFReal32", ""},
                               {"contactAngle", "SFReal32", ""},
                               {"fluidColor", "SFColor4f", ""},
                               {"force", "SFVec3f", ""},
                               {"sources", "MFVec3f", ""},
                               {"pause", "SFBool", "false"}};

} // namespace

TEST(DropletFlowViewportFields, AreThoseOfTheTable)
{
    const FieldContainerType *const type = FieldContainerFactory::the()->findType("DropletFlowViewport");
    ASSERT_NE(type, nullptr);
    EXPECT_STREQ(type->getParent()->getCName(), "Viewport");
    EXPECT_EQ(type->getNumFieldDescs(), type->getParent()->getNumFieldDescs() + 20);
    for(UInt32 i = 0; i < rows.size(); ++i)
    {
        const UInt32 id = 13 + i;
        SCOPED_TRACE(rows[i].name);
        const FieldDescription *const field = type->getFieldDescription(id);
        ASSERT_NE(field, nullptr);
        EXPECT_STREQ(field->getCName(), rows[i].name);
        EXPECT_EQ(field->getFieldId(), id);
        EXPECT_EQ(field->getFieldMask(), BitVector(1) << id);
        EXPECT_FALSE(field->isInternal());
        EXPECT_STREQ(field->getTypeName(), rows[i].type);
        if(!rows[i].value.empty())
        {
            std::string text;
            type->getPrototype()->getField(id)->getValueByStr(text);
            EXPECT_EQ(text, rows[i].value);
        }
    }
    EXPECT_EQ(UInt32(DropletFlowViewport::NextFieldId), 33u);
    EXPECT_EQ(BitVector(DropletFlowViewport::EnabledFieldMask), BitVector(1) << 13);
    EXPECT_EQ(BitVector(DropletFlowViewport::PauseFieldMask), BitVector(1) << 32);
    EXPECT_EQ(BitVector(DropletFlowViewport::MTInfluenceMask), BitVector(Viewport::MTInfluenceMask));
}

TEST(DropletFlowViewportFields, HaveTheirDefaultsInOneMadeByName)
{
    const Held<FieldContainerPtr> made(
        FieldContainerFactory::the()->createFieldContainer("DropletFlowViewport"));
    const DropletFlowViewportPtr viewport = DropletFlowViewportPtr::dcast(made.ptr);
    ASSERT_TRUE(viewport != NullFC);
    EXPECT_TRUE(viewport->getEnabled());
    EXPECT_EQ(viewport->getMatMode(), 0);
    EXPECT_TRUE(viewport->getTextures().empty());
    EXPECT_TRUE(viewport->getMaterial() == NullFC);
    EXPECT_TRUE(viewport->getDirty());
    EXPECT_EQ(viewport->getTime(), 0.0);
    EXPECT_EQ(viewport->getTimeStep(), 0.4);
    EXPECT_EQ(viewport->getTimeDelay(), 0.01);
    EXPECT_EQ(viewport->getSurfaceMapSize(), Vec2f(256, 256));
    EXPECT_EQ(viewport->getNoiseMapSize(), Vec2f(32, 32));
    EXPECT_EQ(viewport->getPerturbAngle(), 0.52f);
    EXPECT_EQ(viewport->getFrictionN(), 8.0f);
    EXPECT_EQ(viewport->getFrictionSigma(), 0.5f);
    EXPECT_EQ(viewport->getFluidDensity(), 1.0f);
    EXPECT_EQ(viewport->getFluidViscosity(), 1.0f);
    EXPECT_EQ(viewport->getContactAngle(), 1.570796f);
    EXPECT_EQ(viewport->getFluidColor(), Color4f(0.1f, 0.2f, 0.9f, 1.0f));
    EXPECT_EQ(viewport->getForce(), Vec3f(0, -0.1f, 0));
    EXPECT_TRUE(viewport->getSources().empty());
    EXPECT_FALSE(viewport->getPause());
}

TEST(DropletFlowViewportFields, DumpWritesOneLine)
{
    const Held<DropletFlowViewportPtr> viewport;
    LogCapture log;
    viewport->dump();
    EXPECT_EQ(log.text(), "Dump DropletFlowViewport NI\n");
}

TEST(DropletFlowViewportFields, GoThroughBinaryDataInTheOrderOfTheTable)
{
    const Held<DropletFlowViewportPtr> from, to;
    const Held<TextureChunkPtr> texture;
    const Held<ChunkMaterialPtr> material;
    from->setEnabled(false);
    from->setMatMode(2);
    from->getTextures().push_back(texture);
    from->setMaterial(material);
    from->setDirty(false);
    from->setTime(12.5);
    from->setTimeStep(0.25);
    from->setTimeDelay(0.5);
    from->setSurfaceMapSize(Vec2f(10, 20));
    from->setNoiseMapSize(Vec2f(3, 4));
    from->setPerturbAngle(0.1f);
    from->setFrictionN(1.5f);
    from->setFrictionSigma(2.5f);
    from->setFluidDensity(3.5f);
    from->setFluidViscosity(4.5f);
    from->setContactAngle(0.75f);
    from->setFluidColor(Color4f(0.5f, 0.25f, 0.125f, 1));
    from->setForce(Vec3f(1, 2, 3));
    from->getSources().push_back(Vec3f(0.5f, 0.25f, 0.125f));
    from->getSources().push_back(Vec3f(0.75f, 1, 2));
    from->setPause(true);
    endEditCP(from.ptr);

    BitVector all = 0;
    for(UInt32 id = 13; id < 33; ++id)
        all |= BitVector(1) << id;
    EXPECT_EQ(from->getBinSize(0), Viewport::Ptr(from.ptr)->getBinSize(0));
    MemoryDataHandler data;
    from->copyToBin(data, all);
    EXPECT_EQ(data.getData().size(), std::size_t(from->getBinSize(all)));
    to->copyFromBin(data, all);
    endEditCP(to.ptr, all);
    EXPECT_FALSE(to->getEnabled());
    EXPECT_EQ(to->getMatMode(), 2);
    ASSERT_EQ(to->getTextures().size(), 1u);
    EXPECT_EQ(to->getTextures(0), texture.ptr);
    EXPECT_EQ(to->getMaterial(), material.ptr);
    EXPECT_FALSE(to->getDirty());
    EXPECT_EQ(to->getTime(), 12.5);
    EXPECT_EQ(to->getTimeStep(), 0.25);
    EXPECT_EQ(to->getTimeDelay(), 0.5);
    EXPECT_EQ(to->getSurfaceMapSize(), Vec2f(10, 20));
    EXPECT_EQ(to->getNoiseMapSize(), Vec2f(3, 4));
    EXPECT_EQ(to->getPerturbAngle(), 0.1f);
    EXPECT_EQ(to->getFrictionN(), 1.5f);
    EXPECT_EQ(to->getFrictionSigma(), 2.5f);
    EXPECT_EQ(to->getFluidDensity(), 3.5f);
    EXPECT_EQ(to->getFluidViscosity(), 4.5f);
    EXPECT_EQ(to->getContactAngle(), 0.75f);
    EXPECT_EQ(to->getFluidColor(), Color4f(0.5f, 0.25f, 0.125f, 1));
    EXPECT_EQ(to->getForce(), Vec3f(1, 2, 3));
    ASSERT_EQ(to->getSources().size(), 2u);
    EXPECT_EQ(to->getSources(1), Vec3f(0.75f, 1, 2));
    EXPECT_TRUE(to->getPause());
    // pause is behind bit 31.
    MemoryDataHandler one;
    from->copyToBin(one, DropletFlowViewport::PauseFieldMask);
    EXPECT_EQ(one.getData().size(), 1u);
}
