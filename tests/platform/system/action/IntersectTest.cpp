#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>

#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGIntersectActor.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGQuaternion.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGTransform.h>

OSG_USING_NAMESPACE

namespace
{

struct IntersectTest : public testing::Test
{
    NodePtr root;
    TransformPtr place;
    NodePtr box;

    void SetUp() override
    {
        osgInit(0, nullptr);
        root = makeCoredNode<Group>();
        addRefCP(root);
        const NodePtr node = makeCoredNode<Transform>(&place);
        box = makeBox(2, 2, 2, 1, 1, 1);
        node->addChild(box);
        root->addChild(node);
    }
    void TearDown() override { subRefCP(root); }

    void setMatrix(const Matrix &matrix)
    {
        place->setMatrix(matrix);
        endEditCP(place, Transform::MatrixFieldMask);
    }
};

TEST_F(IntersectTest, TheNearestHitIsFoundInTheWorldsCoordinates)
{
    Matrix matrix;
    matrix.setTransform(Vec3f(3, 0, 0), Quaternion(), Vec3f(2, 2, 2));
    setMatrix(matrix);
    IntersectAction action(Line(Pnt3f(3, 0, 10), Vec3f(0, 0, -5)));
    action.apply(root);
    ASSERT_TRUE(action.didHit());
    EXPECT_NEAR(action.getHitT(), 8, 1e-4);
    EXPECT_TRUE(action.getHitObject() == box);
    EXPECT_TRUE(action.getHitPoint().equals(Pnt3f(3, 0, 2), 1e-4f));
    EXPECT_TRUE(action.getHitNormal().equals(Vec3f(0, 0, 1), 1e-4f));
    EXPECT_GE(action.getHitTriangle(), 0);
}

TEST_F(IntersectTest, AMissIsAMissAndALineHasNoBack)
{
    IntersectAction action(Line(Pnt3f(5, 5, 10), Vec3f(0, 0, -1)));
    action.apply(root);
    EXPECT_FALSE(action.didHit());
    action.setLine(Line(Pnt3f(0, 0, 10), Vec3f(0, 0, 1)));
    action.apply(root);
    EXPECT_FALSE(action.didHit());
    EXPECT_TRUE(action.getHitObject() == NullFC);
}

TEST_F(IntersectTest, NothingBeyondTheReachIsHit)
{
    IntersectAction action(Line(Pnt3f(0, 0, 10), Vec3f(0, 0, -1)), 8.5f);
    action.apply(root);
    EXPECT_FALSE(action.didHit());
    action.setLine(Line(Pnt3f(0, 0, 10), Vec3f(0, 0, -1)), 9.5f);
    action.apply(root);
    EXPECT_TRUE(action.didHit());
}

TEST_F(IntersectTest, AMatrixWithoutInverseHidesWhatIsBelow)
{
    Matrix flat;
    flat.setScale(1, 1, 0);
    setMatrix(flat);
    IntersectAction action(Line(Pnt3f(0, 0, 10), Vec3f(0, 0, -1)));
    action.apply(root);
    EXPECT_FALSE(action.didHit());
    // The lines of all levels are taken back all the same.
    setMatrix(Matrix());
    action.apply(root);
    EXPECT_TRUE(action.didHit());
}

// Both roads into the scene, and a sphere's closed form, must agree.
TEST_F(IntersectTest, ActionActorAndClosedFormAgreeOnRandomLines)
{
    root->addChild(makeSphere(5, 3));
    Matrix away;
    away.setTranslate(1000, 0, 0);
    setMatrix(away);
    const unsigned seed = 20;
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> unit(-1, 1);
    const std::unique_ptr<DepthFirstAction> walk(DepthFirstAction::create());
    const std::unique_ptr<IntersectActor> actor(IntersectActor::create());
    walk->addActor(actor.get());
    int hits = 0;
    for(int i = 0; i < 200; ++i)
    {
        const Pnt3f from(10 * unit(random), 10 * unit(random), 12);
        Vec3f direction = Pnt3f(2 * unit(random), 2 * unit(random), 0) - from;
        direction.normalize();
        IntersectAction action(Line(from, direction));
        action.apply(root);
        actor->setRay(Line(from, direction));
        walk->apply(root);
        ASSERT_EQ(action.didHit(), actor->getHit()) << "seed " << seed << " line " << i;
        const Vec3f toCentre = Pnt3f(0, 0, 0) - from;
        const float along = toCentre.dot(direction);
        const float miss = (toCentre - direction * along).length();
        if(miss > 3.0f)
        {
            EXPECT_FALSE(action.didHit());
        }
        if(miss < 2.9f)
        {
            ASSERT_TRUE(action.didHit()) << "seed " << seed << " line " << i;
            ++hits;
            EXPECT_NEAR(action.getHitT(), along - std::sqrt(9 - miss * miss), 0.05);
            EXPECT_NEAR(actor->getHitDistance(), action.getHitT(), 1e-3);
        }
    }
    EXPECT_GT(hits, 50);
}

} // namespace
