# Where things are installed below the prefix, and as part of what. Included ahead of every install().

# Debian looks for libraries and CMake packages in lib/<triple> below /usr and /usr/local alike, and its packages are made of
# any build tree, whatever prefix that was configured with.
if(EXISTS /etc/debian_version AND CMAKE_LIBRARY_ARCHITECTURE)
    set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} CACHE PATH "Where libraries go, below the prefix")
endif()
include(GNUInstallDirs)

# The components: runtime (shared libraries and the readers of file formats), development (headers, links, the CMake package),
# viewer (tessaly-view), python. What says nothing is a header.
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME development)

# When this version was released, in seconds; what is generated bears this date, so that it is the same in every build.
if(DEFINED ENV{SOURCE_DATE_EPOCH})
    set(TESSALY_RELEASE_DATE $ENV{SOURCE_DATE_EPOCH})
else()
    set(TESSALY_RELEASE_DATE 1795219200)
endif()
