include(${CMAKE_SOURCE_DIR}/tests/support/support.cmake)
find_package(ZLIB REQUIRED)
target_link_libraries(${target} PRIVATE tessaly_viewer test_support ZLIB::ZLIB)
# Some tests run the program itself.
add_dependencies(${target} tessaly-view)
target_compile_definitions(${target} PRIVATE TESSALY_VIEW="$<TARGET_FILE:tessaly-view>")
# Files that a build can't read can't be tested.
if(NOT TARGET OSGFormatDICOM)
    get_target_property(sources ${target} SOURCES)
    list(FILTER sources EXCLUDE REGEX "/FormatsTest.cpp$")
    set_target_properties(${target} PROPERTIES SOURCES "${sources}")
endif()
