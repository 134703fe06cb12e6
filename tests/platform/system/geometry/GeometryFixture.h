#ifndef TESTS_PLATFORM_SYSTEM_GEOMETRY_GEOMETRYFIXTURE_H
#define TESTS_PLATFORM_SYSTEM_GEOMETRY_GEOMETRYFIXTURE_H

/// \file
/// Properties and geometries from lists of numbers.

#include <OpenSG/OSGGeoIndicesUI32.h>
#include <OpenSG/OSGGeoPLengthsUI32.h>
#include <OpenSG/OSGGeoPTypesUI8.h>
#include <OpenSG/OSGGeoPositions3f.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGNode.h>

#include <vector>

namespace geometry_test
{

/// A new property of that class with those values.
template <class PropertyT>
typename PropertyT::Ptr make(const std::vector<typename PropertyT::StoredType> &values)
{
    const typename PropertyT::Ptr property = PropertyT::create();
    property->getField().setValues(values);
    osg::endEditCP(property);
    return property;
}

/// A geometry with one reference, which it gives back at its end.
struct HeldGeometry
{
    HeldGeometry() : ptr(osg::Geometry::create()) { osg::addRefCP(ptr); }
    HeldGeometry(const std::vector<osg::UInt8> &types, const std::vector<osg::UInt32> &lengths,
                 const std::vector<osg::Pnt3f> &positions)
        : HeldGeometry()
    {
        ptr->setTypes(make<osg::GeoPTypesUI8>(types));
        ptr->setLengths(make<osg::GeoPLengthsUI32>(lengths));
        ptr->setPositions(make<osg::GeoPositions3f>(positions));
        osg::endEditCP(ptr);
    }
    explicit HeldGeometry(const osg::GeometryPtr &geometry) : ptr(geometry) { osg::addRefCP(ptr); }
    HeldGeometry(const HeldGeometry &) = delete;
    HeldGeometry &operator=(const HeldGeometry &) = delete;
    ~HeldGeometry() { osg::subRefCP(ptr); }

    osg::Geometry *operator->() const { return ptr.getCPtr(); }

    osg::GeometryPtr ptr;
};

/// The same for a node.
struct HeldNode
{
    explicit HeldNode(const osg::NodePtr &node) : ptr(node) { osg::addRefCP(ptr); }
    HeldNode(const HeldNode &) = delete;
    HeldNode &operator=(const HeldNode &) = delete;
    ~HeldNode() { osg::subRefCP(ptr); }

    osg::Node *operator->() const { return ptr.getCPtr(); }

    osg::NodePtr ptr;
};

} // namespace geometry_test

#endif
