/// \file
/// What OSGSystem calls in this module.

#include "OSGAssimpReader.h"

extern "C" OSG_SYSTEMLIB_DLLMAPPING bool osgFormatASSIMP(const std::string &format,
                                                         const std::string &fileName, osg::SceneData &scene,
                                                         std::string &error)
{
    return osg::readAssimpScene(format, fileName, scene, error);
}
