# The tests pack files themselves, apart from the readers.
find_package(ZLIB REQUIRED)
target_link_libraries(${target} PRIVATE ZLIB::ZLIB)
find_package(JPEG REQUIRED)
target_link_libraries(${target} PRIVATE JPEG::JPEG)
