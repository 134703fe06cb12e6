find_package(ZLIB REQUIRED)
target_link_libraries(${target} PRIVATE OSGFormatNRRDCodec ZLIB::ZLIB)
add_dependencies(${target} OSGFormatNRRD)
