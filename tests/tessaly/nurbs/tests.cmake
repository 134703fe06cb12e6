# The pictures need what tests of drawing share; the spy stands between the library and GLU.
include(${CMAKE_SOURCE_DIR}/tests/support/support.cmake)
target_link_libraries(${target} PRIVATE test_support OpenGL::GLU ${CMAKE_DL_LIBS})
target_sources(${target} PRIVATE ${CMAKE_SOURCE_DIR}/tests/support/Containers.cpp)
