target_link_libraries(${target} PRIVATE OSGFormatDICOMCodec)
add_dependencies(${target} OSGFormatDICOM)
