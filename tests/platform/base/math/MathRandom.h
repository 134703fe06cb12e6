#ifndef _MATHRANDOM_H_
#define _MATHRANDOM_H_

/// \file
/// Seeded random values for the tests of the mathematics; a failing test shows its seed through SCOPED_TRACE.

#include <random>

#include <OpenSG/OSGMatrix.h>

/// A source of numbers that a test makes with a fixed seed.
class MathRandom
{
  public:
    explicit MathRandom(unsigned seed) : _engine(seed) {}

    float real(float low, float high) { return std::uniform_real_distribution<float>(low, high)(_engine); }
    unsigned bits() { return static_cast<unsigned>(_engine()); }
    osg::Vec3f vec(float extent)
    {
        return osg::Vec3f(real(-extent, extent), real(-extent, extent), real(-extent, extent));
    }
    osg::Pnt3f pnt(float extent) { return osg::Pnt3f(vec(extent)); }
    osg::Vec3f direction()
    {
        for (;;)
        {
            osg::Vec3f v = vec(1.0f);
            if (v.squareLength() > 0.01f && v.squareLength() <= 1.0f)
            {
                v.normalize();
                return v;
            }
        }
    }
    osg::Quaternion rotation() { return osg::Quaternion(direction(), real(-3.1f, 3.1f)); }

    /// Turned, scaled by 0.5 to 2 in turned axes, and moved: well conditioned.
    osg::Matrix affine()
    {
        osg::Matrix m;
        m.setTransform(vec(5.0f), rotation(), osg::Vec3f(real(0.5f, 2), real(0.5f, 2), real(0.5f, 2)),
                       rotation());
        return m;
    }

  private:
    std::mt19937 _engine;
};

#define TRACE_SEED(seed) SCOPED_TRACE(::testing::Message() << "seed " << (seed))

#endif
