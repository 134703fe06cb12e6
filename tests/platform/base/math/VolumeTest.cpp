/// \file
/// Bounding volumes: states, extension, intersection, transformation.

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

#include <OpenSG/OSGDynamicVolume.h>
#include <OpenSG/OSGFrustumVolume.h>
#include <OpenSG/OSGLine.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGVolumeFunctions.h>

#include "MathRandom.h"

using namespace osg;

namespace
{

BoxVolume randomBox(MathRandom &random) { return BoxVolume(random.pnt(3), random.pnt(3)); }

SphereVolume randomSphere(MathRandom &random) { return SphereVolume(random.pnt(3), random.real(0, 2)); }

/// A camera's frustum somewhere, with the matrix that makes it.
FrustumVolume randomFrustum(MathRandom &random, Matrix &clip)
{
    Matrix camera;
    camera.setTransform(random.vec(2), random.rotation());
    camera.invert();
    MatrixPerspective(clip, random.real(0.2f, 0.7f), random.real(0.5f, 2), random.real(0.1f, 1),
                      random.real(3, 6));
    clip.mult(camera);
    return FrustumVolume(clip);
}

/// A random point that lies in the volume's bounds.
Pnt3f pointInBounds(MathRandom &random, const Volume &volume)
{
    Pnt3f min, max;
    volume.getBounds(min, max);
    Pnt3f p;
    for (UInt32 i = 0; i < 3; ++i)
        p[i] = min[i] + (max[i] - min[i]) * random.real(0, 1);
    return p;
}

} // namespace

TEST(Volume, StartsValidAndEmptyAndMeetsNothing)
{
    BoxVolume box;
    SphereVolume sphere;
    FrustumVolume frustum;
    DynamicVolume dynamic;
    for (Volume *volume : {static_cast<Volume *>(&box), static_cast<Volume *>(&sphere),
                           static_cast<Volume *>(&frustum), static_cast<Volume *>(&dynamic)})
    {
        EXPECT_TRUE(volume->isValid());
        EXPECT_TRUE(volume->isEmpty());
        EXPECT_FALSE(volume->isStatic() || volume->isInfinite() || volume->isUntouched());
        EXPECT_EQ(volume->getScalarVolume(), 0);
        EXPECT_FALSE(volume->intersect(Pnt3f()));
        EXPECT_FALSE(volume->intersect(Line(Pnt3f(), Vec3f(1, 0, 0))));
        EXPECT_FALSE(volume->intersect(BoxVolume(-1, -1, -1, 1, 1, 1)));
        EXPECT_FALSE(BoxVolume(-1, -1, -1, 1, 1, 1).intersect(*volume));
    }
}

TEST(Volume, ThatIsEmptyBecomesThePointThatExtendsIt)
{
    BoxVolume box;
    SphereVolume sphere;
    FrustumVolume frustum;
    DynamicVolume dynamic;
    for (Volume *volume : {static_cast<Volume *>(&box), static_cast<Volume *>(&sphere),
                           static_cast<Volume *>(&frustum), static_cast<Volume *>(&dynamic)})
    {
        volume->extendBy(Pnt3f(1, 2, 3));
        Pnt3f min, max;
        volume->getBounds(min, max);
        EXPECT_EQ(min, Pnt3f(1, 2, 3));
        EXPECT_EQ(max, Pnt3f(1, 2, 3));
        EXPECT_EQ(volume->getCenter(), Pnt3f(1, 2, 3));
        EXPECT_TRUE(volume->isUntouched());
        EXPECT_TRUE(volume->intersect(Pnt3f(1, 2, 3)));
        EXPECT_FALSE(volume->intersect(Pnt3f(1, 2, 3.5f)));
    }
}

TEST(Volume, ThatIsInvalidStaysAsItIsUnlessItIsEmpty)
{
    BoxVolume box(0, 0, 0, 1, 1, 1);
    box.setValid(false);
    box.extendBy(Pnt3f(5, 5, 5));
    box.extendBy(SphereVolume(Pnt3f(5, 5, 5), 1));
    EXPECT_EQ(box, BoxVolume(0, 0, 0, 1, 1, 1));
    EXPECT_FALSE(box.isValid());
    EXPECT_FALSE(box.intersect(Pnt3f(0.5f, 0.5f, 0.5f)));

    SphereVolume sphere(Pnt3f(0, 0, 0), 1);
    sphere.setValid(false);
    sphere.extendBy(Pnt3f(5, 5, 5));
    sphere.extendBy(BoxVolume(5, 5, 5, 6, 6, 6));
    sphere.extendBy(SphereVolume(Pnt3f(5, 5, 5), 1));
    SphereVolume everything(Pnt3f(0, 0, 0), 1);
    everything.setInfinite();
    sphere.extendBy(everything);
    EXPECT_EQ(sphere, SphereVolume(Pnt3f(0, 0, 0), 1));
    EXPECT_FALSE(sphere.isValid() || sphere.isInfinite());

    box.setEmpty();
    box.extendBy(Pnt3f(5, 5, 5));
    box.extendBy(Pnt3f(6, 5, 5));
    EXPECT_EQ(box, BoxVolume(5, 5, 5, 6, 5, 5));
    EXPECT_TRUE(box.isValid());
}

TEST(Volume, GainsNothingFromEmptyOrInvalidOnes)
{
    BoxVolume box(0, 0, 0, 1, 1, 1);
    box.extendBy(SphereVolume());
    BoxVolume invalid(5, 5, 5, 6, 6, 6);
    invalid.setValid(false);
    box.extendBy(invalid);
    EXPECT_EQ(box, BoxVolume(0, 0, 0, 1, 1, 1));
}

TEST(Volume, BecomesInfiniteByAnInfiniteOneAndStaysSo)
{
    SphereVolume everything;
    everything.setInfinite();
    DynamicVolume volume;
    volume.extendBy(everything);
    EXPECT_TRUE(volume.isInfinite());
    EXPECT_FALSE(volume.isEmpty());
    EXPECT_EQ(volume.getScalarVolume(), std::numeric_limits<Real32>::max());
    volume.extendBy(Pnt3f(1, 2, 3));
    EXPECT_TRUE(volume.isInfinite());
    EXPECT_TRUE(volume.intersect(Pnt3f(1e30f, 0, 0)));
    EXPECT_TRUE(volume.intersect(BoxVolume(1, 1, 1, 2, 2, 2)));
    EXPECT_FALSE(volume.intersect(BoxVolume()));
    EXPECT_TRUE(volume.intersect(Line(Pnt3f(1, 1, 1), Vec3f(0, 1, 0))));
    volume.transform(Matrix());
    EXPECT_TRUE(volume.isInfinite());
}

TEST(Volume, StatesDoNotDisturbEachOther)
{
    DynamicVolume volume;
    volume.setStatic();
    volume.setEmpty(false);
    volume.setValid(false);
    EXPECT_TRUE(volume.isStatic());
    EXPECT_FALSE(volume.isEmpty() || volume.isValid() || volume.isInfinite());
    volume.setStatic(false);
    EXPECT_EQ(volume.getState(), 0);
    volume.getInstance().setEmpty();
    EXPECT_TRUE(volume.isEmpty());
}

TEST(BoxVolume, SortsItsCornersAndMeasuresItself)
{
    const BoxVolume box(Pnt3f(1, 5, 3), Pnt3f(2, 2, 7));
    EXPECT_EQ(box.getMin(), Pnt3f(1, 2, 3));
    EXPECT_EQ(box.getMax(), Pnt3f(2, 5, 7));
    EXPECT_EQ(box.getSize(), Vec3f(1, 3, 4));
    EXPECT_EQ(box.getScalarVolume(), 12);
    EXPECT_EQ(box.getCenter(), Pnt3f(1.5f, 3.5f, 5));
    EXPECT_TRUE(box.isOnSurface(Pnt3f(1, 3, 4)));
    EXPECT_FALSE(box.isOnSurface(Pnt3f(1.5f, 3, 4)));
    EXPECT_FALSE(box.isOnSurface(Pnt3f(1, 6, 4)));
    BoxVolume other;
    other.setBoundsByCenterAndSize(Pnt3f(1, 1, 1), Vec3f(2, 4, 6));
    EXPECT_EQ(other, BoxVolume(0, -1, -2, 2, 3, 4));
    std::ostringstream os;
    os << other;
    EXPECT_EQ(os.str(), "0 -1 -2 2 3 4");
}

TEST(SphereVolume, MeasuresItself)
{
    const SphereVolume sphere(Pnt3f(1, 2, 3), 2);
    EXPECT_NEAR(sphere.getScalarVolume(), 33.5103, 1e-3);
    Pnt3f min, max;
    sphere.getBounds(min, max);
    EXPECT_EQ(min, Pnt3f(-1, 0, 1));
    EXPECT_EQ(max, Pnt3f(3, 4, 5));
    EXPECT_TRUE(sphere.isOnSurface(Pnt3f(1, 4, 3)));
    EXPECT_FALSE(sphere.isOnSurface(Pnt3f(1, 3, 3)));
    EXPECT_TRUE(sphere.intersect(Pnt3f(3, 2, 3)));
    EXPECT_FALSE(sphere.intersect(Pnt3f(3.001f, 2, 3)));
}

TEST(SphereVolume, ExtendedByASphereIsTheSmallestAroundBoth)
{
    SphereVolume sphere(Pnt3f(0, 0, 0), 1);
    sphere.extendBy(SphereVolume(Pnt3f(4, 0, 0), 1));
    EXPECT_EQ(sphere, SphereVolume(Pnt3f(2, 0, 0), 3));
    sphere.extendBy(SphereVolume(Pnt3f(3, 0, 0), 1));
    EXPECT_EQ(sphere, SphereVolume(Pnt3f(2, 0, 0), 3));
    sphere.extendBy(SphereVolume(Pnt3f(3, 0, 0), 9));
    EXPECT_EQ(sphere, SphereVolume(Pnt3f(3, 0, 0), 9));
    SphereVolume aroundBox;
    aroundBox.extendBy(BoxVolume(-2, -3, -6, 2, 3, 6));
    EXPECT_EQ(aroundBox, SphereVolume(Pnt3f(0, 0, 0), 7));
}

TEST(Volume, HoldsEverythingThatExtendedIt)
{
    const unsigned seed = 61;
    TRACE_SEED(seed);
    MathRandom random(seed);
    for (int i = 0; i < 2000; ++i)
    {
        BoxVolume box;
        SphereVolume sphere;
        FrustumVolume frustum;
        DynamicVolume dynamic(i % 2 ? DynamicVolume::BOX_VOLUME : DynamicVolume::SPHERE_VOLUME);
        for (Volume *volume : {static_cast<Volume *>(&box), static_cast<Volume *>(&sphere),
                               static_cast<Volume *>(&frustum), static_cast<Volume *>(&dynamic)})
        {
            const Pnt3f point = random.pnt(3);
            const BoxVolume otherBox = randomBox(random);
            const SphereVolume otherSphere = randomSphere(random);
            DynamicVolume held(DynamicVolume::SPHERE_VOLUME);
            held.extendBy(randomSphere(random));
            volume->extendBy(otherBox);
            volume->extendBy(otherSphere);
            volume->extendBy(held);
            volume->extendBy(point);
            EXPECT_TRUE(volume->intersect(point));
            for (UInt32 k = 0; k < 8; ++k)
                EXPECT_TRUE(volume->intersect(Pnt3f((k & 1 ? otherBox.getMin() : otherBox.getMax()).x(),
                                                    (k & 2 ? otherBox.getMin() : otherBox.getMax()).y(),
                                                    (k & 4 ? otherBox.getMin() : otherBox.getMax()).z())));
            for (int k = 0; k < 20; ++k)
            {
                const Vec3f inside = random.direction() * 0.99999f;
                EXPECT_TRUE(volume->intersect(otherSphere.getCenter() + inside * otherSphere.getRadius()));
                EXPECT_TRUE(volume->intersect(
                    held.getCenter() + inside * static_cast<SphereVolume &>(held.getInstance()).getRadius()));
            }
        }
    }
}

TEST(BoxVolume, ExtendedByBoxesIsTheSmallestAroundThem)
{
    BoxVolume box(0, 0, 0, 1, 1, 1);
    box.extendBy(BoxVolume(2, -1, 0, 3, 0, 0.5f));
    EXPECT_EQ(box, BoxVolume(0, -1, 0, 3, 1, 1));
    box.extendBy(SphereVolume(Pnt3f(0, 0, 0), 2));
    EXPECT_EQ(box, BoxVolume(-2, -2, -2, 3, 2, 2));
}

TEST(Volume, MeetsAnotherWhereACommonPointIsFound)
{
    const unsigned seed = 62;
    TRACE_SEED(seed);
    MathRandom random(seed);
    int found = 0, apart = 0;
    for (int i = 0; i < 400; ++i)
    {
        Matrix clip;
        const BoxVolume box = randomBox(random);
        const SphereVolume sphere = randomSphere(random);
        const FrustumVolume frustum = randomFrustum(random, clip);
        const BoxVolume otherBox = randomBox(random);
        const SphereVolume otherSphere = randomSphere(random);
        const FrustumVolume otherFrustum = randomFrustum(random, clip);
        const Volume *volumes[] = {&box, &sphere, &frustum, &otherBox, &otherSphere, &otherFrustum};
        for (const Volume *a : volumes)
            for (const Volume *b : volumes)
            {
                EXPECT_EQ(a->intersect(*b), b->intersect(*a));
                bool common = false;
                for (int k = 0; k < 40 && !common; ++k)
                {
                    const Pnt3f p = pointInBounds(random, *a);
                    common = a->intersect(p) && b->intersect(p);
                }
                if (common)
                {
                    EXPECT_TRUE(a->intersect(*b));
                    ++found;
                }
                else if (!a->intersect(*b))
                    ++apart;
            }
    }
    EXPECT_GT(found, 1000);
    EXPECT_GT(apart, 1000);
}

TEST(Volume, BoxesAndSpheresMeetExactlyWithinTheirDistance)
{
    const BoxVolume box(0, 0, 0, 1, 1, 1);
    EXPECT_TRUE(box.intersect(BoxVolume(1, 1, 1, 2, 2, 2)));
    EXPECT_FALSE(box.intersect(BoxVolume(1.001f, 0, 0, 2, 1, 1)));
    // from the corner the distance to (4, 5, 1) is 5
    EXPECT_TRUE(box.intersect(SphereVolume(Pnt3f(4, 5, 1), 5)));
    EXPECT_FALSE(box.intersect(SphereVolume(Pnt3f(4, 5, 1), 4.999f)));
    EXPECT_TRUE(SphereVolume(Pnt3f(0, 0, 0), 2).intersect(SphereVolume(Pnt3f(3, 4, 0), 3)));
    EXPECT_FALSE(SphereVolume(Pnt3f(0, 0, 0), 2).intersect(SphereVolume(Pnt3f(3, 4, 0), 2.999f)));
    DynamicVolume held;
    held.extendBy(box);
    EXPECT_TRUE(held.intersect(static_cast<const Volume &>(SphereVolume(Pnt3f(4, 5, 1), 5))));
}

TEST(FrustumVolume, HoldsThePointsThatItsMatrixPutsIntoTheCube)
{
    const unsigned seed = 63;
    TRACE_SEED(seed);
    MathRandom random(seed);
    int inside = 0;
    for (int i = 0; i < 100; ++i)
    {
        Matrix clip;
        const FrustumVolume frustum = randomFrustum(random, clip);
        for (int k = 0; k < 200; ++k)
        {
            const Pnt3f p = random.pnt(5);
            const Vec4f c = clip * Vec4f(p.x(), p.y(), p.z(), 1);
            float margin = 1e9f;
            for (UInt32 axis = 0; axis < 3; ++axis)
                margin = std::fmin(margin, c.w() - std::abs(c[axis]));
            if (std::abs(margin) < 1e-4f)
                continue;
            EXPECT_EQ(frustum.intersect(p), margin > 0);
            inside += margin > 0;
        }
    }
    EXPECT_GT(inside, 200);
}

TEST(FrustumVolume, GivesTheCornersThatItWasMadeOf)
{
    const Pnt3f corners[8] = {Pnt3f(-1, 1, -1), Pnt3f(-1, -1, -1), Pnt3f(1, 1, -1), Pnt3f(1, -1, -1),
                              Pnt3f(-3, 3, -3), Pnt3f(-3, -3, -3), Pnt3f(3, 3, -3), Pnt3f(3, -3, -3)};
    FrustumVolume frustum;
    frustum.setPlanes(corners[0], corners[1], corners[2], corners[3], corners[4], corners[5], corners[6],
                      corners[7]);
    Pnt3f found[8];
    ASSERT_TRUE(frustum.getCorners(found));
    for (int i = 0; i < 8; ++i)
        EXPECT_TRUE(found[i].equals(corners[i], 1e-5f)) << i;
    EXPECT_TRUE(frustum.getCenter().equals(Pnt3f(0, 0, -2), 1e-5f));
    // a frustum of a pyramid: height * (a + b + sqrt(a b)) / 3 of the areas 4 and 36
    EXPECT_NEAR(frustum.getScalarVolume(), 2.0 * (4 + 36 + 12) / 3, 1e-3);
    EXPECT_EQ(frustum.getNear().getNormal(), Vec3f(0, 0, -1));
    EXPECT_TRUE(frustum.isOnSurface(Pnt3f(0, 0, -1)));
    EXPECT_FALSE(frustum.isOnSurface(Pnt3f(0, 0, -2)));

    Matrix clip;
    MatrixPerspective(clip, Pi / 4, 1, 1, 3);
    FrustumVolume fromMatrix(clip);
    for (UInt32 i = 0; i < 6; ++i)
        EXPECT_TRUE(
            fromMatrix.getPlanes()[i].getClipPlane().equals(frustum.getPlanes()[i].getClipPlane(), 1e-5f))
            << i;
}

TEST(Volume, TransformedHoldsTheTransformedPoints)
{
    const unsigned seed = 64;
    TRACE_SEED(seed);
    MathRandom random(seed);
    for (int i = 0; i < 300; ++i)
    {
        const Matrix m = random.affine();
        Matrix clip;
        BoxVolume box = randomBox(random);
        SphereVolume sphere = randomSphere(random);
        FrustumVolume frustum = randomFrustum(random, clip);
        DynamicVolume dynamic;
        dynamic.extendBy(randomBox(random));
        for (Volume *volume : {static_cast<Volume *>(&box), static_cast<Volume *>(&sphere),
                               static_cast<Volume *>(&frustum), static_cast<Volume *>(&dynamic)})
        {
            const Pnt3f center = volume->getCenter();
            std::vector<Pnt3f> inside;
            for (int k = 0; k < 20; ++k)
            {
                const Pnt3f p = pointInBounds(random, *volume);
                if (volume->intersect(p))
                    inside.push_back(center + (p - center) * 0.9999f);
            }
            volume->transform(m);
            for (const Pnt3f &p : inside)
                EXPECT_TRUE(volume->intersect(m * p)) << p;
        }
    }
}

TEST(Volume, TransformedIsTheSmallestOfItsKind)
{
    Matrix m;
    m.setTransform(Vec3f(1, 2, 3), Quaternion(Vec3f(0, 0, 1), Pi / 2), Vec3f(2, 2, 2));
    BoxVolume box(0, 0, 0, 1, 2, 3);
    box.transform(m);
    EXPECT_TRUE(box.getMin().equals(Pnt3f(-3, 2, 3), 1e-5f)) << box;
    EXPECT_TRUE(box.getMax().equals(Pnt3f(1, 4, 9), 1e-5f)) << box;
    SphereVolume sphere(Pnt3f(1, 0, 0), 1.5f);
    sphere.transform(m);
    EXPECT_TRUE(sphere.getCenter().equals(Pnt3f(1, 4, 3), 1e-5f));
    EXPECT_NEAR(sphere.getRadius(), 3, 1e-5);
    m.setTransform(Vec3f(), Quaternion(), Vec3f(1, 5, 2));
    SphereVolume stretched(Pnt3f(), 1);
    stretched.transform(m);
    EXPECT_EQ(stretched.getRadius(), 5);
}

TEST(DynamicVolume, ChangesItsKindAndKeepsWhatItBounds)
{
    DynamicVolume volume;
    volume.extendBy(BoxVolume(-2, -3, -6, 2, 3, 6));
    volume.setStatic();
    DynamicVolume copy(volume);
    volume.morphToType(DynamicVolume::SPHERE_VOLUME);
    EXPECT_EQ(volume.getType(), DynamicVolume::SPHERE_VOLUME);
    EXPECT_EQ(static_cast<SphereVolume &>(volume.getInstance()), SphereVolume(Pnt3f(), 7));
    EXPECT_TRUE(volume.isStatic());
    EXPECT_NE(volume, copy);
    volume.morphToType(DynamicVolume::BOX_VOLUME);
    EXPECT_EQ(static_cast<BoxVolume &>(volume.getInstance()), BoxVolume(-7, -7, -7, 7, 7, 7));
    EXPECT_EQ(static_cast<BoxVolume &>(copy.getInstance()), BoxVolume(-2, -3, -6, 2, 3, 6));
    copy = volume;
    EXPECT_EQ(copy, volume);
    copy.setVolumeType(DynamicVolume::SPHERE_VOLUME);
    EXPECT_TRUE(copy.isEmpty());
    volume.setEmpty();
    volume.morphToType(DynamicVolume::SPHERE_VOLUME);
    EXPECT_TRUE(volume.isEmpty());
}

TEST(Volume, DumpsItselfInOneLine)
{
    testing::internal::CaptureStderr();
    BoxVolume(0, 0, 0, 1, 2, 3).dump(2);
    SphereVolume(Pnt3f(1, 2, 3), 4).dump();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "  Box: min (0, 0, 0), max (1, 2, 3), state 1\n"
                                                      "Sphere: center (1, 2, 3), radius 4, state 1\n");
}
