# Debian packages of what is installed: `ninja package` makes libtessaly1, libtessaly-dev, tessaly-view and, where the Python
# module was built, python3-tessaly. Any build tree will do; the preset `package` is the one to make a release of.

get_cmake_property(installed COMPONENTS)
set(CPACK_COMPONENTS_ALL runtime development)
foreach(component viewer python)
    if(component IN_LIST installed)
        list(APPEND CPACK_COMPONENTS_ALL ${component})
    endif()
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tessaly)
set(CPACK_PACKAGE_VENDOR "Tessaly developers")
set(CPACK_PACKAGE_CONTACT "Tessaly developers <tessaly@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
# Removes search paths of libraries, compresses the man page, adds copyright and changelog.
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/TessalyPackageTidy.cmake)
set(CPACK_TESSALY_SOURCE ${CMAKE_SOURCE_DIR})
set(CPACK_TESSALY_RELEASE_DATE ${TESSALY_RELEASE_DATE})

set(release 1)
set(exactly "(= ${PROJECT_VERSION}-${release})")
set(CPACK_DEBIAN_PACKAGE_RELEASE ${release})
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# What a package needs follows from its binaries; those of the own libraries are named below.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_BINARY_DIR}/lib)

# First line: what the package is; the rest: what it is for.
set(about "Tessaly is a C++ library of scene-graph types for looking at data: volumes
ray cast on the GPU, trimmed NURBS, primitives sorted by the view, shader
permutations, droplets, rendering into textures, frame capture and display
filters.")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libtessaly1)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${CMAKE_SOURCE_DIR}/packaging/triggers)
# The drivers are loaded at run time; which are right depends on the machine.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS libgl1-mesa-dri)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "scene-graph types for looking at data, shared libraries
${about}")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libtessaly-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libtessaly1 ${exactly}, libgl-dev, libopengl-dev, libglu1-mesa-dev")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS cmake)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "scene-graph types for looking at data, headers
${about}

This package holds headers and the CMake package Tessaly.")

set(CPACK_DEBIAN_VIEWER_PACKAGE_NAME tessaly-view)
set(CPACK_DEBIAN_VIEWER_PACKAGE_SECTION science)
set(CPACK_DEBIAN_VIEWER_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_VIEWER_PACKAGE_DEPENDS "libtessaly1 ${exactly}")
set(CPACK_DEBIAN_VIEWER_PACKAGE_RECOMMENDS libgl1-mesa-dri)
set(CPACK_COMPONENT_VIEWER_DESCRIPTION "ray casts a scan in a window or into a picture
Shows the voxels of a NIfTI, NRRD, DICOM or TIFF scan, lit or not, with a
transfer function that it finds by itself, in a window or, without a display,
into a PNG file.")

if(python IN_LIST CPACK_COMPONENTS_ALL)
    # The module is compiled for one version of Python.
    find_package(Python3 COMPONENTS Interpreter)
    math(EXPR next "${Python3_VERSION_MINOR} + 1")
    set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-tessaly)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_SHLIBDEPS ON)
    string(CONCAT CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
        "libtessaly1 ${exactly}, python3 (>= 3.${Python3_VERSION_MINOR}), python3 (<< 3.${next}), python3-numpy")
    set(CPACK_DEBIAN_PYTHON_PACKAGE_RECOMMENDS libgl1-mesa-dri)
    set(CPACK_COMPONENT_PYTHON_DESCRIPTION "ray cast volumes from Python
Draws NumPy arrays and scans with the library Tessaly, with or without a
display.")
endif()

# cpack reads what it packs from the tree as it is; the target `package` builds first.
include(CPack)
