# What the tests of foregrounds and display filters share: a foreground that a test steers.

include_guard(GLOBAL)
include(${CMAKE_SOURCE_DIR}/tests/support/support.cmake)

add_library(test_foreground STATIC)
set(headers ${CMAKE_CURRENT_BINARY_DIR}/foreground/include)
file(MAKE_DIRECTORY ${headers}/OpenSG)
file(CREATE_LINK ${CMAKE_CURRENT_LIST_DIR}/OSGTestForeground.h ${headers}/OpenSG/OSGTestForeground.h
     SYMBOLIC)
tessaly_table(test_foreground ${CMAKE_CURRENT_LIST_DIR}/OSGTestForeground.fcd ${headers}/OpenSG)
target_include_directories(test_foreground
    PUBLIC ${CMAKE_BINARY_DIR}/include/OpenSG ${headers} ${headers}/OpenSG)
target_link_libraries(test_foreground PUBLIC test_support OSGSystem)
