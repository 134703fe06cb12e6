# The readers under test, and where their seed files lie.
find_package(ZLIB REQUIRED)
target_link_libraries(${target} PRIVATE TessalyStatic OSGSystem ZLIB::ZLIB)
target_compile_definitions(${target} PRIVATE FUZZ_CORPUS="${CMAKE_CURRENT_SOURCE_DIR}/fuzz/corpus")
