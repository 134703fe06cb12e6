/// \file
/// Geometry properties: what GL is told of their memory, and values in and out.

#include "GeometryFixture.h"

#include <OpenSG/OSGGeoColors3f.h>
#include <OpenSG/OSGGeoColors3ub.h>
#include <OpenSG/OSGGeoColors4f.h>
#include <OpenSG/OSGGeoColors4ub.h>
#include <OpenSG/OSGGeoIndicesUI16.h>
#include <OpenSG/OSGGeoIndicesUI8.h>
#include <OpenSG/OSGGeoNormals3f.h>
#include <OpenSG/OSGGeoPLengthsUI16.h>
#include <OpenSG/OSGGeoPLengthsUI8.h>
#include <OpenSG/OSGGeoPositions2f.h>
#include <OpenSG/OSGGeoPositions4f.h>
#include <OpenSG/OSGGeoTexCoords1f.h>
#include <OpenSG/OSGGeoTexCoords2f.h>
#include <OpenSG/OSGGeoTexCoords3f.h>
#include <OpenSG/OSGGeoTexCoords4f.h>
#include <OpenSG/OSGMemoryDataHandler.h>

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cstring>

OSG_USING_NAMESPACE
using namespace geometry_test;

namespace
{

class GeoPropertyTest : public ::testing::Test
{
  protected:
    void SetUp() override { osgInit(0, nullptr); }
};

struct Layout
{
    const char *name;
    const char *kind;
    UInt32 format;
    UInt32 componentBytes;
    UInt32 dimension;
};

// OpenGL 1.1, table 2.4, for the formats.
const Layout layouts[] = {
    {"GeoPositions2f", "GeoPositions", GL_FLOAT, 4, 2},
    {"GeoPositions3f", "GeoPositions", GL_FLOAT, 4, 3},
    {"GeoPositions4f", "GeoPositions", GL_FLOAT, 4, 4},
    {"GeoNormals3f", "GeoNormals", GL_FLOAT, 4, 3},
    {"GeoColors3f", "GeoColors", GL_FLOAT, 4, 3},
    {"GeoColors4f", "GeoColors", GL_FLOAT, 4, 4},
    {"GeoColors3ub", "GeoColors", GL_UNSIGNED_BYTE, 1, 3},
    {"GeoColors4ub", "GeoColors", GL_UNSIGNED_BYTE, 1, 4},
    {"GeoTexCoords1f", "GeoTexCoords", GL_FLOAT, 4, 1},
    {"GeoTexCoords2f", "GeoTexCoords", GL_FLOAT, 4, 2},
    {"GeoTexCoords3f", "GeoTexCoords", GL_FLOAT, 4, 3},
    {"GeoTexCoords4f", "GeoTexCoords", GL_FLOAT, 4, 4},
    {"GeoPTypesUI8", "GeoPTypes", GL_UNSIGNED_BYTE, 1, 1},
    {"GeoPLengthsUI8", "GeoPLengths", GL_UNSIGNED_BYTE, 1, 1},
    {"GeoPLengthsUI16", "GeoPLengths", GL_UNSIGNED_SHORT, 2, 1},
    {"GeoPLengthsUI32", "GeoPLengths", GL_UNSIGNED_INT, 4, 1},
    {"GeoIndicesUI8", "GeoIndices", GL_UNSIGNED_BYTE, 1, 1},
    {"GeoIndicesUI16", "GeoIndices", GL_UNSIGNED_SHORT, 2, 1},
    {"GeoIndicesUI32", "GeoIndices", GL_UNSIGNED_INT, 4, 1},
};

TEST_F(GeoPropertyTest, EveryPropertyTellsTheLayoutOfItsMemory)
{
    for(const Layout &layout : layouts)
    {
        SCOPED_TRACE(layout.name);
        FieldContainerType *const type = FieldContainerFactory::the()->findType(layout.name);
        ASSERT_NE(type, nullptr);
        const GeoPropertyPtr property = GeoPropertyPtr::dcast(type->createFieldContainer());
        ASSERT_TRUE(property != NullFC);
        addRefCP(property);
        EXPECT_STREQ(type->getParent()->getCName(), layout.kind);
        EXPECT_EQ(property->getGroupId(), type->getParent()->getGroupId());
        EXPECT_EQ(property->getFormat(), layout.format);
        EXPECT_EQ(property->getFormatSize(), layout.componentBytes);
        EXPECT_EQ(property->getDimension(), layout.dimension);
        EXPECT_EQ(property->getStride(), 0u);
        EXPECT_EQ(property->getSize(), 0u);
        property->resize(3);
        EXPECT_EQ(property->getSize(), 3u);
        EXPECT_EQ(property->size(), 3u);
        // The memory is as long as the layout says, and new values are zero.
        std::vector<UInt8> bytes(3 * layout.componentBytes * layout.dimension, 0);
        // Colours and homogeneous points start with a last component of their own.
        if(std::string(layout.kind) != "GeoColors" && std::string(layout.name) != "GeoPositions4f")
        {
            EXPECT_EQ(std::memcmp(property->getData(), bytes.data(), bytes.size()), 0);
        }
        std::memset(property->getData(), 0, bytes.size());
        property->clear();
        EXPECT_EQ(property->getSize(), 0u);
        subRefCP(property);
    }
}

TEST_F(GeoPropertyTest, TheDataFieldFollowsThoseOfAttachments)
{
    EXPECT_EQ(int(GeoPositions3f::GeoPropDataFieldId), int(Attachment::NextFieldId));
    EXPECT_STREQ(GeoPositions3f::getClassType().findFieldDescription("GeoPropData")->getTypeName(),
                 "MFPnt3f");
}

TEST_F(GeoPropertyTest, ValuesOfOtherDimensionsAreReadAndWrittenAsThePositionsOfTheirKind)
{
    const GeoPositions2fPtr flat = GeoPositions2f::create();
    flat->push_back(Pnt3f(1, 2, 3));
    EXPECT_EQ(flat->getField()[0], Pnt2f(1, 2));
    EXPECT_EQ(flat->getValue(0), Pnt3f(1, 2, 0));

    const GeoPositions4fPtr homogeneous = make<GeoPositions4f>({Pnt4f(2, 4, 6, 2)});
    EXPECT_EQ(homogeneous->getValue(0), Pnt3f(2, 4, 6)) << "control points are not divided by their weight";
    homogeneous->setValue(Pnt3f(1, 2, 3), 0);
    EXPECT_EQ(homogeneous->getField()[0], Pnt4f(1, 2, 3, 1));

    const GeoTexCoords1fPtr line = GeoTexCoords1f::create();
    line->addValue(Vec2f(0.25f, 9));
    EXPECT_EQ(line->getValue(0), Vec2f(0.25f, 0));
    const GeoTexCoords4fPtr four = GeoTexCoords4f::create();
    four->addValue(Vec2f(0.25f, 0.5f));
    EXPECT_EQ(four->getField()[0], Vec4f(0.25f, 0.5f, 0, 1));
}

TEST_F(GeoPropertyTest, ColoursAreScaledAndRoundedAndHeldInTheRangeOfBytes)
{
    const GeoColors3ubPtr bytes = GeoColors3ub::create();
    bytes->push_back(Color3f(0, 0.5f, 1));
    bytes->push_back(Color3f(-1, 2, std::numeric_limits<Real32>::quiet_NaN()));
    EXPECT_EQ(bytes->getField()[0], Color3ub(0, 128, 255));
    EXPECT_EQ(bytes->getField()[1], Color3ub(0, 255, 0));
    const GeoColors4ubPtr four = make<GeoColors4ub>({Color4ub(51, 102, 204, 7)});
    Color3f color;
    four->getValue(color, 0);
    EXPECT_FLOAT_EQ(color[0], 0.2f);
    EXPECT_FLOAT_EQ(color[1], 0.4f);
    EXPECT_FLOAT_EQ(color[2], 0.8f);
    four->setValue(Color3f(1, 0, 0), 0);
    EXPECT_EQ(four->getField()[0], Color4ub(255, 0, 0, 255));
    // Every byte comes back.
    for(int value = 0; value < 256; ++value)
        EXPECT_EQ(int(colorByte(Real32(value) / 255.f)), value);
}

TEST_F(GeoPropertyTest, NarrowIntegersKeepTheLowBits)
{
    const GeoPTypesUI8Ptr types = GeoPTypesUI8::create();
    types->push_back(0x104);
    EXPECT_EQ(types->getValue(0), 4u);
    const GeoIndicesUI16Ptr indices = GeoIndicesUI16::create();
    indices->push_back(0x12345);
    EXPECT_EQ(indices->getValue(0), 0x2345u);
    indices->insertValue(7, 0);
    EXPECT_EQ(indices->getValue(0), 7u);
    EXPECT_EQ(indices->size(), 2u);
}

TEST_F(GeoPropertyTest, RawDataIsTheValuesInTheirOrder)
{
    const GeoPositions3fPtr positions = make<GeoPositions3f>({Pnt3f(1, 2, 3), Pnt3f(4, 5, 6)});
    const float expected[] = {1, 2, 3, 4, 5, 6};
    EXPECT_EQ(std::memcmp(positions->getData(), expected, sizeof expected), 0);
    const GeoColors4ubPtr colors = make<GeoColors4ub>({Color4ub(1, 2, 3, 4), Color4ub(5, 6, 7, 8)});
    const UInt8 bytes[] = {1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(std::memcmp(colors->getData(), bytes, sizeof bytes), 0);
}

TEST_F(GeoPropertyTest, GoesThroughTextAndBinary)
{
    const GeoPositions3fPtr positions = make<GeoPositions3f>({Pnt3f(1, 2, 3), Pnt3f(-4.5f, 5, 6)});
    std::string text;
    positions->getFieldPtr()->getValueByStr(text);
    EXPECT_EQ(text, "1 2 3, -4.5 5 6");
    MemoryDataHandler memory;
    positions->copyToBin(memory, GeoPositions3f::GeoPropDataFieldMask);
    EXPECT_EQ(memory.getData().size(), 4u + 24u);
    EXPECT_EQ(positions->getBinSize(GeoPositions3f::GeoPropDataFieldMask), 28u);
    const GeoPositions3fPtr copy = GeoPositions3f::create();
    copy->copyFromBin(memory, GeoPositions3f::GeoPropDataFieldMask);
    EXPECT_TRUE(copy->getField() == positions->getField());
}

TEST_F(GeoPropertyTest, ACloneHasTheValuesAndNoParents)
{
    HeldGeometry geometry({GL_POINTS}, {1}, {Pnt3f(1, 2, 3)});
    const GeoPositionsPtr positions = geometry->getPositions();
    ASSERT_EQ(positions->getParents().size(), 1u);
    const GeoPositionsPtr clone = positions->clone();
    ASSERT_TRUE(GeoPositions3fPtr::dcast(clone) != NullFC);
    EXPECT_EQ(clone->getParents().size(), 0u);
    EXPECT_EQ(clone->getValue(0), Pnt3f(1, 2, 3));
    clone->setValue(Pnt3f(), 0);
    EXPECT_EQ(positions->getValue(0), Pnt3f(1, 2, 3));
}

} // namespace
