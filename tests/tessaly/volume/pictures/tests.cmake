# Pictures of a window against the reference's.
include(${CMAKE_SOURCE_DIR}/tests/support/support.cmake)
file(GLOB reference_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/reference/*.cpp)
target_sources(${target} PRIVATE ${reference_sources} ${folder}/../stage/VolumeStage.cpp)
target_include_directories(${target} PRIVATE ${folder}/../stage ${CMAKE_SOURCE_DIR}/tessaly/volume)
target_link_libraries(${target} PRIVATE test_support)
