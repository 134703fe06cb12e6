include(${CMAKE_SOURCE_DIR}/tests/tessaly/foreground/foreground.cmake)
target_sources(${target} PRIVATE ${CMAKE_SOURCE_DIR}/tests/tessaly/foreground/GlSpy.cpp)
target_link_libraries(${target} PRIVATE test_foreground OpenGL::GLU ${CMAKE_DL_LIBS})
