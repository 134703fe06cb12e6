# What `cmake --install` puts where: libraries, headers (each folder installs its own), programs and the package Tessaly
# with its targets Tessaly::Tessaly, Tessaly::OSGSystem, Tessaly::OSGBase and Tessaly::OSGWindowEGL.

include(CMakePackageConfigHelpers)

set(package ${CMAKE_INSTALL_LIBDIR}/cmake/Tessaly)
set(libraries OSGBase OSGSystem OSGWindowEGL Tessaly)
set_target_properties(${libraries} PROPERTIES
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
    # The libraries find each other wherever they are put.
    INSTALL_RPATH "$ORIGIN")
install(TARGETS ${libraries} EXPORT TessalyTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(EXPORT TessalyTargets NAMESPACE Tessaly:: DESTINATION ${package})

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/TessalyConfig.cmake.in
    ${CMAKE_BINARY_DIR}/TessalyConfig.cmake INSTALL_DESTINATION ${package})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/TessalyConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/TessalyConfig.cmake ${CMAKE_BINARY_DIR}/TessalyConfigVersion.cmake
        DESTINATION ${package})

if(TARGET tessaly-view)
    set_target_properties(tessaly-view PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
    install(TARGETS tessaly-view RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
