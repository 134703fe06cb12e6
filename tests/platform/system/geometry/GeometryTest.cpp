/// \file
/// The geometry core: fields, links to its properties, volume.

#include "GeometryFixture.h"

#include <OpenSG/OSGGeoColors3f.h>
#include <OpenSG/OSGGeoFunctions.h>
#include <OpenSG/OSGGeoNormals3f.h>
#include <OpenSG/OSGGeoPositions2f.h>
#include <OpenSG/OSGGeoTexCoords2f.h>
#include <OpenSG/OSGMaterial.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSimpleMaterial.h>

#include <GL/gl.h>
#include <gtest/gtest.h>

OSG_USING_NAMESPACE
using namespace geometry_test;

namespace
{

class GeometryTest : public ::testing::Test
{
  protected:
    void SetUp() override { osgInit(0, nullptr); }
};

TEST_F(GeometryTest, DerivedClassesStartTheirFieldsAtTheSettledIds)
{
    EXPECT_EQ(int(Drawable::NextFieldId), 3);
    EXPECT_EQ(int(MaterialDrawable::MaterialFieldId), 3);
    EXPECT_EQ(int(MaterialDrawable::NextFieldId), 4);
    EXPECT_EQ(int(Geometry::NextFieldId), 28);
    EXPECT_TRUE(Drawable::getClassType().isAbstract());
    EXPECT_TRUE(MaterialDrawable::getClassType().isAbstract());
}

TEST_F(GeometryTest, StartsWithoutPropertiesAndWithADisplayList)
{
    HeldGeometry geometry;
    EXPECT_TRUE(geometry->getPositions() == NullFC);
    EXPECT_TRUE(geometry->getMaterial() == NullFC);
    EXPECT_TRUE(geometry->getDlistCache());
    EXPECT_FALSE(geometry->getVbo());
    EXPECT_EQ(geometry->getIgnoreGLForAspect(), -1);
    EXPECT_GT(geometry->getGLId(), 0);
    EXPECT_GT(geometry->getVBOGLId(), 0);
    EXPECT_EQ(geometry->getIndexMapping().size(), 0u);
}

TEST_F(GeometryTest, ThePrototypeHasNoGLObjects)
{
    const GeometryPtr prototype = GeometryPtr::dcast(Geometry::getClassType().getPrototype());
    ASSERT_TRUE(prototype != NullFC);
    EXPECT_EQ(prototype->getGLId(), 0);
    EXPECT_EQ(prototype->getVBOGLId(), 0);
}

TEST_F(GeometryTest, ASetterHoldsOneReferenceAndOneParentEntry)
{
    HeldGeometry geometry;
    const GeoPositions3fPtr first = GeoPositions3f::create();
    addRefCP(first);
    EXPECT_EQ(first.getRefCount(), 1);
    geometry->setPositions(first);
    EXPECT_EQ(first.getRefCount(), 2);
    ASSERT_EQ(first->getParents().size(), 1u);
    EXPECT_TRUE(first->getParents()[0] == geometry.ptr);
    EXPECT_EQ(first->getParents()[0].getParentFieldPos(), Geometry::PositionsFieldId);

    geometry->setPositions(first);
    EXPECT_EQ(first.getRefCount(), 2) << "the same pointer again";
    EXPECT_EQ(first->getParents().size(), 1u);

    geometry->setPositions(GeoPositions3f::create());
    EXPECT_EQ(first.getRefCount(), 1);
    EXPECT_EQ(first->getParents().size(), 0u);
    geometry->setPositions(NullFC);
    EXPECT_TRUE(geometry->getPositions() == NullFC);
    subRefCP(first);
}

TEST_F(GeometryTest, TheSamePointerAgainKeepsAPropertyThatOnlyTheGeometryHolds)
{
    HeldGeometry geometry({GL_POINTS}, {1}, {Pnt3f(1, 2, 3)});
    geometry->setPositions(geometry->getPositions());
    EXPECT_EQ(geometry->getPositions().getRefCount(), 1);
    EXPECT_EQ(geometry->getPositions()->getValue(0), Pnt3f(1, 2, 3));
}

TEST_F(GeometryTest, LetsGoOfEverythingAtItsEnd)
{
    const GeoPositions3fPtr positions = GeoPositions3f::create();
    const GeoTexCoords2fPtr texCoords = GeoTexCoords2f::create();
    const SimpleMaterialPtr material = SimpleMaterial::create();
    addRefCP(positions);
    addRefCP(texCoords);
    addRefCP(material);
    {
        HeldGeometry geometry;
        geometry->setPositions(positions);
        geometry->setTexCoords(texCoords);
        geometry->setTexCoords7(texCoords);
        geometry->setMaterial(material);
        EXPECT_EQ(texCoords.getRefCount(), 3);
        EXPECT_EQ(material.getRefCount(), 2);
    }
    EXPECT_EQ(positions.getRefCount(), 1);
    EXPECT_EQ(texCoords.getRefCount(), 1);
    EXPECT_EQ(texCoords->getParents().size(), 0u);
    EXPECT_EQ(material.getRefCount(), 1);
    subRefCP(positions);
    subRefCP(texCoords);
    subRefCP(material);
}

TEST_F(GeometryTest, ACopySharesThePropertiesAndHasGLObjectsOfItsOwn)
{
    HeldGeometry geometry({GL_POINTS}, {1}, {Pnt3f(1, 2, 3)});
    const GeoPositionsPtr positions = geometry->getPositions();
    {
        HeldGeometry copy(GeometryPtr::dcast(geometry->shallowCopy()));
        EXPECT_TRUE(copy->getPositions() == positions);
        EXPECT_EQ(positions.getRefCount(), 2);
        EXPECT_EQ(positions->getParents().size(), 2u);
        EXPECT_GE(positions->findParent(copy.ptr), 0);
        EXPECT_NE(copy->getGLId(), geometry->getGLId());
        EXPECT_GT(copy->getGLId(), 0);
    }
    EXPECT_EQ(positions.getRefCount(), 1);
    EXPECT_EQ(positions->getParents().size(), 1u);
}

TEST_F(GeometryTest, LinksWrittenWithoutASetterAreRepaired)
{
    HeldGeometry geometry;
    const GeoNormals3fPtr normals = GeoNormals3f::create();
    addRefCP(normals);

    geometry->getSFNormals()->setValue(normals);
    geometry->changed(Geometry::NormalsFieldMask, ChangedOrigin::Abstract);
    EXPECT_EQ(normals.getRefCount(), 2);
    EXPECT_EQ(normals->findParent(geometry.ptr), 0);

    // Only where the link is missing: nothing happens to a whole one.
    geometry->changed(Geometry::NormalsFieldMask, ChangedOrigin::Abstract | ChangedOrigin::AbstrCheckValid);
    EXPECT_EQ(normals.getRefCount(), 2);
    EXPECT_EQ(normals->getParents().size(), 1u);

    // Only the reference.
    geometry->changed(Geometry::NormalsFieldMask, ChangedOrigin::Abstract | ChangedOrigin::AbstrIncRefCount);
    EXPECT_EQ(normals.getRefCount(), 3);
    EXPECT_EQ(normals->getParents().size(), 1u);
    subRefCP(normals);

    geometry->setNormals(NullFC);
    geometry->getSFNormals()->setValue(normals);
    geometry->changed(Geometry::NormalsFieldMask, ChangedOrigin::Abstract | ChangedOrigin::AbstrCheckValid);
    EXPECT_EQ(normals.getRefCount(), 2);
    EXPECT_EQ(normals->getParents().size(), 1u);

    const SimpleMaterialPtr material = SimpleMaterial::create();
    addRefCP(material);
    geometry->getSFMaterial()->setValue(material);
    geometry->changed(Geometry::MaterialFieldMask, ChangedOrigin::Abstract);
    EXPECT_EQ(material.getRefCount(), 2);
    geometry->changed(Geometry::MaterialFieldMask, ChangedOrigin::External);
    EXPECT_EQ(material.getRefCount(), 2) << "an edit repairs nothing";
    geometry->setMaterial(NullFC);
    EXPECT_EQ(material.getRefCount(), 1);
    subRefCP(material);
    subRefCP(normals);
}

TEST_F(GeometryTest, AnotherAspectsChangeTakesNoReferences)
{
    HeldGeometry geometry({GL_POINTS}, {1}, {Pnt3f()});
    geometry->changed(FieldBits::AllFields, ChangedOrigin::Sync);
    EXPECT_EQ(geometry->getPositions().getRefCount(), 1);
    EXPECT_EQ(geometry->getPositions()->getParents().size(), 1u);
}

TEST_F(GeometryTest, TheVolumeIsTheBoxOfThePositions)
{
    HeldGeometry geometry({GL_POINTS}, {3}, {Pnt3f(1, 2, 3), Pnt3f(-1, 5, 0), Pnt3f(0, 0, 9)});
    HeldNode node(makeNodeFor(geometry.ptr));
    Pnt3f low, high;
    node->getVolume(true).getBounds(low, high);
    EXPECT_EQ(low, Pnt3f(-1, 0, 0));
    EXPECT_EQ(high, Pnt3f(1, 5, 9));
}

TEST_F(GeometryTest, AnEditOfThePositionsReachesTheVolumesOfAllNodes)
{
    HeldGeometry geometry({GL_POINTS}, {1}, {Pnt3f(1, 1, 1)});
    HeldNode root(Node::create());
    root->addChild(makeNodeFor(geometry.ptr));
    root->addChild(makeNodeFor(geometry.ptr));
    root->updateVolume();
    EXPECT_TRUE(root->getVolume().isValid());
    const GeoPositionsPtr positions = geometry->getPositions();
    positions->setValue(Pnt3f(7, 7, 7), 0);
    endEditCP(positions);
    EXPECT_FALSE(root->getVolume().isValid());
    EXPECT_FALSE(root->getChild(0)->getVolume().isValid());
    EXPECT_FALSE(root->getChild(1)->getVolume().isValid());
    Pnt3f low, high;
    root->getVolume(true).getBounds(low, high);
    EXPECT_EQ(low, Pnt3f(7, 7, 7));
}

TEST_F(GeometryTest, WithoutPositionsTheVolumeIsValidAndEmpty)
{
    HeldNode node(makeNodeFor(Geometry::create()));
    EXPECT_TRUE(node->getVolume(true).isValid());
    EXPECT_TRUE(node->getVolume().isEmpty());
}

TEST_F(GeometryTest, FlatPositionsLieInThePlaneOfZ0)
{
    HeldGeometry geometry;
    geometry->setPositions(make<GeoPositions2f>({Pnt2f(-1, -1), Pnt2f(1, 1)}));
    HeldNode node(makeNodeFor(geometry.ptr));
    Pnt3f low, high;
    node->getVolume(true).getBounds(low, high);
    EXPECT_EQ(low, Pnt3f(-1, -1, 0));
    EXPECT_EQ(high, Pnt3f(1, 1, 0));
}

TEST_F(GeometryTest, TheIndexMappingTellsThePlaceOfEachPropertysIndex)
{
    HeldGeometry geometry;
    EXPECT_FALSE(geometry->isSingleIndex());
    EXPECT_EQ(geometry->calcMappingIndex(Geometry::MapNormal), 0);
    geometry->setIndices(GeoIndicesUI32::create());
    EXPECT_TRUE(geometry->isSingleIndex());
    geometry->getIndexMapping().push_back(Geometry::MapPosition);
    EXPECT_TRUE(geometry->isSingleIndex());
    EXPECT_EQ(geometry->calcMappingIndex(Geometry::MapPosition), 0);
    EXPECT_EQ(geometry->calcMappingIndex(Geometry::MapNormal), -1);
    geometry->getIndexMapping().push_back(Geometry::MapNormal | Geometry::MapTexCoords7);
    EXPECT_FALSE(geometry->isSingleIndex());
    EXPECT_EQ(geometry->calcMappingIndex(Geometry::MapNormal), 1);
    EXPECT_EQ(geometry->calcMappingIndex(Geometry::MapTexCoords7), 1);
    EXPECT_EQ(geometry->calcMappingIndex(Geometry::MapTexCoords), -1);
}

TEST_F(GeometryTest, VertexNormalsOfAnOctahedronPointAwayFromItsMiddle)
{
    HeldGeometry geometry({GL_TRIANGLES}, {24},
                          {Pnt3f(1, 0, 0), Pnt3f(-1, 0, 0), Pnt3f(0, 1, 0), Pnt3f(0, -1, 0), Pnt3f(0, 0, 1),
                           Pnt3f(0, 0, -1), Pnt3f(9, 9, 9)});
    geometry->setIndices(make<GeoIndicesUI32>(
        {0, 2, 4, 2, 1, 4, 1, 3, 4, 3, 0, 4, 2, 0, 5, 1, 2, 5, 3, 1, 5, 0, 3, 5}));
    geometry->getIndexMapping().push_back(Geometry::MapPosition | Geometry::MapColor);
    endEditCP(geometry.ptr);
    calcVertexNormals(geometry.ptr);
    ASSERT_EQ(geometry->getNormals()->getSize(), 7u);
    for(UInt32 i = 0; i < 6; ++i)
    {
        const Vec3f expected = geometry->getPositions()->getValue(i) - Pnt3f();
        EXPECT_LT((geometry->getNormals()->getValue(i) - expected).length(), 1e-6f) << i;
    }
    EXPECT_EQ(geometry->getNormals()->getValue(6), Vec3f(0, 0, 1)) << "in no triangle";
    EXPECT_EQ(geometry->getIndexMapping()[0],
              Geometry::MapPosition | Geometry::MapColor | Geometry::MapNormal);
    calcVertexNormals(NullFC);
}

} // namespace
