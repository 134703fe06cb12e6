#include <gtest/gtest.h>

#include <OpenSG/OSGBackground.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGForeground.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGMaterialDrawable.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGViewport.h>

OSG_USING_NAMESPACE

namespace
{

// Classes of other libraries begin where these end; their masks go into streams.
TEST(FieldIdTest, EachClassEndsWhereItsChildrenBegin)
{
    EXPECT_EQ(NodeCore::NextFieldId, 3);
    EXPECT_EQ(Group::NextFieldId, 3);
    EXPECT_EQ(Background::NextFieldId, 2);
    EXPECT_EQ(Viewport::NextFieldId, 13);
    EXPECT_EQ(Foreground::NextFieldId, 3);
    EXPECT_EQ(GrabForeground::NextFieldId, 5);
    EXPECT_EQ(MaterialDrawable::NextFieldId, 4);
    EXPECT_EQ(Geometry::NextFieldId, 28);
    EXPECT_EQ(ChunkMaterial::NextFieldId, 6);
    EXPECT_EQ(SHLChunk::NextFieldId, 15);
}

// Ids are consecutive, masks follow from ids, and the first id of a class is the one behind its parent's last.
TEST(FieldIdTest, TheFieldsOfEveryClassAreConsecutive)
{
    osgInit(0, nullptr);
    std::size_t classes = 0;
    for(const FieldContainerType *type : FieldContainerFactory::the()->getTypes())
    {
        const UInt32 inherited = type->getParent() != nullptr ? type->getParent()->getNumFieldDescs() : 0;
        EXPECT_GE(type->getNumFieldDescs(), inherited) << type->getCName();
        for(UInt32 id = 1; id <= type->getNumFieldDescs(); ++id)
        {
            const FieldDescription *const field = type->getFieldDescription(id);
            ASSERT_NE(field, nullptr) << type->getCName() << " " << id;
            EXPECT_EQ(field->getFieldMask(), BitVector(1) << id) << type->getCName();
            EXPECT_EQ(type->findFieldDescription(field->getCName()), field) << type->getCName();
        }
        ++classes;
    }
    EXPECT_GT(classes, 80u);
}

TEST(FieldIdTest, EveryConcreteClassIsMadeByNameWithNumberedFieldsThatAnswer)
{
    osgInit(0, nullptr);
    for(const FieldContainerType *type : FieldContainerFactory::the()->getTypes())
    {
        const FieldContainerPtr made = FieldContainerFactory::the()->createFieldContainer(type->getCName());
        ASSERT_EQ(made == NullFC, type->isAbstract()) << type->getCName();
        if(made == NullFC)
            continue;
        EXPECT_EQ(&made->getType(), type);
        for(UInt32 id = 1; id <= type->getNumFieldDescs(); ++id)
        {
            Field *const field = made->getField(id);
            ASSERT_NE(field, nullptr);
            EXPECT_EQ(field->getType(), type->getFieldDescription(id)->getType()) << type->getCName() << " " << id;
        }
        addRefCP(made);
        subRefCP(made);
    }
}

} // namespace
