target_sources(${target} PRIVATE ${CMAKE_SOURCE_DIR}/tests/support/Containers.cpp)
