# GL is called by the tests themselves, to read and fill maps.
include(${CMAKE_SOURCE_DIR}/tests/support/support.cmake)
target_link_libraries(${target} PRIVATE test_support)
target_sources(${target} PRIVATE ${CMAKE_SOURCE_DIR}/tests/support/Containers.cpp)
