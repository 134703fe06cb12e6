#include <Tessaly/Tessaly.h>

#include <gtest/gtest.h>

#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGLogCapture.h>
#include <OpenSG/OSGMemoryDataHandler.h>
#include <OpenSG/OSGTextureChunk.h>
#include <Tessaly/OSGBasicVolumeShadingStyle.h>
#include <Tessaly/OSGComposableVolumeShadingStyle.h>
#include <Tessaly/OSGVolumeNode.h>
#include <Tessaly/OSGVolumeShadingStyle.h>
#include <Tessaly/OSGVolumeViewport.h>

using namespace osg;

namespace
{

/// The entry is called ahead of the initialisation and twice, which changes nothing.
class Containers : public ::testing::Environment
{
    void SetUp() override
    {
        initTessalyExtention();
        initTessalyExtention();
        ASSERT_TRUE(osgInit(0, nullptr));
    }
    void TearDown() override { osgExit(); }
};

const ::testing::Environment *const containers = ::testing::AddGlobalTestEnvironment(new Containers);

struct Row
{
    const char *name;
    const char *type;
    UInt32 id;
    BitVector mask;
    std::string value; ///< as text; of fields without a text form it is ""
};

struct Class
{
    const char *name;
    const char *parent;
    std::vector<Row> rows;
};

std::vector<Class> catalogue()
{
    return {{"VolumeShadingStyle",
             "NodeCore",
             {{"enabled", "SFBool", 3, 8, "true"},
              {"shadingFuncType", "SFUInt32", 4, 16, "0"},
              {"retainedOpacity", "SFReal32", 5, 32, "1"},
              {"boundaryOpacity", "SFReal32", 6, 64, "0"},
              {"opacityFactor", "SFReal32", 7, 128, "1"},
              {"silhouetteRetainedOpacity", "SFReal32", 8, 256, "1"},
              {"silhouetteBoundaryOpacity", "SFReal32", 9, 512, "0"},
              {"silhouetteOpacityFactor", "SFReal32", 10, 1024, "1"},
              {"threshold", "SFReal32", 11, 2048, "0"}}},
            {"BasicVolumeShadingStyle",
             "VolumeShadingStyle",
             {{"lighting", "SFBool", 12, 4096, "false"},
              {"shadows", "SFBool", 13, 8192, "false"},
              {"phaseFunction", "SFUInt32", 14, 16384, "0"},
              {"distanceFactor", "SFReal32", 15, 32768, "1"},
              {"interiorFactor", "SFReal32", 16, 65536, "1"},
              {"lightingFactor", "SFReal32", 17, 131072, "1"},
              {"resolutionFactor", "SFReal32", 18, 262144, "1"},
              {"diffuseColor", "SFColor3f", 19, 524288, "0.75 0.75 0.75"},
              {"emissiveColor", "SFColor3f", 20, 1048576, "0.5 0.5 0.5"},
              {"specularColor", "SFColor3f", 21, 2097152, "1 1 1"},
              {"shininess", "SFReal32", 22, 4194304, "0.2"}}},
            {"ComposableVolumeShadingStyle",
             "VolumeShadingStyle",
             {{"parallelColor", "SFColor3f", 12, 4096, "0 0 0"},
              {"orthogonalColor", "SFColor3f", 13, 8192, "1 1 1"},
              {"edgeColor", "SFColor3f", 14, 16384, "0 0 0"},
              {"colorSteps", "SFInt32", 15, 32768, "4"}}},
            {"VolumeNode",
             "Group",
             {{"voxels", "SFTextureChunkPtr", 3, 8, ""},
              {"swapped", "SFBool", 4, 16, "false"},
              {"normals", "SFTextureChunkPtr", 5, 32, ""},
              {"transferFunc", "SFTextureChunkPtr", 6, 64, ""},
              {"stepSize", "SFReal32", 7, 128, "0.004"},
              {"rayGenType", "SFUInt32", 8, 256, "1"},
              {"bvGeoType", "SFUInt32", 9, 512, "2"},
              {"traversalType", "SFUInt32", 10, 1024, "1"},
              {"normalGenType", "SFUInt32", 11, 2048, "2"},
              {"transferFuncType", "SFUInt32", 12, 4096, "1"},
              {"shadingStyle", "SFNodeCorePtr", 13, 8192, ""},
              {"composableStyle", "MFNodeCorePtr", 14, 16384, ""},
              {"dimensions", "SFVec3f", 15, 32768, "1 1 1"},
              {"sliceThickness", "SFVec3f", 16, 65536, "1 1 1"}}},
            {"VolumeViewport",
             "Viewport",
             {{"enabled", "SFBool", 13, 8192, "true"},
              {"excludeNodes", "MFNodePtr", 14, 16384, ""},
              {"volumeNodes", "MFNodeCorePtr", 15, 32768, ""},
              {"dirty", "SFBool", 16, 65536, "true"}}}};
}

/// A container made by name, with one reference.
struct Made
{
    FieldContainerPtr container;

    explicit Made(const char *name) : container(FieldContainerFactory::the()->createFieldContainer(name))
    {
        addRefCP(container);
    }
    ~Made() { subRefCP(container); }
    Made(const Made &) = delete;
    Made &operator=(const Made &) = delete;
};

std::string textOf(Field *field)
{
    std::string text;
    LogCapture log; // pointers have no text form
    field->getValueByStr(text);
    return text;
}

} // namespace

TEST(Catalogue, EveryClassIsMadeByItsNameWithTheFieldsOfItsTable)
{
    ASSERT_NE(containers, nullptr);
    for(const Class &entry : catalogue())
    {
        SCOPED_TRACE(entry.name);
        const FieldContainerType *const type = FieldContainerFactory::the()->findType(entry.name);
        ASSERT_NE(type, nullptr);
        EXPECT_FALSE(type->isAbstract());
        ASSERT_NE(type->getParent(), nullptr);
        EXPECT_STREQ(type->getParent()->getCName(), entry.parent);
        EXPECT_EQ(type->getNumFieldDescs(), type->getParent()->getNumFieldDescs() + entry.rows.size());

        const Made made(entry.name);
        ASSERT_TRUE(made.container != NullFC);
        EXPECT_STREQ(made.container->getTypeName(), entry.name);
        for(const Row &row : entry.rows)
        {
            SCOPED_TRACE(row.name);
            const FieldDescription *const field = type->getFieldDescription(row.id);
            ASSERT_NE(field, nullptr);
            EXPECT_STREQ(field->getCName(), row.name);
            EXPECT_EQ(field->getFieldId(), row.id);
            EXPECT_EQ(field->getFieldMask(), row.mask);
            EXPECT_FALSE(field->isInternal());
            EXPECT_STREQ(field->getTypeName(), row.type);
            EXPECT_EQ(textOf(made.container->getField(row.id)), row.value);
            EXPECT_EQ(made.container->getField(row.name), made.container->getField(row.id));
        }
    }
}

TEST(Catalogue, TheNextFieldIsTheOneBehindTheTable)
{
    EXPECT_EQ(UInt32(VolumeShadingStyle::NextFieldId), 12u);
    EXPECT_EQ(UInt32(BasicVolumeShadingStyle::NextFieldId), 23u);
    EXPECT_EQ(UInt32(ComposableVolumeShadingStyle::NextFieldId), 16u);
    EXPECT_EQ(UInt32(VolumeNode::NextFieldId), 17u);
    EXPECT_EQ(UInt32(VolumeViewport::NextFieldId), 17u);
    EXPECT_EQ(BitVector(VolumeNode::MTInfluenceMask), BitVector(Group::MTInfluenceMask));
    EXPECT_EQ(BitVector(VolumeViewport::MTInfluenceMask), BitVector(Viewport::MTInfluenceMask));
}

TEST(Catalogue, DumpWritesOneLine)
{
    for(const Class &entry : catalogue())
    {
        const Made made(entry.name);
        LogCapture log;
        made.container->dump();
        ASSERT_EQ(log.count(), 1u);
        EXPECT_EQ(log.messages()[0].level, LOG_LOG);
        EXPECT_EQ(log.messages()[0].module, "OpenSG");
        EXPECT_EQ(log.text(), std::string("Dump ") + entry.name + " NI\n");
    }
}

TEST(Catalogue, AMaskOfZeroEmitsNothing)
{
    for(const Class &entry : catalogue())
    {
        const Made made(entry.name);
        MemoryDataHandler memory;
        made.container->copyToBin(memory, 0);
        EXPECT_EQ(made.container->getBinSize(0), 0u);
        EXPECT_TRUE(memory.getData().empty()) << entry.name;
    }
}

TEST(Catalogue, BinaryDataBringsTheValuesAcross)
{
    const VolumeNodePtr source = VolumeNode::create();
    const VolumeNodePtr target = VolumeNode::create();
    const NodeCorePtr style = VolumeShadingStyle::create();
    const TextureChunkPtr voxels = TextureChunk::create();
    addRefCP(source);
    addRefCP(target);
    addRefCP(style);
    addRefCP(voxels);
    source->setVoxels(voxels);
    source->setStepSize(0.25f);
    source->setRayGenType(7);
    source->setDimensions(Vec3f(1.5f, -2.0f, 3.0f));
    source->getComposableStyle().push_back(style);
    source->getComposableStyle().push_back(NullFC);

    const BitVector mask = VolumeNode::VoxelsFieldMask | VolumeNode::StepSizeFieldMask |
                           VolumeNode::RayGenTypeFieldMask | VolumeNode::DimensionsFieldMask |
                           VolumeNode::ComposableStyleFieldMask;
    MemoryDataHandler memory;
    source->copyToBin(memory, mask);
    // A pointer is 4 bytes, a multi field has a count of 4 bytes ahead.
    EXPECT_EQ(memory.getData().size(), 4u + 4u + 4u + 12u + (4u + 2u * 4u));
    EXPECT_EQ(source->getBinSize(mask), memory.getData().size());
    target->copyFromBin(memory, mask);
    EXPECT_EQ(memory.remaining(), 0u);
    EXPECT_TRUE(target->getVoxels() == voxels);
    EXPECT_EQ(target->getStepSize(), 0.25f);
    EXPECT_EQ(target->getRayGenType(), 7u);
    EXPECT_EQ(target->getDimensions(), Vec3f(1.5f, -2.0f, 3.0f));
    ASSERT_EQ(target->getComposableStyle().size(), 2u);
    EXPECT_TRUE(target->getComposableStyle(0) == style);
    EXPECT_TRUE(target->getComposableStyle(1) == NullFC);

    // Nobody has counted for the fields that were filled from binary data, and nobody takes anything off for
    // them.
    subRefCP(target);
    EXPECT_EQ(voxels.getRefCount(), 2);
    EXPECT_EQ(style.getRefCount(), 1);
    subRefCP(source);
    EXPECT_EQ(voxels.getRefCount(), 1);
    subRefCP(voxels);
    subRefCP(style);
}

TEST(Catalogue, PointersHaveNoTextForm)
{
    LogCapture log;
    SFVolumeNodePtr single;
    std::string out = "as it was";
    single.getValueByStr(out, 1u);
    EXPECT_EQ(out, "as it was");
    EXPECT_EQ(log.count(), 0u);
    single.getValueByStr(out);
    EXPECT_EQ(out, "as it was");
    EXPECT_EQ(log.text(LOG_LOG), "Error To String Conversion not available for \n");
    log.clear();
    single.pushValueByStr("x");
    EXPECT_TRUE(single.getValue() == NullFC);
    EXPECT_EQ(log.text(LOG_LOG), "Error From String Conversion not available for \n");
    log.clear();
    MFVolumeViewportPtr multi;
    multi.pushValueByStr("x");
    ASSERT_EQ(multi.size(), 1u);
    EXPECT_TRUE(multi[0] == NullFC);
    EXPECT_EQ(log.text(LOG_LOG), "Error From String Conversion not available for \n");
}

TEST(References, ASetterKeepsWhatTheHostLetsGo)
{
    const VolumeNodePtr node = VolumeNode::create();
    addRefCP(node);
    TextureChunkPtr texture = TextureChunk::create();
    addRefCP(texture);
    node->setNormals(texture);
    node->setTransferFunc(texture);
    node->setVoxels(texture);
    EXPECT_EQ(texture.getRefCount(), 4);
    subRefCP(texture);
    endEditCP(node, VolumeNode::NormalsFieldMask | VolumeNode::TransferFuncFieldMask);
    EXPECT_EQ(node->getNormals().getRefCount(), 3);
    node->setNormals(NullFC);
    node->setVoxels(NullFC);
    EXPECT_EQ(texture.getRefCount(), 1);
    const UInt32 before = FieldContainerFactory::the()->getNumContainers();
    subRefCP(node);
    EXPECT_EQ(FieldContainerFactory::the()->getNumContainers(), before - 2);
}

TEST(References, AFieldWrittenDirectlyIsCountedAtTheEndOfTheEdit)
{
    const VolumeNodePtr node = VolumeNode::create();
    const NodeCorePtr style = VolumeShadingStyle::create();
    addRefCP(node);
    addRefCP(style);
    node->getSFShadingStyle()->setValue(style);
    node->getComposableStyle().push_back(style);
    EXPECT_EQ(style.getRefCount(), 1);
    endEditCP(node, VolumeNode::ShadingStyleFieldMask | VolumeNode::ComposableStyleFieldMask);
    EXPECT_EQ(style.getRefCount(), 3);
    const FieldContainerPtr copy = node->shallowCopy();
    addRefCP(copy);
    EXPECT_EQ(style.getRefCount(), 5);
    subRefCP(copy);
    EXPECT_EQ(style.getRefCount(), 3);
    subRefCP(node);
    EXPECT_EQ(style.getRefCount(), 1);
    subRefCP(style);
}

TEST(References, TheViewportKeepsItsVolumes)
{
    const VolumeViewportPtr viewport = VolumeViewport::create();
    const VolumeNodePtr node = VolumeNode::create();
    addRefCP(viewport);
    addRefCP(node);
    viewport->getVolumeNodes().push_back(node);
    endEditCP(viewport, VolumeViewport::VolumeNodesFieldMask);
    EXPECT_EQ(node.getRefCount(), 2);
    subRefCP(viewport);
    EXPECT_EQ(node.getRefCount(), 1);
    subRefCP(node);
}
