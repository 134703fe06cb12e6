target_link_libraries(${target} PRIVATE OSGFormatDICOMCodec)
add_dependencies(${target} OSGFormatDICOM)
target_compile_definitions(${target} PRIVATE DICOM_CORPUS="${CMAKE_CURRENT_SOURCE_DIR}/fuzz/corpus/dicom")
