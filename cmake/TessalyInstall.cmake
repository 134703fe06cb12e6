# What `cmake --install` puts where, in components: libraries (runtime; their links development), headers (development; each
# folder installs its own), the program, its man page and desktop entry (viewer), and the package Tessaly (development) with its
# targets Tessaly::Tessaly, Tessaly::OSGSystem, Tessaly::OSGBase, Tessaly::OSGWindowEGL and, where it was built,
# Tessaly::OSGWindowGLFW.

include(CMakePackageConfigHelpers)

set(package ${CMAKE_INSTALL_LIBDIR}/cmake/Tessaly)
set(libraries OSGBase OSGSystem OSGWindowEGL Tessaly)
if(TARGET OSGWindowGLFW)
    list(APPEND libraries OSGWindowGLFW)
endif()
set_target_properties(${libraries} PROPERTIES
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
    # The libraries find each other wherever they are put.
    INSTALL_RPATH "$ORIGIN")
install(TARGETS ${libraries} EXPORT TessalyTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)
install(EXPORT TessalyTargets NAMESPACE Tessaly:: DESTINATION ${package} COMPONENT development)

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/TessalyConfig.cmake.in
    ${CMAKE_BINARY_DIR}/TessalyConfig.cmake INSTALL_DESTINATION ${package})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/TessalyConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/TessalyConfig.cmake ${CMAKE_BINARY_DIR}/TessalyConfigVersion.cmake
        DESTINATION ${package} COMPONENT development)

if(TARGET tessaly-view)
    set_target_properties(tessaly-view PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
    install(TARGETS tessaly-view RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT viewer)
    include(TessalyManPage)
    if(TARGET tessaly_viewer_window)
        install(FILES ${CMAKE_SOURCE_DIR}/packaging/tessaly-view.desktop
                DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT viewer)
    endif()
endif()
