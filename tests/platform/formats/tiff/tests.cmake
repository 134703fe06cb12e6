# The tests write their files by the library, apart from the reader.
find_package(TIFF REQUIRED)
target_link_libraries(${target} PRIVATE OSGFormatTIFFCodec TIFF::TIFF)
add_dependencies(${target} OSGFormatTIFF)
