#include "BVGeometry.h"

#include <OpenSG/OSGNode.h>

BVGeometry::~BVGeometry()
{
    osg::clearRefCP(_geometryNode);
}
