# Volumes in windows whose GL lacks something or fails.
include(${CMAKE_SOURCE_DIR}/tests/support/support.cmake)
file(GLOB reference_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/reference/*.cpp)
target_sources(${target} PRIVATE ${reference_sources} ${folder}/../stage/VolumeStage.cpp)
target_include_directories(${target} PRIVATE ${folder}/../stage ${CMAKE_SOURCE_DIR}/tessaly/volume)
target_link_libraries(${target} PRIVATE test_support)

# A window whose functions can be replaced.
set(headers ${CMAKE_CURRENT_BINARY_DIR}/volume_failures/include)
file(MAKE_DIRECTORY ${headers}/OpenSG)
file(CREATE_LINK ${folder}/OSGHookedWindow.h ${headers}/OpenSG/OSGHookedWindow.h SYMBOLIC)
tessaly_table(${target} ${folder}/OSGHookedWindow.fcd ${headers}/OpenSG)
target_include_directories(${target} PRIVATE ${CMAKE_BINARY_DIR}/include/OpenSG ${headers} ${headers}/OpenSG)
