# What tests of drawing share: a GL context, read-back, comparison of pictures. A tests.cmake includes this file
# and links test_support. TESSALY_GL_TEST_ENVIRONMENT is what the environment of a GL test must hold in this build.

include_guard(GLOBAL)

add_library(test_support STATIC
    ${CMAKE_CURRENT_LIST_DIR}/PixelCompare.cpp
    ${CMAKE_CURRENT_LIST_DIR}/Png.cpp
    ${CMAKE_CURRENT_LIST_DIR}/ReadBack.cpp)
target_include_directories(test_support PUBLIC ${CMAKE_SOURCE_DIR}/tests)
target_link_libraries(test_support
    PUBLIC tessaly_options OSGWindowEGL GTest::gtest OpenGL::OpenGL
    PRIVATE PNG::PNG)

# What tests with windows on a display share: a display server of their own, and a person at it. For builds that have
# such windows.
if(TARGET OSGWindowGLFW)
    pkg_check_modules(XTST REQUIRED IMPORTED_TARGET xtst x11)
    add_library(test_xinput STATIC
        ${CMAKE_CURRENT_LIST_DIR}/XInput.cpp
        ${CMAKE_CURRENT_LIST_DIR}/XServer.cpp)
    target_include_directories(test_xinput PUBLIC ${CMAKE_SOURCE_DIR}/tests)
    target_link_libraries(test_xinput PUBLIC tessaly_options GTest::gtest PRIVATE PkgConfig::XTST)
endif()

# Built without the sanitizers: it is loaded ahead of them.
add_library(nodlclose SHARED ${CMAKE_CURRENT_LIST_DIR}/nodlclose.c)
add_dependencies(test_support nodlclose)

# The runtime of the address sanitizer must come first among the preloaded libraries. gcc has it in a library of its
# own, clang in the program. The thread sanitizer can't see the locks of a driver that was built without it.
set(TESSALY_GL_TEST_ENVIRONMENT)
if(TESSALY_SANITIZE MATCHES "address|leak")
    set(preload ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/libnodlclose.so)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libasan.so
                        OUTPUT_VARIABLE runtime OUTPUT_STRIP_TRAILING_WHITESPACE)
        set(preload "${runtime}:${preload}")
    endif()
    set(TESSALY_GL_TEST_ENVIRONMENT "LD_PRELOAD=${preload}")
elseif(TESSALY_SANITIZE MATCHES "thread")
    set(TESSALY_GL_TEST_ENVIRONMENT "TSAN_OPTIONS=ignore_noninstrumented_modules=1")
endif()
