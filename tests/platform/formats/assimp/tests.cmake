include(${CMAKE_SOURCE_DIR}/tests/support/support.cmake)
target_link_libraries(${target} PRIVATE OSGFormatASSIMPCodec test_support)
target_include_directories(${target} PRIVATE ${CMAKE_BINARY_DIR}/include/OpenSG)
add_dependencies(${target} OSGFormatASSIMP)
