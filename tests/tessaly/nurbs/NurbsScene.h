#ifndef TESTS_TESSALY_NURBS_NURBSSCENE_H
#define TESTS_TESSALY_NURBS_NURBSSCENE_H

/// \file
/// Curves and surfaces as cores, and a window that shows them from straight ahead.

#include "TrueNurbs.h"

#include "support/ReadBack.h"

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGGeoNormals3f.h>
#include <OpenSG/OSGGeoPositions2f.h>
#include <OpenSG/OSGGeoPositions3f.h>
#include <OpenSG/OSGGeoPositions4f.h>
#include <OpenSG/OSGGeoTexCoords2f.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGOrthographicCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGViewport.h>
#include <Tessaly/OSGNurbsCurve.h>
#include <Tessaly/OSGNurbsSurface.h>
#include <Tessaly/OSGNurbsTrimmingLoop.h>

#include "support/Held.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>

namespace nurbs_test
{

using test::Held;

template <class PropertyT>
typename PropertyT::Ptr make(const std::vector<typename PropertyT::StoredType> &values)
{
    const typename PropertyT::Ptr property = PropertyT::create();
    property->getField().setValues(values);
    osg::endEditCP(property);
    return property;
}

/// Knots that are 0 at the begin and `end` at the end order times, and between them as many as the points need.
inline Knots clampedKnots(int order, int points, double end, std::mt19937 *random = nullptr)
{
    Knots knots;
    knots.order = order;
    const int inner = points - order;
    for(int i = 0; i < order; ++i)
        knots.values.push_back(0);
    for(int i = 1; i <= inner; ++i)
    {
        const double shift = random != nullptr ? std::uniform_real_distribution<double>(-0.3, 0.3)(*random) : 0.0;
        // Exactly as the floats that GLU gets.
        knots.values.push_back(double(float(end * (i + shift) / (inner + 1))));
    }
    for(int i = 0; i < order; ++i)
        knots.values.push_back(end);
    return knots;
}

inline std::vector<osg::Real32> floats(const std::vector<double> &values)
{
    return std::vector<osg::Real32>(values.begin(), values.end());
}

inline osg::GeoPositionsPtr points3(const std::vector<Weighted> &points)
{
    std::vector<osg::Pnt3f> values;
    for(const Weighted &p : points)
        values.push_back(osg::Pnt3f(float(p[0]), float(p[1]), float(p[2])));
    return make<osg::GeoPositions3f>(values);
}

inline osg::GeoPositionsPtr points4(const std::vector<Weighted> &points)
{
    std::vector<osg::Pnt4f> values;
    for(const Weighted &p : points)
        values.push_back(osg::Pnt4f(float(p[0]), float(p[1]), float(p[2]), float(p[3])));
    return make<osg::GeoPositions4f>(values);
}

inline void fill(const osg::NurbsCurvePtr &core, const TrueCurve &curve, bool homogeneous)
{
    core->setControlPoint(homogeneous ? points4(curve.points) : points3(curve.points));
    core->setOrder(osg::UInt32(curve.knots.order));
    core->editMFKnot()->setValues(floats(curve.knots.values));
    osg::endEditCP(core);
}

/// The texture coordinates are the parameters u and v.
inline void fill(const osg::NurbsSurfacePtr &core, const TrueSurface &surface, bool homogeneous)
{
    std::vector<osg::Vec2f> parameters;
    for(int j = 0; j < surface.v.points(); ++j)
        for(int i = 0; i < surface.u.points(); ++i)
            parameters.push_back(osg::Vec2f(float(surface.u.greville(i)), float(surface.v.greville(j))));
    core->setControlPoint(homogeneous ? points4(surface.points) : points3(surface.points));
    core->setControlTexCoord(make<osg::GeoTexCoords2f>(parameters));
    core->setUOrder(osg::UInt32(surface.u.order));
    core->setVOrder(osg::UInt32(surface.v.order));
    core->getUKnot().setValues(floats(surface.u.values));
    core->getVKnot().setValues(floats(surface.v.values));
    core->setUDim(osg::UInt32(surface.u.points()));
    core->setVDim(osg::UInt32(surface.v.points()));
    osg::endEditCP(core);
}

/// The full circle of nine points, a quarter from knot to knot.
inline Knots circleKnots()
{
    Knots knots;
    knots.order = 3;
    knots.values = {0, 0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 4};
    return knots;
}

/// x, y and weight of the circle's points, counter-clockwise.
inline std::vector<Place> circlePoints(double radius)
{
    const double w = double(float(std::sqrt(0.5)));
    const double x[9] = {1, 1, 0, -1, -1, -1, 0, 1, 1};
    const double y[9] = {0, 1, 1, 1, 0, -1, -1, -1, 0};
    std::vector<Place> points;
    for(int i = 0; i < 9; ++i)
    {
        const double weight = i % 2 == 0 ? 1.0 : w;
        points.push_back({radius * x[i] * weight, radius * y[i] * weight, weight});
    }
    return points;
}

/// A profile (distance from the axis, height, weight) turned about the y axis: u goes round, v along the profile.
inline TrueSurface revolve(const std::vector<Place> &profile, const Knots &along)
{
    TrueSurface surface;
    surface.u = circleKnots();
    surface.v = along;
    for(const Place &p : profile)
        for(const Place &c : circlePoints(1))
            surface.points.push_back({p[0] * p[2] * c[0], p[1] * p[2] * c[2], p[0] * p[2] * c[1], p[2] * c[2]});
    return surface;
}

inline Knots bezierKnots(int order)
{
    return clampedKnots(order, order, 1);
}

/// The square from (-1, -1) to (1, 1) in the plane z = 0, x along u, y along v; the parameters are 0 to 1.
inline TrueSurface square()
{
    TrueSurface surface;
    surface.u = bezierKnots(2);
    surface.v = bezierKnots(2);
    surface.points = {{-1, -1, 0, 1}, {1, -1, 0, 1}, {-1, 1, 0, 1}, {1, 1, 0, 1}};
    return surface;
}

/// Shows x and y from -1 to 1, z from -10 to 10, on black; y up, +z towards the viewer; light from there.
class NurbsView
{
  public:
    explicit NurbsView(const osg::NodeCorePtr &core, int size = 128)
        : _size(size), _node(osg::makeNodeFor(core)), _action(osg::RenderAction::create())
    {
        using namespace osg;
        const DirectionalLightPtr light = DirectionalLight::create();
        _root = makeNodeFor(light);
        light->setDirection(Vec3f(0.3f, 0.4f, 1.f));
        light->setBeacon(_root);
        _root->addChild(_node);
        endEditCP(_root);
        const OrthographicCameraPtr camera = OrthographicCamera::create();
        camera->setVerticalSize(2);
        camera->setNear(-10);
        camera->setFar(10);
        endEditCP(camera);
        const ViewportPtr viewport = Viewport::create();
        viewport->setCamera(camera);
        viewport->setRoot(_root);
        viewport->setBackground(SolidBackground::create());
        endEditCP(viewport);
        _window = EGLWindow::create();
        addRefCP(_window);
        _window->resize(size, size);
        _window->addPort(viewport);
        _window->init();
    }
    ~NurbsView()
    {
        EXPECT_TRUE(_window->activate());
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR)) << "pending at the end of the view";
        osg::subRefCP(_window);
    }
    NurbsView(const NurbsView &) = delete;
    NurbsView &operator=(const NurbsView &) = delete;

    test::RgbaImage render()
    {
        _window->render(_action.get());
        return read();
    }
    test::RgbaImage draw()
    {
        const std::unique_ptr<osg::DrawAction> action(osg::DrawAction::create());
        _window->draw(action.get());
        return read();
    }
    test::RgbaImage read()
    {
        EXPECT_TRUE(_window->activate());
        return test::readPixels(0, 0, _size, _size);
    }

    const osg::NodePtr &root() const { return _root; }
    const osg::NodePtr &node() const { return _node; }
    const osg::EGLWindowPtr &window() const { return _window; }
    osg::RenderAction *action() const { return _action.get(); }

  private:
    int _size;
    osg::NodePtr _node;
    osg::NodePtr _root;
    std::unique_ptr<osg::RenderAction> _action;
    osg::EGLWindowPtr _window;
};

/// A pixel that is not background.
inline int coveredPixels(const test::RgbaImage &image)
{
    int covered = 0;
    for(int y = 0; y < image.height; ++y)
        for(int x = 0; x < image.width; ++x)
        {
            const test::RgbaImage::Pixel p = image.at(x, y);
            covered += p[0] != 0 || p[1] != 0 || p[2] != 0 ? 1 : 0;
        }
    return covered;
}

inline osg::SimpleMaterialPtr white(bool lit)
{
    const osg::SimpleMaterialPtr material = osg::SimpleMaterial::create();
    material->setDiffuse(osg::Color3f(1, 1, 1));
    material->setLit(lit);
    osg::endEditCP(material);
    return material;
}

} // namespace nurbs_test

#endif
