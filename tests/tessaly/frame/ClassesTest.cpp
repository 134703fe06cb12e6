#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGFieldContainer.h>

using namespace osg;

namespace
{

/// What a class of the library is, apart from its behaviour.
struct Row
{
    const char *name;
    const char *parent;
    UInt32 fields;  ///< of its own
    UInt32 firstId; ///< of these
    bool single;    ///< whether there is a single field of its pointers
};

const std::vector<Row> rows = {
    {"BasicVolumeShadingStyle", "VolumeShadingStyle", 11, 12, true},
    {"CommonSurfaceShaderMaterial", "ChunkMaterial", 55, 6, true},
    {"ComposableVolumeShadingStyle", "VolumeShadingStyle", 4, 12, true},
    {"DropletFlowViewport", "Viewport", 20, 13, true},
    {"FBOForeground", "Foreground", 5, 3, true},
    {"ForegroundGroup", "Foreground", 1, 3, true},
    {"ImprovedColorDisplayFilter", "DisplayFilter", 8, 3, true},
    {"Layer", "Group", 3, 3, true},
    {"MultiCore", "Group", 1, 3, true},
    {"NurbsCurve", "Geometry", 10, 28, true},
    {"NurbsSurface", "Geometry", 15, 28, true},
    {"NurbsTrimmingLoop", "NodeCore", 2, 3, true},
    {"OculusRiftFilter", "DisplayFilter", 8, 3, true},
    {"OculusRiftFilter2", "DisplayFilter", 8, 3, true},
    {"PBOGrabForeground", "GrabForeground", 2, 5, true},
    {"PermutationSHLChunk", "SHLChunk", 5, 15, true},
    {"PrimitiveDrawer", "MaterialDrawable", 2, 4, true},
    {"ScreenDumpForeground", "GrabForeground", 1, 5, true},
    {"SkydomeBackground", "Background", 5, 2, false},
    {"SortedPrimitives", "MaterialDrawable", 18, 4, true},
    {"VolumeNode", "Group", 14, 3, true},
    {"VolumeShadingStyle", "NodeCore", 9, 3, true},
    {"VolumeViewport", "Viewport", 4, 13, true},
};

TEST(Classes, EachIsMadeByNameWithItsParentItsFieldsAndItsTypes)
{
    for(const Row &row : rows)
    {
        SCOPED_TRACE(row.name);
        const FieldContainerType *const type = FieldContainerFactory::the()->findType(row.name);
        ASSERT_NE(type, nullptr);
        ASSERT_NE(type->getParent(), nullptr);
        EXPECT_STREQ(type->getParent()->getCName(), row.parent);
        EXPECT_EQ(type->getNumFieldDescs() - type->getParent()->getNumFieldDescs(), row.fields);
        EXPECT_EQ(type->getParent()->getNumFieldDescs() + 1, row.firstId);
        EXPECT_EQ(type->getFieldDescription(row.firstId + row.fields), nullptr);

        const std::string name = row.name;
        EXPECT_EQ(FieldFactory::the().getFieldType(("SF" + name + "Ptr").c_str()) != nullptr, row.single);
        EXPECT_NE(FieldFactory::the().getFieldType(("MF" + name + "Ptr").c_str()), nullptr);
        EXPECT_NE(TypeFactory::the()->findType((name + "Ptr").c_str()), nullptr);

        const FieldContainerPtr made = FieldContainerFactory::the()->createFieldContainer(row.name);
        ASSERT_TRUE(made != NullFC);
        addRefCP(made);
        EXPECT_EQ(&made->getType(), type);
        subRefCP(made);
    }
}

TEST(Classes, OnlyTheNamedFieldsAreInternal)
{
    const std::vector<std::pair<std::string, std::string>> internal = {{"NurbsCurve", "numVertices"},
                                                                       {"NurbsCurve", "SurfaceGLId"},
                                                                       {"NurbsSurface", "numVertices"},
                                                                       {"NurbsSurface", "SurfaceGLId"},
                                                                       {"SortedPrimitives", "indicesSize"},
                                                                       {"SortedPrimitives", "sort"}};
    for(const Row &row : rows)
    {
        const FieldContainerType *const type = FieldContainerFactory::the()->findType(row.name);
        ASSERT_NE(type, nullptr);
        for(UInt32 id = row.firstId; id < row.firstId + row.fields; ++id)
        {
            const FieldDescription *const field = type->getFieldDescription(id);
            ASSERT_NE(field, nullptr) << row.name << " " << id;
            const bool expected = std::find(internal.begin(), internal.end(),
                                            std::make_pair(std::string(row.name), std::string(field->getCName()))) !=
                                  internal.end();
            EXPECT_EQ(field->isInternal(), expected) << row.name << " " << field->getCName();
        }
    }
}

} // namespace
