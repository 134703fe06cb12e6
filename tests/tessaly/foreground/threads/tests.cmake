include(${CMAKE_SOURCE_DIR}/tests/tessaly/foreground/foreground.cmake)
target_link_libraries(${target} PRIVATE test_foreground)
