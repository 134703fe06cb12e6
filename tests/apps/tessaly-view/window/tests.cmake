include(${CMAKE_SOURCE_DIR}/tests/support/support.cmake)
find_package(ZLIB REQUIRED)
target_sources(${target} PRIVATE ${folder}/../Program.cpp)
target_include_directories(${target} PRIVATE ${folder}/..)
target_link_libraries(${target} PRIVATE tessaly_viewer_window test_support test_xinput ZLIB::ZLIB X11)
# The program is run on a display of the test's own.
add_dependencies(${target} tessaly-view)
target_compile_definitions(${target} PRIVATE TESSALY_VIEW="$<TARGET_FILE:tessaly-view>")
