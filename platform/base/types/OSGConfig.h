#ifndef _OSGCONFIG_H_
#define _OSGCONFIG_H_

/// \file
/// The namespace of the platform and what every one of its headers may rely on.

/// Opens the namespace of the platform.
#define OSG_BEGIN_NAMESPACE \
    namespace osg           \
    {
/// Closes it.
#define OSG_END_NAMESPACE }
/// Makes its names known.
#define OSG_USING_NAMESPACE using namespace osg;
/// As static_cast.
#define OSG_STATIC_CAST(...) static_cast<__VA_ARGS__>

/// What the platform's libraries export; the libraries are built with default visibility, so this only says it aloud.
#define OSG_EXPORT __attribute__((visibility("default")))
/// What each library exports.
#define OSG_BASELIB_DLLMAPPING OSG_EXPORT
#define OSG_SYSTEMLIB_DLLMAPPING OSG_EXPORT
#define OSG_BASE_DLLMAPPING OSG_EXPORT
#define OSG_WINDOWEGL_DLLMAPPING OSG_EXPORT
#define OSG_WINDOWGLFW_DLLMAPPING OSG_EXPORT

namespace osg
{

/// Initialises OpenSG: threads, container classes, what libraries have asked for. Once, ahead of everything else, on the
/// thread that becomes the application thread. A second call does nothing. False if a class could not be initialised.
OSG_EXPORT bool osgInit(int argc, char **argv);

/// Ends what osgInit began. Containers of the host should be gone by then, as far as it minds.
OSG_EXPORT bool osgExit();

} // namespace osg

#endif
